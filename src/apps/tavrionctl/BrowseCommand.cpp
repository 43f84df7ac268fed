#include "apps/tavrionctl/BrowseCommand.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "apps/tavrionctl/AttributedText.h"
#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/RowPrinting.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "library/RVBrowseCollectionViewController.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/DisplayWidth.h"

namespace tavrion::ctl {
namespace {

using Browse = RVBrowseCollectionViewController;

/// In the order of the menus.
constexpr std::array<std::string_view, 5> groupNames{"songs", "albums", "artists", "genres",
                                                     "playlists"};
constexpr std::array<std::string_view, 6> sortNames{"alphabetical",  "play-count", "last-played",
                                                    "time-listened", "date-added", "release-date"};

/// Where the name stands among the names.
template <std::size_t count>
std::optional<std::size_t> indexOf(const std::array<std::string_view, count>& names,
                                   std::string_view name) {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - names.begin()));
}

template <std::size_t count>
Outcome unknown(std::string_view kind, std::string_view name,
                const std::array<std::string_view, count>& names) {
    return Outcome::usage(
        fmt::format("there is no {} '{}'; there are {}", kind, name, fmt::join(names, ", ")));
}

/// The columns of a list, as wide as its widest row needs, within limits.
class ListPrinter {
  public:
    ListPrinter(const std::vector<EntityRow>& rows, const TerminalAbilities& abilities)
        : abilities_(abilities) {
        for (const EntityRow& row : rows) {
            title_ = std::max(title_, plainWidth(titleOf(row)));
            subtitle_ = std::max(subtitle_, displayWidth(row.subtitle.value_or("")));
            property_ = std::max(property_, plainWidth(row.property));
            rank_ = row.number ? std::to_string(*row.number).size() + gap : rank_;
        }
        title_ = std::min(title_, widestTitle);
        subtitle_ = std::min(subtitle_, widestSubtitle);
        fitTo(terminalColumns());
    }

    void print(const EntityRow& row) const {
        const std::string rank = row.number ? std::to_string(*row.number) : std::string();
        const std::size_t width = plainWidth(row.property);
        fmt::print("{:>{}}{}{}  {}{:{}}{}\n", rank, rank_ == 0 ? 0 : rank_ - gap,
                   rank_ == 0 ? "" : "  ", fitted(titleOf(row), title_, abilities_),
                   fitted(row.subtitle.value_or(""), subtitle_), "", property_ - width + gap,
                   fitted(row.property, width, abilities_));
    }

  private:
    static constexpr std::size_t gap = 2;
    static constexpr std::size_t widestTitle = 40;
    static constexpr std::size_t widestSubtitle = 28;

    static NSAttributedString titleOf(const EntityRow& row) {
        return row.title.value_or(NSAttributedString(RVMetadataManager::placeholder));
    }
    std::size_t plainWidth(const NSAttributedString& text) const {
        return displayWidth(printed(text, {abilities_.showsSymbols, false}));
    }
    /// Titles and subtitles give way, never the value at the right.
    void fitTo(std::optional<std::size_t> columns) {
        const std::size_t others = rank_ + property_ + 2 * gap;
        constexpr std::size_t least = 20;
        if (!columns || others + title_ + subtitle_ <= *columns) {
            return;
        }
        const std::size_t room = std::max(least, *columns > others ? *columns - others : 0);
        subtitle_ = std::min(subtitle_, room * 2 / 5);
        title_ = std::min(title_, room - subtitle_);
    }

    const TerminalAbilities& abilities_;
    std::size_t rank_ = 0;
    std::size_t title_ = 0;
    std::size_t subtitle_ = 0;
    std::size_t property_ = 0;
};

/// What the list is grouped and sorted by, as the two buttons of the page say it.
std::string headingOf(const BrowsePage& page, const TerminalAbilities& abilities) {
    std::string heading = printed(page.groupingButtonTitle(), abilities);
    if (page.choices.sortType < BrowseChoices::sortTitles().size()) {
        heading += "   " + printed(page.sortButtonTitle(), abilities);
    }
    return heading;
}

void printList(const Session& session, const BrowsePage& page) {
    const TerminalAbilities abilities = TerminalAbilities::ofStandardOutput();
    std::vector<EntityRow> rows;
    rows.reserve(page.list->size());
    for (std::size_t place = 0; place < page.list->size(); ++place) {
        rows.push_back(page.list->row(place));
    }
    fmt::print("{}\n", headingOf(page, abilities));
    if (rows.empty()) {
        session.say("The library has none.");
    }
    const ListPrinter printer(rows, abilities);
    for (const EntityRow& row : rows) {
        printer.print(row);
    }
}

void writeList(const BrowsePage& page) {
    JsonWriter json(stdout);
    json.beginObject().key("items");
    writeRows(json, *page.list);
    json.endObject().finish();
}

std::vector<RVStatisticReference> libraryStatistics() {
    std::vector<RVStatisticReference> statistics;
    for (std::uint64_t index = 0; index < Browse::statisticCount; ++index) {
        statistics.push_back(Browse::statForIndex(index));
    }
    return statistics;
}

void printStatistics() {
    const TerminalAbilities abilities = TerminalAbilities::ofStandardOutput();
    const std::vector<RVStatisticReference> statistics = libraryStatistics();
    std::size_t widest = 0;
    for (const RVStatisticReference& statistic : statistics) {
        widest = std::max(widest, displayWidth(statistic->value()));
    }
    for (const RVStatisticReference& statistic : statistics) {
        const auto icon = NSAttributedString::attributedStringWithAttachment(*statistic->icon());
        fmt::print("{}  {:{}}{}  {}\n", fitted(icon, 1, abilities), "",
                   widest - displayWidth(statistic->value()), statistic->value(),
                   statistic->caption());
    }
}

}  // namespace

void BrowseCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command(
        "browse", "List the library; without options as it was last chosen on the screen");
    const OptionSyntax group =
        described_.text("--group", group_, fmt::format("{}", fmt::join(groupNames, ", ")));
    const OptionSyntax sort =
        described_.text("--sort", sort_, fmt::format("{}", fmt::join(sortNames, ", ")));
    const OptionSyntax reverse = described_.flag("--reverse", reverse_, "The other way round");
    described_.flag("--tiles", tiles_, "The eight statistics of the library instead")
        .excludes(group)
        .excludes(sort)
        .excludes(reverse);
}

Outcome BrowseCommand::execute(Session& session) {
    BrowseChoices choices = BrowseChoices::stored();
    if (group_) {
        const auto index = indexOf(groupNames, *group_);
        if (!index) {
            return unknown("group", *group_, groupNames);
        }
        choices.groupType = BrowseChoices::groupingForIndex(*index);
    }
    if (sort_) {
        const auto index = indexOf(sortNames, *sort_);
        if (!index) {
            return unknown("sort", *sort_, sortNames);
        }
        // As in the menu, another sort begins in its natural direction.
        choices.sortType = *index;
        choices.reverse = false;
    }
    choices.reverse = choices.reverse || reverse_;
    if (Outcome opened = session.openLibrary(); !opened.isDone()) {
        return opened;
    }
    if (tiles_) {
        if (session.options().json) {
            JsonWriter json(stdout);
            writeStatistics(json, libraryStatistics());
            json.finish();
        } else {
            printStatistics();
        }
        return {};
    }
    BrowsePage page;
    page.choices = choices;
    page.list = libraryList(choices);
    session.options().json ? writeList(page) : printList(session, page);
    return {};
}

}  // namespace tavrion::ctl
