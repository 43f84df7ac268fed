// What every fuzz target demands.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace tavrion::fuzz {

/// Ends the run where `holds` is false and says in which line: the input is kept as a finding.
inline void require(bool holds, int line = __builtin_LINE()) {
    if (!holds) {
        std::fprintf(stderr, "what line %d requires does not hold\n", line);
        std::abort();
    }
}

/// A message for people is one line and not endless.
inline void requireOneLine(const std::string& message, int line = __builtin_LINE()) {
    require(!message.empty() && message.find('\n') == std::string::npos && message.size() < 1000,
            line);
}

}  // namespace tavrion::fuzz
