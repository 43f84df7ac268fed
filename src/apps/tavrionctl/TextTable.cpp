#include "apps/tavrionctl/TextTable.h"

#include <fmt/format.h>
#include <wchar.h>

#include "platform/foundation/NSCalendar.h"

namespace tavrion::ctl {
namespace {

/// The next character of well-formed UTF-8 and its length; a stray byte stands for itself.
std::pair<char32_t, std::size_t> characterAt(std::string_view text, std::size_t i) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned char first = byte(i);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC0 ? 1
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                                              : 4;
    if (length == 1 || i + length > text.size()) {
        return {first, 1};
    }
    char32_t code = first & (0xFFU >> (length + 1));
    for (std::size_t k = 1; k < length; ++k) {
        code = (code << 6U) | (byte(i + k) & 0x3FU);
    }
    return {code, length};
}

bool isBetween(char32_t c, char32_t first, char32_t last) {
    return c >= first && c <= last;
}

std::size_t widthOf(char32_t c) {
    const bool combining = isBetween(c, 0x300, 0x36F) || isBetween(c, 0x200B, 0x200F) ||
                           isBetween(c, 0x202A, 0x202E) || isBetween(c, 0xFE00, 0xFE0F) ||
                           isBetween(c, 0x1AB0, 0x1AFF) || isBetween(c, 0x20D0, 0x20FF);
    if (combining) {
        return 0;
    }
    const bool wide = isBetween(c, 0x1100, 0x115F) || isBetween(c, 0x2E80, 0xA4CF) ||
                      isBetween(c, 0xAC00, 0xD7A3) || isBetween(c, 0xF900, 0xFAFF) ||
                      isBetween(c, 0xFE30, 0xFE6F) || isBetween(c, 0xFF00, 0xFF60) ||
                      isBetween(c, 0xFFE0, 0xFFE6) || isBetween(c, 0x1F300, 0x1FAFF) ||
                      isBetween(c, 0x20000, 0x3FFFD);
    return wide ? 2 : 1;
}

}  // namespace

std::string localText(NSDate date) {
    const CivilTime time = NSCalendar::currentCalendar().timeZone().civilTime(date);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month, time.day,
                       time.hour, time.minute, time.second);
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto [character, length] = characterAt(text, i);
        width += widthOf(character);
        i += length;
    }
    return width;
}

std::string fitted(std::string_view text, std::size_t width) {
    const bool cut = displayWidth(text) > width;
    const std::size_t room = cut ? width - 1 : width;
    std::string result;
    std::size_t used = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto [character, length] = characterAt(text, i);
        if (used + widthOf(character) > room) {
            break;
        }
        used += widthOf(character);
        if (character < 0x20 || character == 0x7F) {
            result += ' ';
        } else {
            result.append(text, i, length);
        }
        i += length;
    }
    if (cut) {
        result += "…";
        ++used;
    }
    return result + std::string(width - used, ' ');
}

}  // namespace tavrion::ctl
