// Which music library the user has chosen, kept in library.json.
//
// Queue: the main thread. Absent means that none was chosen.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/foundation/Result.h"

namespace tavrion {

struct LibraryChoice {
    std::string kind;
    std::string location;
    bool operator==(const LibraryChoice&) const = default;
};

/// A file that is not what was written there is an error that names it.
Result<std::optional<LibraryChoice>> readLibraryChoice(const std::filesystem::path& file);
Result<void> writeLibraryChoice(const std::filesystem::path& file, const LibraryChoice& choice);

}  // namespace tavrion
