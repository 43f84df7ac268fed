#include "apps/tavrionctl/TrendingCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/RangeArgument.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "library/RVMetadataManager.h"
#include "timeviews/RVTrendingCollectionViewController.h"
#include "timeviews/TrendingKeys.h"

namespace tavrion::ctl {
namespace {

/// In the order of their numbers.
constexpr std::array<const char*, 3> groupNames{"artists", "albums", "genres"};
constexpr std::size_t titleWidth = 40;

std::string titleOf(const TrendingCell& cell) {
    return cell.title ? cell.title->textWithoutAttachments()
                      : std::string(RVMetadataManager::placeholder);
}

void writeRows(JsonWriter& json, const std::vector<TrendingRow>& rows, bool byTime) {
    json.beginArray();
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const RVTrendingEntity& row = *rows[index];
        const TrendingCell cell = TrendingPage::cell(row, index, byTime, std::nullopt);
        json.beginObject().key("rank").unsignedInteger(index + 1);
        json.key("title").text(titleOf(cell));
        if (const MPMediaItemCollection* collection = row.entity.collection()) {
            json.key("groupType").integer(static_cast<std::int64_t>(collection->groupingType()));
        } else {
            json.key("artist").text(cell.subtitle.value_or(""));
        }
        json.key("playCount").unsignedInteger(row.playCount);
        json.key("playDuration").number(row.playDuration).endObject();
    }
    json.endArray();
}

void printRows(const std::vector<TrendingRow>& rows, bool byTime) {
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const RVTrendingEntity& row = *rows[index];
        const TrendingCell cell = TrendingPage::cell(row, index, byTime, std::nullopt);
        std::string line =
            fmt::format("{:>3}  {}  {:>9}", index + 1, fitted(titleOf(cell), titleWidth),
                        TrendingPage::number(row, byTime));
        if (cell.subtitle && !cell.subtitle->empty()) {
            line += "  " + *cell.subtitle;
        }
        fmt::print("{}\n", line);
    }
}

void printText(const TrendingSnapshot& ranking, bool byTime) {
    printRows(ranking.collections, byTime);
    if (!ranking.collections.empty() && !ranking.songs.empty()) {
        fmt::print("\n");
    }
    printRows(ranking.songs, byTime);
}

}  // namespace

void TrendingCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("trending", "Rank songs and collections by what was played most");
    described_.text("--range", range_, rangeHelp);
    described_.text("--group", group_, "artists, albums or genres")
        .oneOf({"artists", "albums", "genres"});
    described_.text("--by", by_, "plays or time").oneOf({"plays", "time"});
}

Outcome TrendingCommand::execute(Session& session) {
    std::optional<NSDateInterval> interval;
    if (!range_.empty()) {
        const auto parsed = dateRange(range_);
        if (!parsed) {
            return Outcome::usage(parsed.error().localizedDescription);
        }
        interval = parsed.value().interval();
    }
    if (Outcome opened = session.openStore(); !opened.isDone()) {
        return opened;
    }
    if (Outcome opened = session.openLibrary(); !opened.isDone()) {
        return opened;
    }
    if (!interval) {
        interval = DateRange::stored(DateRangeKey::trending).interval();
    }
    const bool byTime =
        by_.empty() ? session.defaults().integerForKey(TrendingDefaults::weightedRankFormat) ==
                          TrendingDefaults::byTime
                    : by_ == "time";
    const std::int64_t group =
        group_.empty()
            ? session.defaults().integerForKey(TrendingDefaults::groupingType)
            : std::find(groupNames.begin(), groupNames.end(), group_) - groupNames.begin();
    TrendingPage page;
    const auto context = session.data().privateContext();
    context->performBlockAndWait([&] {
        TrendingKeys keys;
        page = TrendingPage::of(
            *context,
            {*interval, byTime, [group] { return static_cast<TrendingGrouping>(group); }, nullptr},
            keys);
    });
    const TrendingSnapshot& ranking = page.ranking;
    if (!session.options().json) {
        printText(ranking, byTime);
        return {};
    }
    JsonWriter json(stdout);
    json.beginObject().key("interval").beginObject();
    json.key("start").instant(interval->startDate());
    json.key("end").instant(interval->endDate()).endObject();
    json.key("collections");
    writeRows(json, ranking.collections, byTime);
    json.key("songs");
    writeRows(json, ranking.songs, byTime);
    json.endObject().finish();
    return {};
}

}  // namespace tavrion::ctl
