// Looks at the keys of a property list before the library that reads it: that one ends the process
// over a key with the character NUL in it.
//
// Queue: any; stateless.
#pragma once

#include <string_view>

namespace tavrion::PropertyList {

/// Whether a key of the list, binary or XML, has the character NUL in it. False for bytes that are
/// no property list.
bool hasKeyWithNul(std::string_view data);

}  // namespace tavrion::PropertyList
