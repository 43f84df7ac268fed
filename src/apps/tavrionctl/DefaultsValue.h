// A user default as it is written on the command line.
//
// Queue: any; stateless.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Value.h"

namespace tavrion::ctl {

/// The value of a type (-bool, -int, -date, -string, -array, -data in base64, -dict as JSON) and
/// its texts. Absent when they do not fit, or when no file of defaults could hold the value: a null
/// in an array, or values too deep inside each other.
std::optional<Value> defaultsValue(const std::string& type, const std::vector<std::string>& texts);

}  // namespace tavrion::ctl
