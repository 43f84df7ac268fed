// The record store and the scan, each beside the peer: the names are "WORK/tavrion" and
// "WORK/peer", and bench/report divides the medians.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cmath>

#include "bench/BenchEnvironment.h"
#include "bench/Fixtures.h"
#include "recording/PlayEvent.h"
#include "recording/PlayTotals.h"
#include "sources/musicxml/MusicXmlSource.h"

namespace tavrion::bench {
namespace {

// Opening

void openTavrion(benchmark::State& state) {
    const std::string file = fixtures().store();
    for (auto _ : state) {
        BenchEnvironment environment(file, endOfYears);
        const auto records = environment.main().snapshot();
        state.PauseTiming();
        demand(records->table(NerindaEntity::PlayEvent).size() == playCount, "all plays are read");
        state.ResumeTiming();
    }
}

void openPeer(benchmark::State& state) {
    const std::string file = fixtures().store();
    for (auto _ : state) {
        demand(peer_read_all(file.c_str()) == static_cast<std::int64_t>(songCount + playCount),
               "all rows are read");
    }
}

// Scans

void scanNothingNewTavrion(benchmark::State& state) {
    Fixtures& made = fixtures();
    BenchEnvironment environment(freshFile(), endOfYears);
    environment.publish(made.snapshot);
    environment.scan();
    for (auto _ : state) {
        environment.scan();
    }
    demand(environment.songsMatched() ==
               songCount * (static_cast<std::size_t>(state.iterations()) + 1),
           "every scan matches every song");
    demand(environment.main().snapshot()->table(NerindaEntity::PlayEvent).size() == songCount,
           "a scan with nothing new makes no play");
    noteTurn(state, environment);
}

void scanNothingNewPeer(benchmark::State& state) {
    Fixtures& made = fixtures();
    const std::string file = made.indexedStore();
    for (auto _ : state) {
        demand(peer_look_up(file.c_str(), made.rows.data(), made.rows.size()) ==
                   static_cast<std::int64_t>(songCount),
               "every song is found");
    }
}

void firstScanTavrion(benchmark::State& state) {
    Fixtures& made = fixtures();
    for (auto _ : state) {
        state.PauseTiming();
        {
            BenchEnvironment environment(freshFile(), endOfYears);
            environment.publish(made.snapshot);
            environment.main();
            state.ResumeTiming();
            environment.scan();
            state.PauseTiming();
            const auto records = environment.main().snapshot();
            demand(records->table(NerindaEntity::PlayEvent).size() == songCount &&
                       records->table(NerindaEntity::PlaybackHistory).size() == songCount,
                   "the first scan makes a record and a play of each song");
            demand(!environment.main().hasChanges(), "the first scan is on the disk");
            noteTurn(state, environment);
        }
        state.ResumeTiming();
    }
}

void firstScanPeer(benchmark::State& state) {
    Fixtures& made = fixtures();
    std::vector<peer_play> plays;
    for (std::size_t i = 0; i < songCount; ++i) {
        plays.push_back({made.songs[i].lastPlayed, 0, static_cast<std::uint32_t>(i + 1)});
    }
    for (auto _ : state) {
        state.PauseTiming();
        const std::string file = freshFile();
        peer_create(file.c_str(), storeSchema().c_str());
        state.ResumeTiming();
        peer_insert(file.c_str(), made.rows.data(), made.rows.size(), plays.data(), plays.size());
    }
}

// Aggregation

void aggregateTavrion(benchmark::State& state) {
    BenchEnvironment environment(fixtures().store(), endOfYears);
    const auto records = environment.main().snapshot();
    const NSDate start = NSDate::dateWithTimeIntervalSinceReferenceDate(endOfYears - tenYears - 1);
    const NSDate end = NSDate::dateWithTimeIntervalSinceReferenceDate(endOfYears + 1);
    PlayTotals totals;
    for (auto _ : state) {
        totals = playTotalsBetween(*records, start, end);
        benchmark::DoNotOptimize(totals);
    }
    static const peer_totals expected = peer_aggregate(fixtures().indexedStore().c_str(),
                                                       endOfYears - tenYears - 1, endOfYears + 1);
    demand(static_cast<std::int64_t>(totals.plays) == expected.plays &&
               static_cast<std::int64_t>(totals.songs) == expected.songs &&
               std::abs(totals.seconds - expected.seconds) < 1e-6 * expected.seconds,
           "both add up to the same");
}

void aggregatePeer(benchmark::State& state) {
    const std::string file = fixtures().indexedStore();
    for (auto _ : state) {
        demand(peer_aggregate(file.c_str(), endOfYears - tenYears - 1, endOfYears + 1).plays ==
                   static_cast<std::int64_t>(playCount),
               "all plays are added up");
    }
}

// Inserting

constexpr std::size_t insertedPlays = 10000;

/// A child inserts plays of songs all over the library and all over the years, saves into the main
/// context, and the clean-up looks at each. `existing` plays are in the main context already.
void insertPlays(benchmark::State& state, std::size_t existing) {
    Fixtures& made = fixtures();
    const std::string file = freshFile();
    peer_create(file.c_str(), storeSchema().c_str());
    const std::vector<peer_play> plays = makePlays(existing, songCount);
    peer_insert(file.c_str(), made.rows.data(), made.rows.size(), plays.data(), plays.size());
    BenchEnvironment environment(file, endOfYears);
    demand(!environment.main().hasChanges(), "the store is open before the time counts");
    const std::vector<peer_play> added = makePlays(insertedPlays, songCount);
    double shift = 0;
    for (auto _ : state) {
        shift += 1.0 / 1024;
        const auto context = environment.data->privateContext();
        context->performBlock([&, context] {
            for (const peer_play& play : added) {
                PlayEvent event = PlayEvent::insert(*context);
                event.setEventDate(
                    NSDate::dateWithTimeIntervalSinceReferenceDate(play.date + shift));
                PlaybackHistory(
                    NSManagedObject(*context, {NerindaEntity::PlaybackHistory, play.song}))
                    .addPlaysObject(event);
            }
            context->save().ignore();
        });
        environment.mainQueue->runUntilIdle();
    }
    demand(environment.main().snapshot()->table(NerindaEntity::PlayEvent).size() ==
               existing + insertedPlays * static_cast<std::size_t>(state.iterations()),
           "all inserted plays are in the main context");
    noteTurn(state, environment);
}

void insertIntoManyTavrion(benchmark::State& state) {
    insertPlays(state, playCount);
}
void insertIntoFewTavrion(benchmark::State& state) {
    insertPlays(state, insertedPlays);
}

// Reading a library

void musicXmlTavrion(benchmark::State& state) {
    const std::string file = fixtures().musicXml();
    MPMediaLibrary library;
    Regional region(*NSTimeZone::timeZoneWithName("Europe/Berlin"), "en_US");
    const Port<Regional>::Plug regionPlug(region);
    SourceRegistry sources;
    registerMusicXmlSource(sources);
    for (auto _ : state) {
        const auto source = sources.create("music-xml", file);
        const auto snapshot = source.value()->read();
        demand(snapshot.ok() && snapshot.value()->songs().size() == songCount,
               "every song of the export is read");
    }
}

void musicXmlPeer(benchmark::State& state) {
    std::string file = fixtures().musicXml();
    for (auto _ : state) {
        std::string program = "xmllint";
        std::string stream = "--stream";
        std::string quiet = "--noout";
        char* arguments[] = {program.data(), stream.data(), quiet.data(), file.data(), nullptr};
        pid_t process = 0;
        demand(::posix_spawnp(&process, "xmllint", nullptr, nullptr, arguments, environ) == 0,
               "xmllint (package libxml2-utils) is installed");
        int status = 0;
        ::waitpid(process, &status, 0);
        demand(WIFEXITED(status) && WEXITSTATUS(status) == 0, "xmllint reads the export");
    }
}

[[maybe_unused]] const bool isRegistered = [] {
    measure("open/tavrion", openTavrion);
    measure("open/peer", openPeer);
    measure("scan-nothing-new/tavrion", scanNothingNewTavrion, 3);
    measure("scan-nothing-new/peer", scanNothingNewPeer);
    measure("first-scan/tavrion", firstScanTavrion);
    measure("first-scan/peer", firstScanPeer);
    measure("aggregate/tavrion", aggregateTavrion, 5);
    measure("aggregate/peer", aggregatePeer);
    measure("insert-into-many/tavrion", insertIntoManyTavrion, 10);
    measure("insert-into-few/tavrion", insertIntoFewTavrion, 1);
    measure("music-xml/tavrion", musicXmlTavrion);
    measure("music-xml/peer", musicXmlPeer);
    return true;
}();

}  // namespace
}  // namespace tavrion::bench
