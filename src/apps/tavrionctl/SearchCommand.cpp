#include "apps/tavrionctl/SearchCommand.h"

#include <fmt/format.h>

#include <algorithm>

#include "apps/tavrionctl/RowPrinting.h"
#include "apps/tavrionctl/Session.h"
#include "library/search/LibrarySearch.h"
#include "library/search/SearchTerm.h"

namespace tavrion::ctl {
namespace {

/// Hits carry no rank, and the value of the alphabetical list. Each row is made when its turn
/// comes.
EntityRow rowOf(const MPMediaEntity& entity) {
    return EntityRows({entity}, RVSortTypeAlphabetical).row(0);
}

void writeList(JsonWriter& json, const char* name, const FoundEntities& hits) {
    json.key(name).beginArray();
    for (const MPMediaEntity& hit : hits) {
        writeRow(json, rowOf(hit));
    }
    json.endArray();
}

void writeResults(const SearchResults& results) {
    JsonWriter json(stdout);
    json.beginObject();
    writeList(json, "artists", results.artists);
    writeList(json, "albums", results.albums);
    writeList(json, "songs", results.songs);
    writeList(json, "playlists", results.playlists);
    json.endObject().finish();
}

void printResults(const SearchResults& results, bool showsAll) {
    const TerminalAbilities abilities = TerminalAbilities::ofStandardOutput();
    bool isFirst = true;
    for (const SearchSection& section : searchSnapshotOf(results)) {
        const SearchSectionHeader header = headerOfSection(*section.identifier);
        fmt::print("{}{}\n", isFirst ? "" : "\n", header.title);
        isFirst = false;
        const FoundEntities& hits = *resultsForTag(results, header.buttonTag);
        const auto shown = std::min(hits.size(), showsAll ? hits.size() : LibrarySearch::rowLimit);
        for (std::size_t place = 0; place < shown; ++place) {
            fmt::print("{}\n", lineOf(rowOf(hits[place]), abilities));
        }
        if (!showsAll && !header.isButtonHidden) {
            fmt::print("{:>5}  {}: --all\n", "", header.buttonTitle);
        }
    }
}

}  // namespace

void SearchCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command(
        "search",
        "Find artists, albums, songs and playlists; capitals as in the library rank best");
    described_.text("TERM", term_, "What to look for; a title may have its words anywhere")
        .required();
    described_.flag("--all", showsAll_, "Print every hit, not the first five of each kind");
}

Outcome SearchCommand::execute(Session& session) {
    const std::string_view term = trimmedTerm(term_);
    if (term.empty()) {
        return Outcome::usage("the term to search for is empty; write one, as in search blue");
    }
    if (Outcome opened = session.openLibrary(); !opened.isDone()) {
        return opened;
    }
    const SearchResults results = LibrarySearch().results(term);
    if (session.options().json) {
        writeResults(results);
        return {};
    }
    if (searchSnapshotOf(results).empty()) {
        session.say(fmt::format("Nothing in the library matches '{}'.", term));
    }
    printResults(results, showsAll_);
    return {};
}

}  // namespace tavrion::ctl
