// Where the real libraries are that some tests read.
//
// They are not part of the source tree: the environment variable TAVRION_REAL_DATA names their
// directory, or else they are beside the source tree. Without them such a test is skipped and says
// so.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tavrion {

/// Absent when there is no such directory.
inline std::optional<std::filesystem::path> realDataDirectory() {
    const char* named = std::getenv("TAVRION_REAL_DATA");
    const std::filesystem::path directory =
        named != nullptr && *named != '\0'
            ? std::filesystem::path(named)
            : std::filesystem::path(TAVRION_SOURCE_DIR).parent_path() / "shared" / "data";
    std::error_code failure;
    return std::filesystem::is_directory(directory, failure) ? std::optional(directory)
                                                             : std::nullopt;
}

}  // namespace tavrion

/// Skips the rest of the test when there is no real data.
#define TAVRION_SKIP_WITHOUT_REAL_DATA()                                                    \
    if (!tavrion::realDataDirectory()) {                                                    \
        GTEST_SKIP() << "there is no real data; name its directory with TAVRION_REAL_DATA"; \
    }                                                                                       \
    static_assert(true)
