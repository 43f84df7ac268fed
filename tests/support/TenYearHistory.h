// One person's dated plays of ten years, read from the file of the real data.
//
// Queue: any; pure functions. Instants are seconds since 2001-01-01 UTC.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavrion {

struct TruePlay {
    double seconds = 0;
    /// Artist and title.
    std::string song;
};

/// All plays whose second is theirs alone, in the order of time, within [from, to) of Unix time.
/// Empty when the file can't be read.
std::vector<TruePlay> truePlays(const std::filesystem::path& file, double from, double to);

}  // namespace tavrion
