// tavrion_truth FILE: the table of bench/truth for the ten years of plays in FILE.

#include <fmt/format.h>

#include <cstdio>
#include <string>

#include "bench/replay/Replay.h"

namespace {

using tavrion::bench::ReplayOptions;
using tavrion::bench::ReplayResult;

std::string span(double seconds) {
    if (seconds < 120) {
        return fmt::format("{:.0f} s", seconds);
    }
    return seconds < 2 * 3600 ? fmt::format("{:.0f} min", seconds / 60)
                              : fmt::format("{:.1f} h", seconds / 3600);
}

double quantile(const std::vector<double>& sorted, double part) {
    return sorted.empty()
               ? 0
               : sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

void print(const char* name, const ReplayResult& result) {
    fmt::print("{:<16} {:>7} {:>9} {:>9} {:>9} {:>9} {:>8} {:>8} {:>11} {:>8} {:>9} {:>8}\n", name,
               result.scans, result.truePlays, result.recorded, result.exact, result.estimated,
               span(quantile(result.errors, 0.5)), span(quantile(result.errors, 0.95)),
               result.lostBeforeFirstSight, result.lostLater, result.removedAsDouble,
               result.surplus);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fmt::print(stderr, "usage: tavrion_truth FILE\n");
        return 2;
    }
    // 2005 to 2015; a few plays of the file bear the date of a clock that was not set.
    constexpr double start = 1104537600;
    constexpr double end = 1451606400;
    const std::vector<tavrion::TruePlay> plays = tavrion::truePlays(argv[1], start, end);
    if (plays.empty()) {
        fmt::print(stderr, "tavrion_truth: {}: there are no plays in it\n", argv[1]);
        return 1;
    }
    fmt::print("{:<16} {:>7} {:>9} {:>9} {:>9} {:>9} {:>8} {:>8} {:>11} {:>8} {:>9} {:>8}\n",
               "a scan every", "scans", "true", "recorded", "exact", "estimates", "median", "95 %",
               "first sight", "lost", "doubles", "surplus");
    constexpr double hour = 3600;
    for (const bool twins : {false, true}) {
        for (const auto& [name, interval] :
             {std::pair("hour", hour), std::pair("6 hours", 6 * hour), std::pair("day", 24 * hour),
              std::pair("3 days", 72 * hour)}) {
            print((std::string(name) + (twins ? ", twins" : "")).c_str(),
                  tavrion::bench::replay(plays, {interval, twins}));
        }
    }
    fmt::print(
        "\nmedian, 95 %: how far an estimate lies from the play that it stands for\n"
        "first sight:  plays before a song was first seen; only the last of them is known\n"
        "lost:         plays that a scan could have recorded and that no event stands for\n"
        "doubles:      events removed because another event had the very same instant\n"
        "surplus:      events more than there were plays to record\n"
        "twins:        every two songs share title and duration, so that their records are one\n");
    return 0;
}
