#include "platform/foundation/SystemZone.h"

#include <fstream>

namespace tavrion::SystemZone {

namespace {

/// "/usr/share/zoneinfo/Europe/Berlin" names Europe/Berlin.
std::optional<NSTimeZone> zoneOfPath(const std::string& path) {
    static const std::string folder = "/zoneinfo/";
    const std::size_t place = path.rfind(folder);
    return place == std::string::npos
               ? std::nullopt
               : NSTimeZone::timeZoneWithName(path.substr(place + folder.size()));
}

}  // namespace

std::optional<NSTimeZone> fromVariable(const char* value) {
    if (value == nullptr) {
        return std::nullopt;
    }
    std::string name = value;
    if (name.starts_with(':')) {
        name.erase(0, 1);
    }
    if (name.empty()) {
        return NSTimeZone();
    }
    return name.starts_with('/') ? zoneOfPath(name) : NSTimeZone::timeZoneWithName(name);
}

std::optional<NSTimeZone> fromLink(const std::filesystem::path& link) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(link, error);
    return error ? std::nullopt : zoneOfPath(target.string());
}

std::optional<NSTimeZone> fromFile(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::string name;
    stream >> name;
    return NSTimeZone::timeZoneWithName(name);
}

std::string localeName(const std::vector<const char*>& values) {
    for (const char* value : values) {
        if (value == nullptr || *value == '\0') {
            continue;
        }
        const std::string whole = value;
        const std::string name = whole.substr(0, whole.find_first_of(".@"));
        return name.empty() || name == "C" || name == "POSIX" ? "en_US" : name;
    }
    return "en_US";
}

}  // namespace tavrion::SystemZone
