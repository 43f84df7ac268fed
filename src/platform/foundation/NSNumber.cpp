#include "platform/foundation/NSNumber.h"

#include <array>
#include <charconv>
#include <cmath>

namespace tavrion::NSNumber {

std::string stringValue(double number) {
    if (std::isnan(number)) {
        return "nan";  // a sign would say nothing
    }
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.begin(), text.end(), number, std::chars_format::general, 16).ptr;
    return std::string(text.begin(), end);
}

}  // namespace tavrion::NSNumber
