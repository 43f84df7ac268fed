// Universally unique identifiers as text.
//
// Queue: any.
#pragma once

#include <string>
#include <string_view>

namespace tavrion::NSUUID {

/// A new random identifier in upper case, another one at each call.
std::string UUIDString();
/// Whether the text is a well-formed identifier: 36 characters, hyphens at 8, 13, 18 and 23,
/// hexadecimal digits elsewhere.
bool stringIsValidUUID(std::string_view text);

}  // namespace tavrion::NSUUID
