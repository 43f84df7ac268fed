// Every list of Browse over the great library: no grouping and no sort may take more than 60 ms,
// nor longer than SQLite takes for the same rows in the same order. The names are
// "browse-GROUPING-SORT/tavrion" and "/peer". The eight tiles together ("tiles/tavrion") may take
// 50 ms, and the statistics of the largest genre, which a third of the songs have
// ("largest-genre/tavrion"), 20 ms.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>

#include "bench/GreatLibrary.h"
#include "library/RVBrowseCollectionViewController.h"
#include "library/RVQueryManager+Results.h"
#include "library/RVQueryManager+Statistics.h"

namespace tavrion::bench {
namespace {

struct Grouping {
    const char* name;
    MPMediaGrouping type;
    /// What the peer groups by; empty for none.
    const char* peerKey;
    /// What the peer shows, and its rows.
    const char* peerColumns;
    const char* peerRows = "song";
    bool splitsCompilations = false;
};

constexpr std::array groupings{
    Grouping{"songs", MPMediaGrouping::title, "", "id, title"},
    Grouping{"albums", MPMediaGrouping::album, "album", "album_title, count(*)"},
    Grouping{"artists", MPMediaGrouping::albumArtist, "album_artist COLLATE NOCASE",
             "album_artist, count(*)"},
    Grouping{"artists-split", MPMediaGrouping::albumArtist,
             "CASE WHEN compilation THEN artist ELSE album_artist END",
             "CASE WHEN compilation THEN artist ELSE album_artist END AS split, count(*)", "song",
             true},
    Grouping{"genres", MPMediaGrouping::genre, "genre", "genre, count(*)"},
    Grouping{"playlists", MPMediaGrouping::playlist, "playlist.id", "name, count(song.id)",
             "playlist JOIN entry ON entry.playlist = playlist.id"
             " JOIN song ON song.id = entry.song"},
};

struct Sort {
    const char* name;
    /// What the peer orders by: of a song, and of many together.
    const char* peerKey;
    const char* peerGroupKey;
};
constexpr std::array sorts{
    Sort{"alphabetical", "title COLLATE NOCASE", "1 COLLATE NOCASE"},
    Sort{"play-count", "play_count DESC", "sum(play_count) DESC"},
    Sort{"last-played", "last_played DESC", "max(last_played) DESC"},
    Sort{"time-listened", "play_count * duration DESC", "sum(play_count * duration) DESC"},
    Sort{"date-added", "added DESC", "max(added) DESC"},
    Sort{"release-date", "released DESC", "max(released) DESC"},
};

/// Both list the music alone, whatever else is in the library.
std::string peerQuery(const Grouping& grouping, const Sort& sort) {
    const bool isGrouped = *grouping.peerKey != '\0';
    return fmt::format("SELECT {} FROM {} WHERE media_type = 1 {}{} ORDER BY {}",
                       grouping.peerColumns, grouping.peerRows, isGrouped ? "GROUP BY " : "",
                       grouping.peerKey, isGrouped ? sort.peerGroupKey : sort.peerKey);
}

void peerBrowse(benchmark::State& state, const Grouping& grouping, const Sort& sort) {
    const LibraryEnvironment environment(false);
    library_peer* peer = greatPeer();
    const std::string query = peerQuery(grouping, sort);
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(library_peer_query(peer, query.c_str(), ""));
    }
}

void browse(benchmark::State& state, const Grouping& grouping, RVSortType sort) {
    const LibraryEnvironment environment(grouping.splitsCompilations);
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(
            RVQueryManager::resultsForQuery(nullptr, grouping.type, sort, false));
    }
}

void tiles(benchmark::State& state) {
    const LibraryEnvironment environment(false);
    for (auto step : state) {
        static_cast<void>(step);
        for (std::uint64_t index = 0; index < RVBrowseCollectionViewController::statisticCount;
             ++index) {
            benchmark::DoNotOptimize(RVBrowseCollectionViewController::statForIndex(index));
        }
    }
}

void statisticsOfLargestGenre(benchmark::State& state) {
    const LibraryEnvironment environment(false);
    const std::vector<MPMediaItemCollection> genres = MPMediaQuery::genresQuery().collections();
    const auto largest = std::max_element(
        genres.begin(), genres.end(),
        [](const auto& one, const auto& other) { return one.count() < other.count(); });
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(RVQueryManager::statsForMediaEntity(*largest));
    }
    state.counters["songs"] = static_cast<double>(largest->count());
}

template <class Measure>
void registerTimed(const std::string& name, Measure measure, int iterations) {
    benchmark::RegisterBenchmark(name.c_str(), measure)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(iterations);
}

bool registerAll() {
    registerTimed("tiles/tavrion", tiles, 10);
    registerTimed("largest-genre/tavrion", statisticsOfLargestGenre, 10);
    for (const Grouping& grouping : groupings) {
        for (RVSortType sort = 0; sort < sorts.size(); ++sort) {
            const std::string name = fmt::format("browse-{}-{}", grouping.name, sorts[sort].name);
            registerTimed(
                name + "/tavrion",
                [&grouping, sort](benchmark::State& state) { browse(state, grouping, sort); }, 5);
            registerTimed(
                name + "/peer",
                [&grouping, sort](benchmark::State& state) {
                    peerBrowse(state, grouping, sorts[sort]);
                },
                2);
        }
    }
    return true;
}

[[maybe_unused]] const bool isRegistered = registerAll();

}  // namespace
}  // namespace tavrion::bench
