#include "bench/Fixtures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace tavrion::bench {
namespace {

template <class Make>
std::string made(std::string file, Make make) {
    if (!std::filesystem::exists(file)) {
        make(file);
    }
    return file;
}

void fill(const Fixtures& fixtures, const std::string& file) {
    peer_create(file.c_str(), storeSchema().c_str());
    peer_insert(file.c_str(), fixtures.rows.data(), fixtures.rows.size(), fixtures.plays.data(),
                fixtures.plays.size());
}

}  // namespace

std::size_t numberFromEnvironment(const char* name, std::size_t otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

void demand(bool holds, const char* what) {
    if (!holds) {
        fmt::print(stderr, "bench: {} does not hold\n", what);
        std::exit(1);
    }
}

std::string Fixtures::store() {
    return made(directory.file("store.sqlite"),
                [this](const std::string& file) { fill(*this, file); });
}

std::string Fixtures::indexedStore() {
    return made(directory.file("indexed.sqlite"), [this](const std::string& file) {
        fill(*this, file);
        peer_index(file.c_str());
    });
}

std::string Fixtures::musicXml() {
    return made(directory.file("Library.xml"),
                [this](const std::string& file) { writeMusicXml(songs, file); });
}

Fixtures& fixtures() {
    static Fixtures shared;
    return shared;
}

std::string freshFile() {
    static int number = 0;
    return fixtures().directory.file(fmt::format("fresh-{}.sqlite", ++number));
}

void noteTurn(benchmark::State& state, const BenchEnvironment& environment) {
    state.counters["longestTurn"] =
        std::max(static_cast<double>(state.counters["longestTurn"]), environment.longestTurn());
}

void measure(const char* name, void (*work)(benchmark::State&), int iterations) {
    benchmark::RegisterBenchmark(name, work)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->MeasureProcessCPUTime()
        ->Iterations(iterations);
}

}  // namespace tavrion::bench
