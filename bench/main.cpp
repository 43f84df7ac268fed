// Runs the measurements, which register themselves.
//
//   tavrion_bench --make=DIRECTORY   only puts the store and the library there, as files
//   tavrion_bench --rows=DIRECTORY   only puts the rows there, for a peer that is a program of its
//                                    own, and what they rank to

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string_view>

#include "bench/Fixtures.h"
#include "bench/RowFiles.h"

namespace tavrion::bench {
namespace {

void makeFixtures() {
    Regional region(*NSTimeZone::timeZoneWithName("Europe/Berlin"), "en_US");
    const Port<Regional>::Plug plug(region);
    fixtures();
}

void makeFiles(const std::string& directory) {
    std::filesystem::copy_file(fixtures().store(), directory + "/store.sqlite");
    std::filesystem::copy_file(fixtures().musicXml(), directory + "/Library.xml");
}

}  // namespace
}  // namespace tavrion::bench

int main(int argc, char** argv) {
    using namespace tavrion::bench;
    const std::string_view first = argc == 2 ? argv[1] : "";
    const std::string_view make = "--make=";
    const std::string_view rows = "--rows=";
    if (first.starts_with(make) || first.starts_with(rows)) {
        makeFixtures();
        const std::string directory(first.substr(make.size()));
        first.starts_with(make) ? makeFiles(directory) : writeRows(directory);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    makeFixtures();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
