#include "apps/tavrionctl/TextTable.h"

#include <fmt/format.h>

#include "platform/foundation/DisplayWidth.h"
#include "platform/foundation/NSCalendar.h"

namespace tavrion::ctl {
namespace {

std::string withBlanksForControls(std::string_view text) {
    std::string shown(text);
    for (char& byte : shown) {
        const auto code = static_cast<unsigned char>(byte);
        byte = code < 0x20 || code == 0x7F ? ' ' : byte;
    }
    return shown;
}

}  // namespace

std::string localText(NSDate date) {
    const CivilTime time = NSCalendar::currentCalendar().timeZone().civilTime(date);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month, time.day,
                       time.hour, time.minute, time.second);
}

std::string fitted(std::string_view text, std::size_t width) {
    if (width == 0) {
        return {};
    }
    const bool cut = displayWidth(text) > width;
    const std::string_view start = startOfWidth(text, cut ? width - 1 : width);
    const std::size_t used = displayWidth(start) + (cut ? 1 : 0);
    return withBlanksForControls(start) + (cut ? "…" : "") + std::string(width - used, ' ');
}

}  // namespace tavrion::ctl
