// Where the name of the system's time zone and of the user's locale stands.
//
// Queue: any. Foundation's own, not for other rooms. Absent: no known zone is named there.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/NSTimeZone.h"

namespace tavrion::SystemZone {

/// The zone of the value of TZ: "Europe/Berlin", ":Europe/Berlin", or the path of a file in the
/// system's zone data. An empty value is UTC. `value` is null when the variable is not set.
std::optional<NSTimeZone> fromVariable(const char* value);
/// The zone whose file the symbolic link leads to.
std::optional<NSTimeZone> fromLink(const std::filesystem::path& link);
/// The zone named in the first line of a file.
std::optional<NSTimeZone> fromFile(const std::filesystem::path& file);

/// The ICU name of the first of `values` that is neither null nor empty, without encoding and
/// modifier; "en_US" when there is none or it is "C" or "POSIX".
std::string localeName(const std::vector<const char*>& values);

}  // namespace tavrion::SystemZone
