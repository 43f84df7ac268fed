// What all measurements read and none changes: the made songs and plays, and files with them.
//
// Queue: one thread. Who owns: the process; made at the first use, gone with it. The sizes are
// 100,000 songs and 1,000,000 plays, or what TAVRION_BENCH_SONGS and TAVRION_BENCH_PLAYS say.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "bench/BenchData.h"
#include "bench/BenchEnvironment.h"

namespace tavrion::bench {

std::size_t numberFromEnvironment(const char* name, std::size_t otherwise);

inline const std::size_t songCount = numberFromEnvironment("TAVRION_BENCH_SONGS", 100000);
inline const std::size_t playCount = numberFromEnvironment("TAVRION_BENCH_PLAYS", 1000000);

/// Ends the process when work that was measured came out wrong.
void demand(bool holds, const char* what);

struct Fixtures {
    ScratchDirectory directory;
    std::vector<BenchSong> songs = makeSongs(songCount);
    std::vector<peer_song> rows = peerSongs(songs);
    std::vector<peer_play> plays = makePlays(playCount, songCount);
    std::shared_ptr<const MediaSnapshot> snapshot = snapshotOf(songs);

    /// A store with all songs and plays.
    std::string store();
    /// The same with the peer's indexes.
    std::string indexedStore();
    std::string musicXml();
};

/// The first call needs a plugged region: a library is put in order by somebody's collation.
Fixtures& fixtures();
/// A name in the directory of the fixtures that nothing has yet.
std::string freshFile();

/// The longest turns of the main queue that any measurement saw, by its name.
void noteTurn(benchmark::State& state, const BenchEnvironment& environment);
/// Registers a measurement; its name is "WORK/tavrion" or "WORK/peer".
void measure(const char* name, void (*work)(benchmark::State&), int iterations = 1);

}  // namespace tavrion::bench
