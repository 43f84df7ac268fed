// Attributed text on a terminal: symbols as signs of the font, aligned by the columns they take.
//
// Queue: any; pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kit/NSAttributedString.h"

namespace tavrion::ctl {

/// What the place that is printed to can show.
struct TerminalAbilities {
    /// Signs beyond ASCII. Without them a symbol is a plain letter, or left out with its blank.
    bool showsSymbols = false;
    /// Grey; needs a terminal.
    bool showsColors = false;

    /// Of standard output, by the environment: LC_ALL, LC_CTYPE or LANG must say UTF-8, and TERM
    /// must not be one that is known to show letters only.
    static TerminalAbilities ofStandardOutput();
    /// The same of given values; null is a variable that is not set.
    static TerminalAbilities fromValues(const char* locale, const char* terminal, bool isTerminal);
};

/// Columns of the terminal that standard output is; absent when the output goes elsewhere.
std::optional<std::size_t> terminalColumns();

/// How a word stands out from others.
enum class TextStyle { plain, bold, grey, accent };

/// The text in that style, as it is where no colours are shown.
std::string styled(std::string_view text, TextStyle style, const TerminalAbilities& abilities);

std::string printed(const NSAttributedString& text, const TerminalAbilities& abilities);
/// Cut or filled to exactly that many columns; a cut ends in "…" (or "." where that cannot be
/// shown). Control characters become spaces.
std::string fitted(const NSAttributedString& text, std::size_t width,
                   const TerminalAbilities& abilities);

}  // namespace tavrion::ctl
