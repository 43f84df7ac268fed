#include "apps/tavrionctl/EntityCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "apps/tavrionctl/RowPrinting.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "library/EntityLists.h"
#include "library/RVMetadataManager.h"

namespace tavrion::ctl {
namespace {

constexpr const char* sortHelp =
    "write it as SECTION:TYPE or SECTION:TYPE:reverse; sections are artists, albums and songs, "
    "types are alphabetical (or track-order), play-count, last-played, time-listened, date-added "
    "and release-date";

/// One list to be sorted in another way than the stored one.
struct AskedSort {
    EntitySection section = EntitySection::songs;
    EntitySort sort;
};

std::optional<EntitySection> sectionNamed(std::string_view name) {
    constexpr std::array<std::string_view, 3> names{"artists", "albums", "songs"};
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
        return std::nullopt;
    }
    return static_cast<EntitySection>(found - names.begin() +
                                      static_cast<std::int64_t>(EntitySection::artists));
}

std::optional<RVSortType> sortTypeNamed(std::string_view name) {
    constexpr std::array<std::string_view, 6> names{"alphabetical",  "play-count", "last-played",
                                                    "time-listened", "date-added", "release-date"};
    if (name == "track-order") {
        return RVSortTypeAlphabetical;
    }
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? std::nullopt
                                : std::optional(static_cast<RVSortType>(found - names.begin()));
}

std::optional<AskedSort> askedSort(std::string_view text) {
    const std::size_t first = text.find(':');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view type = text.substr(first + 1);
    constexpr std::string_view suffix = ":reverse";
    const bool reverse = type.ends_with(suffix);
    if (reverse) {
        type.remove_suffix(suffix.size());
    }
    const auto section = sectionNamed(text.substr(0, first));
    const auto sortType = sortTypeNamed(type);
    if (!section || !sortType) {
        return std::nullopt;
    }
    return AskedSort{*section, {*sortType, reverse}};
}

std::optional<std::uint64_t> numberOf(const std::string& text) {
    std::uint64_t number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                      : std::nullopt;
}

EntityPage pageOf(const MPMediaEntity& entity, const std::optional<AskedSort>& asked,
                  Session& session) {
    EntityLists lists(entity);
    EntityPage page = lists.fullBuild(EntitySections::sortForSection);
    if (asked && page.list(asked->section) != nullptr) {
        page.setSort(asked->section, asked->sort);
        page.setList(lists.reloadedList(asked->section, asked->sort));
    }
    const auto context = session.data().privateContext();
    context->performBlockAndWait([&] { page.activity = recentActivity(entity, *context); });
    return page;
}

void writePage(const EntityPage& page) {
    JsonWriter json(stdout);
    json.beginObject().key("title").optionalText(page.header.title);
    json.key("subtitle").optionalText(page.header.subtitle);
    json.key("duration").text(page.header.duration);
    json.key("statistics");
    writeStatistics(json, page.statistics);
    json.key("activity").beginArray();
    for (const std::int64_t seconds : page.activity->days.value_or(EntityActivity::Days{})) {
        json.integer(seconds);
    }
    json.endArray().key("lastPlayed").text(page.lastPlayed);
    json.key("sections").beginArray();
    for (const EntityList& list : page.lists) {
        json.beginObject().key("title").text(EntitySections::titleForSection(list.section));
        json.key("items");
        writeRows(json, list.rows);
        json.endObject();
    }
    json.endArray().endObject().finish();
}

/// Thirty columns, the oldest day at the left.
std::string chartOf(const EntityActivity::Days& days, const TerminalAbilities& abilities) {
    constexpr std::array<const char*, 9> blocks{"·", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    constexpr std::array<const char*, 9> letters{".", ":", ":", ":", "+", "+", "#", "#", "#"};
    const std::int64_t most = *std::max_element(days.begin(), days.end());
    std::string chart;
    for (const std::int64_t seconds : days) {
        const std::int64_t step = most == 0 ? 0 : (seconds * 8 + most - 1) / most;
        const auto place = static_cast<std::size_t>(step);
        chart += abilities.showsSymbols ? blocks[place] : letters[place];
    }
    return chart;
}

void printTop(const EntityPage& page, const TerminalAbilities& abilities) {
    fmt::print("{}\n", page.header.title.value_or("—"));
    std::string line = page.header.subtitle.value_or("");
    for (const std::string& more :
         {page.header.duration,
          printed(page.header.icons.value_or(NSAttributedString()), abilities)}) {
        line += (line.empty() || more.empty() ? "" : "  ") + more;
    }
    fmt::print("{}\n\n", line);
    for (const RVStatisticReference& tile : page.statistics) {
        NSAttributedString caption(tile->caption());
        if (tile->icon()) {
            caption = RVMetadataManager::attributedString(tile->caption(), *tile->icon());
        }
        fmt::print("{}  {}\n", fitted(caption, 24, abilities), tile->value());
    }
    fmt::print("\n{}\n", EntitySections::titleForSection(EntitySection::recentActivity));
    fmt::print("{}\n", page.lastPlayedText());
    if (page.activity->days) {
        fmt::print("{}\n", chartOf(*page.activity->days, abilities));
    } else {
        fmt::print("No plays in the last 30 days\n");
    }
}

void printPage(const EntityPage& page) {
    const TerminalAbilities abilities = TerminalAbilities::ofStandardOutput();
    printTop(page, abilities);
    for (const EntityList& list : page.lists) {
        const std::vector<std::string> sorts =
            EntitySections::sortTitlesForSection(list.section, page.entity);
        const EntitySort& sort = list.sort;
        fmt::print("\n{}  ({}{})\n", EntitySections::titleForSection(list.section),
                   sort.type < sorts.size() ? sorts[sort.type] : "—",
                   sort.reverse ? ", reversed" : "");
        for (std::size_t place = 0; place < list.rows.size(); ++place) {
            fmt::print("{}\n", lineOf(list.rows.row(place), abilities));
        }
    }
}

}  // namespace

void EntityCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("entity", "Show one song, album, artist, genre or playlist");
    described_.text("KIND", kind_, std::string("What it is: ") + entityKinds).required();
    described_.text("NAME", search_.name, "What it is called").required();
    described_.text("--artist", search_.artist, "Whose song or album it is");
    described_.text("--id", persistentID_, "Its persistentID, where several have the same name");
    described_.text("--sort", sort_,
                    "Sort one list, for this time: SECTION:TYPE or SECTION:TYPE:reverse");
}

Outcome EntityCommand::execute(Session& session) {
    const auto kind = entityKindOf(kind_);
    if (!kind) {
        return Outcome::usage(
            fmt::format("there is no kind '{}'; kinds are {}", kind_, entityKinds));
    }
    search_.kind = *kind;
    if (!search_.artist.empty() && *kind != EntityKind::song && *kind != EntityKind::album) {
        return Outcome::usage("--artist tells songs and albums apart; leave it out");
    }
    if (!persistentID_.empty()) {
        search_.persistentID = numberOf(persistentID_);
        if (!search_.persistentID) {
            return Outcome::usage(fmt::format(
                "'{}' is not a persistentID; search --json prints them", persistentID_));
        }
    }
    const std::optional<AskedSort> asked = sort_.empty() ? std::nullopt : askedSort(sort_);
    if (!sort_.empty() && !asked) {
        return Outcome::usage(fmt::format("'{}' is not a sort; {}", sort_, sortHelp));
    }
    if (Outcome opened = session.openLibrary(); !opened.isDone()) {
        return opened;
    }
    const FoundEntity found = findEntity(search_);
    if (!found.outcome.isDone()) {
        return found.outcome;
    }
    if (Outcome opened = session.openStore(); !opened.isDone()) {
        return opened;
    }
    const EntityPage page = pageOf(found.entity, asked, session);
    if (asked && page.list(asked->section) == nullptr) {
        return Outcome::usage(
            fmt::format("a {} has no list of {}", kind_, sort_.substr(0, sort_.find(':'))));
    }
    if (session.options().json) {
        writePage(page);
    } else {
        printPage(page);
    }
    return {};
}

}  // namespace tavrion::ctl
