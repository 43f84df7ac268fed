#include "apps/tavrionctl/HistoryText.h"

#include <fmt/format.h>

#include <algorithm>

#include "apps/tavrionctl/BarChartText.h"
#include "apps/tavrionctl/TextTable.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/DisplayWidth.h"
#include "platform/foundation/NSCalendar.h"

namespace tavrion::ctl {
namespace {

constexpr std::size_t margin = 2;
constexpr std::size_t gap = 2;
constexpr std::size_t widestTitle = 48;
constexpr std::size_t widestArtist = 36;

/// How wide a time of the day gets in this locale.
std::size_t widthOfTimes() {
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    std::size_t width = 0;
    for (const int hour : {10, 22}) {
        const NSDate date = zone.dateOfCivilTime({2001, 1, 1, hour, 0, 0});
        width = std::max(width, displayWidth(RVMetadataManager::formattedTimeFromDate(date)));
    }
    return width;
}

std::string trimmed(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string counted(std::size_t count, const char* one, const char* many) {
    return fmt::format("{} {}", RVMetadataManager::formattedCount(count), count == 1 ? one : many);
}

/// Hours and months have steps that people count in.
std::vector<std::size_t> labelStepsOf(HistoryChartForm form) {
    switch (form) {
        case HistoryChartForm::hours:
            return {1, 2, 3, 4, 6, 12};
        case HistoryChartForm::months:
            return {1, 2, 3, 4, 6};
        case HistoryChartForm::days:
            break;
    }
    return {};
}

BarChartText textOf(const HistoryChart& chart) {
    BarChartText text;
    for (const HistoryBar& bar : chart.bars) {
        text.values.push_back(bar.y);
    }
    text.label = [&chart](std::size_t bar) { return chart.label(chart.bars[bar]); };
    text.amount = &RVMetadataManager::formattedDuration;
    text.chosen = chart.highlightedX;
    text.labelsFromLast = chart.form == HistoryChartForm::days;
    text.labelSteps = labelStepsOf(chart.form);
    return text;
}

}  // namespace

HistoryRow shownRow(HistoryRows& rows, const StoreVersion& records, NSManagedObjectID play,
                    const std::optional<UIFont>& font, NSManagedObjectContext& context) {
    HistoryRow row = *rows.rowOf(records, play, font);
    if (row.item) {
        HistoryRows::takeOver(*row.item, play, context);
    }
    return row;
}

HistoryText::HistoryText(const HistoryPage& page, std::string rangeTitle, std::size_t width,
                         const TerminalAbilities& abilities)
    : page_(page),
      rangeTitle_(std::move(rangeTitle)),
      width_(width),
      abilities_(abilities),
      time_(widthOfTimes()) {
    const std::size_t others = margin + time_ + 1 + 2 * gap;
    const std::size_t room = width_ > others ? width_ - others : 0;
    title_ = std::min(room * 3 / 5, widestTitle);
    artist_ = std::min(room - title_, widestArtist);
}

void HistoryText::print(NSManagedObjectContext& context,
                        const std::function<void(const std::string&)>& line) const {
    printTop(line);
    if (page_.statCell.chart) {
        printChart(line);
    }
    HistoryRows rows;
    bool hasEstimates = false;
    for (std::size_t section = 1; section < page_.list->numberOfSections(); ++section) {
        hasEstimates = printDay(section, context, rows, line) || hasEstimates;
    }
    if (hasEstimates) {
        line("");
        line(styled("* The time of this play is an estimate.", TextStyle::grey, abilities_));
    }
}

void HistoryText::printTop(const std::function<void(const std::string&)>& line) const {
    line(styled(trimmed(fitted(rangeTitle_, width_)), TextStyle::bold, abilities_));
    if (!page_.statCell.chart) {
        line("");
        line("Nothing was played in this time.");
        line("Choose another with --range, or record plays with tavrionctl scan.");
        return;
    }
    line(fmt::format("{} {}   {} {}",
                     styled(page_.statCell.playsLabel, TextStyle::bold, abilities_),
                     page_.totals.songs == 1 ? "Song" : "Songs",
                     styled(page_.statCell.durationLabel, TextStyle::bold, abilities_),
                     page_.statCell.durationCaption));
}

void HistoryText::printChart(const std::function<void(const std::string&)>& line) const {
    const BarChartText chart = textOf(*page_.statCell.chart);
    line("");
    for (const std::string& each : chart.lines(width_, abilities_)) {
        line(each);
    }
    const std::size_t shown = chart.shownBars(width_);
    if (shown < chart.values.size()) {
        line(styled(fmt::format("The last {} of {} days; a wider terminal shows more.", shown,
                                RVMetadataManager::formattedCount(chart.values.size())),
                    TextStyle::grey, abilities_));
    }
}

bool HistoryText::printDay(std::size_t section, NSManagedObjectContext& context, HistoryRows& rows,
                           const std::function<void(const std::string&)>& line) const {
    const std::size_t count = page_.list->numberOfItemsInSection(section);
    line("");
    line(styled(page_.titleForHeaderInSection(section).value_or(""), TextStyle::bold, abilities_) +
         styled((abilities_.showsSymbols ? " · " : ", ") + counted(count, "play", "plays"),
                TextStyle::grey, abilities_));
    const auto records = context.snapshot();
    bool hasEstimates = false;
    for (std::size_t row = 0; row < count; ++row) {
        const Value item = *page_.list->itemIdentifierForIndexPath({section, row});
        const NSManagedObjectID id = NSManagedObjectID::of(*item.get<ObjectReference>());
        const HistoryRow shown = shownRow(rows, *records, id, UIFont{}, context);
        line(lineOf(shown));
        hasEstimates = hasEstimates || shown.isInterpolated;
    }
    return hasEstimates;
}

std::string HistoryText::lineOf(const HistoryRow& row) const {
    // A song that left the library shows no date, as on the screen.
    const std::string time =
        row.property ? RVMetadataManager::formattedTimeFromDate(*row.eventDate) : "";
    const std::string mark = row.property && row.isInterpolated ? "*" : " ";
    const std::size_t blanks = time_ - std::min(time_, displayWidth(time));
    return trimmed(std::string(margin + blanks, ' ') + styled(time, TextStyle::grey, abilities_) +
                   mark + std::string(gap, ' ') + fitted(row.title, title_, abilities_) +
                   std::string(gap, ' ') + fitted(row.subtitle.value_or(""), artist_));
}

}  // namespace tavrion::ctl
