// What a longer run of a test may set from outside.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace tavrion {

inline std::uint64_t numberFromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtoull(text, nullptr, 10) : otherwise;
}

}  // namespace tavrion
