// One keystroke in the search bar over the great library: no term may take more than 40 ms. The
// names are "search-TERM/tavrion" and "search-TERM/peer"; the peer looks for the same with LIKE.
// What the first keystroke after a new library would wait for, unless it is made ready before, is
// "search-index/tavrion".

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <array>

#include "bench/GreatLibrary.h"
#include "library/search/LibrarySearch.h"

namespace tavrion::bench {
namespace {

struct Term {
    const char* name;
    const char* text;
};
constexpr std::array terms{Term{"1-letter", "a"},    Term{"2-letters", "an"},
                           Term{"3-letters", "and"}, Term{"6-letters", "abando"},
                           Term{"2-words", "an th"}, Term{"no-hit", "zzqzz"}};

constexpr std::array peerStages{
    "SELECT album_artist, count(*) FROM song WHERE album_artist LIKE ?1"
    " GROUP BY album_artist ORDER BY album_artist COLLATE NOCASE",
    "SELECT album_artist, album_title, count(*) FROM song"
    " WHERE album_title LIKE ?1 OR album_artist LIKE ?1"
    " GROUP BY album ORDER BY album_title COLLATE NOCASE",
    "SELECT id, title FROM song"
    " WHERE title LIKE ?1 OR album_artist LIKE ?1 OR album_title LIKE ?1"
    " ORDER BY title COLLATE NOCASE",
    "SELECT id, name FROM playlist WHERE name LIKE ?1 ORDER BY name COLLATE NOCASE"};

void keystroke(benchmark::State& state, const Term& term) {
    const LibraryEnvironment environment(false);
    LibrarySearch search;
    search.prepare();
    std::size_t hits = 0;
    for (auto step : state) {
        static_cast<void>(step);
        const SearchResults found = search.results(term.text);
        benchmark::DoNotOptimize(searchSnapshotOf(found));
        hits = found.songs.size();
    }
    state.counters["songs"] = static_cast<double>(hits);
}

void peerKeystroke(benchmark::State& state, const Term& term) {
    const LibraryEnvironment environment(false);
    library_peer* peer = greatPeer();
    const std::string pattern = fmt::format("%{}%", term.text);
    for (auto step : state) {
        static_cast<void>(step);
        for (const char* stage : peerStages) {
            benchmark::DoNotOptimize(library_peer_query(peer, stage, pattern.c_str()));
        }
    }
}

void makeIndex(benchmark::State& state) {
    const LibraryEnvironment environment(false);
    for (auto step : state) {
        static_cast<void>(step);
        LibrarySearch().prepare();
    }
}

template <class Measure>
void registerTimed(const std::string& name, Measure measure, int iterations) {
    benchmark::RegisterBenchmark(name.c_str(), measure)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(iterations);
}

bool registerAll() {
    for (const Term& term : terms) {
        registerTimed(
            fmt::format("search-{}/tavrion", term.name),
            [&term](benchmark::State& state) { keystroke(state, term); }, 10);
        registerTimed(
            fmt::format("search-{}/peer", term.name),
            [&term](benchmark::State& state) { peerKeystroke(state, term); }, 2);
    }
    registerTimed("search-index/tavrion", makeIndex, 1);
    return true;
}

[[maybe_unused]] const bool isRegistered = registerAll();

}  // namespace
}  // namespace tavrion::bench
