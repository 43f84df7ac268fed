#include "apps/tavrionctl/AttributedText.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "apps/tavrionctl/TextTable.h"
#include "platform/foundation/DisplayWidth.h"

namespace tavrion::ctl {
namespace {

struct Sign {
    std::string_view symbol;
    std::string_view sign;
    /// Empty: better nothing than a letter that says nothing.
    std::string_view plain;
};

/// Each takes one column.
constexpr std::array signs{
    Sign{"arrow.down.circle", "⤓", "v"},
    Sign{"calendar", "▦", ""},
    Sign{"calendar.badge.plus", "⊞", "+"},
    Sign{"chevron.down.square", "▽", ""},
    Sign{"chevron.up.square", "△", ""},
    Sign{"e.square.fill", "Ⓔ", "E"},
    Sign{"forward.fill", "»", ""},
    Sign{"music.note.list", "♫", ""},
    Sign{"play.fill", "▶", ""},
    Sign{"square.split.1x2", "⊟", ""},
    Sign{"star.fill", "★", "*"},
    Sign{"stopwatch", "⏱", ""},
    Sign{"timer", "⏲", ""},
};

/// What stands for the picture; empty when nothing does.
std::string_view signOf(const UIImage& image, bool showsSymbols) {
    const auto found = std::find_if(signs.begin(), signs.end(), [&](const Sign& sign) {
        return image.kind() == UIImage::Kind::symbol && sign.symbol == image.name();
    });
    if (found == signs.end()) {
        return {};
    }
    return showsSymbols ? found->sign : found->plain;
}

struct Piece {
    std::string text;
    bool isGrey = false;
};

std::string_view withoutBlankBefore(std::string_view text) {
    return text.starts_with(' ') ? text.substr(1) : text;
}

std::vector<Piece> piecesOf(const NSAttributedString& text, const TerminalAbilities& abilities) {
    std::vector<Piece> pieces;
    bool isSignMissing = false;
    for (const NSAttributedString::Run& run : text.runs()) {
        if (const auto* words = std::get_if<std::string>(&run)) {
            // The blank parts the words from a sign that is not there.
            pieces.push_back({std::string(isSignMissing ? withoutBlankBefore(*words) : *words)});
            isSignMissing = false;
            continue;
        }
        const auto& image = std::get<UIImage>(run);
        const std::string_view sign = signOf(image, abilities.showsSymbols);
        isSignMissing = sign.empty();
        pieces.push_back({std::string(sign), image.tintColor().has_value()});
    }
    return pieces;
}

std::string withColor(const std::string& text, bool isGrey, const TerminalAbilities& abilities) {
    return styled(text, isGrey ? TextStyle::grey : TextStyle::plain, abilities);
}

std::size_t widthOf(const std::vector<Piece>& pieces) {
    std::size_t width = 0;
    for (const Piece& piece : pieces) {
        width += displayWidth(piece.text);
    }
    return width;
}

const char* firstSet(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return nullptr;
}

}  // namespace

TerminalAbilities TerminalAbilities::ofStandardOutput() {
    return fromValues(firstSet({"LC_ALL", "LC_CTYPE", "LANG"}), std::getenv("TERM"),
                      ::isatty(STDOUT_FILENO) == 1);
}

TerminalAbilities TerminalAbilities::fromValues(const char* locale, const char* terminal,
                                                bool isTerminal) {
    std::string encoding = locale == nullptr ? "" : locale;
    std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const bool isUnicode =
        encoding.find("utf-8") != std::string::npos || encoding.find("utf8") != std::string::npos;
    const std::string_view kind = terminal == nullptr ? "" : terminal;
    const bool isPlain = kind == "dumb" || kind == "linux" || kind.starts_with("vt");
    return {isUnicode && !(isTerminal && isPlain), isTerminal && kind != "dumb" && !kind.empty()};
}

std::optional<std::size_t> terminalColumns() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0
               ? std::optional<std::size_t>(size.ws_col)
               : std::nullopt;
}

std::string styled(std::string_view text, TextStyle style, const TerminalAbilities& abilities) {
    // Codes of the terminal, in the order of the styles.
    constexpr std::array codes{"", "\033[1m", "\033[2m", "\033[35m"};
    if (style == TextStyle::plain || !abilities.showsColors || text.empty()) {
        return std::string(text);
    }
    return codes[static_cast<std::size_t>(style)] + std::string(text) + "\033[0m";
}

std::string printed(const NSAttributedString& text, const TerminalAbilities& abilities) {
    std::string result;
    for (const Piece& piece : piecesOf(text, abilities)) {
        result += withColor(piece.text, piece.isGrey, abilities);
    }
    return result;
}

std::string fitted(const NSAttributedString& text, std::size_t width,
                   const TerminalAbilities& abilities) {
    const std::vector<Piece> pieces = piecesOf(text, abilities);
    const bool isCut = widthOf(pieces) > width;
    std::size_t room = isCut && width > 0 ? width - 1 : width;
    std::string result;
    for (const Piece& piece : pieces) {
        const std::string_view start = startOfWidth(piece.text, room);
        const std::size_t used = displayWidth(start);
        result += withColor(fitted(start, used), piece.isGrey, abilities);
        room -= used;
        if (start.size() < piece.text.size()) {
            break;
        }
    }
    if (isCut && width > 0) {
        result += abilities.showsSymbols ? "…" : ".";
    }
    return result + std::string(room, ' ');
}

}  // namespace tavrion::ctl
