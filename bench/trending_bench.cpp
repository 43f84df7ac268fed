// The Trending screen beside its peer, over all plays and over one day of them.

#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench/TrendingWork.h"

namespace tavrion::bench {
namespace {

/// The same plays in the same order, whichever of the equal artists come first.
bool agrees(const TrendingSnapshot& ours, const peer_ranking& peers) {
    const auto samePlays = [](const TrendingRow& row, std::int64_t plays) {
        return static_cast<std::int64_t>(row->playCount) == plays;
    };
    return std::equal(ours.songs.begin(), ours.songs.end(), peers.song_plays,
                      peers.song_plays + peers.songs, samePlays) &&
           std::equal(ours.collections.begin(), ours.collections.end(), peers.artist_plays,
                      peers.artist_plays + peers.artists, samePlays) &&
           std::equal(ours.songs.begin(), ours.songs.end(), peers.song_ids,
                      [](const TrendingRow& row, std::int64_t song) {
                          return row->entity.item()->title() ==
                                 fixtures().songs[static_cast<std::size_t>(song) - 1].title;
                      });
}

void rankTavrion(benchmark::State& state, double start, double end, bool isFirst) {
    TrendingWork work(start, end);
    TrendingSnapshot ranking = work.update();
    for (auto _ : state) {
        if (isFirst) {
            state.PauseTiming();
            work.openScreen();
            state.ResumeTiming();
        }
        ranking = work.update();
    }
    const peer_ranking expected = peer_trending(fixtures().indexedStore().c_str(), start, end);
    demand(agrees(ranking, expected), "both rank the same");
}

void rankPeer(benchmark::State& state, double start, double end) {
    const std::string file = fixtures().indexedStore();
    for (auto _ : state) {
        const peer_ranking ranking = peer_trending(file.c_str(), start, end);
        demand(ranking.songs > 0 && ranking.artists > 0, "there is something to rank");
    }
}

constexpr double dayStart = endOfYears - tenYears / 2;
constexpr double dayEnd = dayStart + 86400;

void lifetimeTavrion(benchmark::State& state) {
    rankTavrion(state, lifetimeStart, lifetimeEnd, false);
}
void firstTavrion(benchmark::State& state) {
    rankTavrion(state, lifetimeStart, lifetimeEnd, true);
}
void lifetimePeer(benchmark::State& state) {
    rankPeer(state, lifetimeStart, lifetimeEnd);
}
void dayTavrion(benchmark::State& state) {
    rankTavrion(state, dayStart, dayEnd, false);
}
void dayPeer(benchmark::State& state) {
    rankPeer(state, dayStart, dayEnd);
}

[[maybe_unused]] const bool isRegistered = [] {
    constexpr int often = 10;
    measure("trending/tavrion", lifetimeTavrion, often);
    measure("trending/peer", lifetimePeer);
    measure("trending-first/tavrion", firstTavrion, often);
    measure("trending-day/tavrion", dayTavrion, often);
    measure("trending-day/peer", dayPeer, often);
    return true;
}();

}  // namespace
}  // namespace tavrion::bench
