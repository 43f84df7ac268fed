// What every fuzz target demands.
#pragma once

#include <cstdlib>
#include <string>

namespace tavrion::fuzz {

/// Ends the run where `holds` is false: the input is kept as a finding.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// A message for people is one line and not endless.
inline void requireOneLine(const std::string& message) {
    require(!message.empty() && message.find('\n') == std::string::npos && message.size() < 1000);
}

}  // namespace tavrion::fuzz
