#include "apps/tavrionctl/LibraryChoice.h"

#include <fmt/format.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "apps/tavrionctl/DataDirectory.h"

namespace tavrion::ctl {

Result<std::optional<LibraryChoice>> readLibraryChoice(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream) {
        return std::optional<LibraryChoice>();
    }
    const nlohmann::json json = nlohmann::json::parse(stream, nullptr, false);
    if (!json.is_object() || !json.contains("kind") || !json["kind"].is_string() ||
        !json.contains("location") || !json["location"].is_string()) {
        return NSError{
            fmt::format("{}: the choice of the library can't be read; choose it again with "
                        "tavrionctl library use KIND LOCATION",
                        file.string()),
            {}};
    }
    return std::optional<LibraryChoice>(
        {json["kind"].get<std::string>(), json["location"].get<std::string>()});
}

Result<void> writeLibraryChoice(const std::filesystem::path& file, const LibraryChoice& choice) {
    const nlohmann::json json = {{"kind", choice.kind}, {"location", choice.location}};
    return replaceFile(file,
                       json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

}  // namespace tavrion::ctl
