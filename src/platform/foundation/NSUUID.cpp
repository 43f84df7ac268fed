#include "platform/foundation/NSUUID.h"

#include <sys/random.h>

#include <array>
#include <cerrno>

#include "platform/foundation/Precondition.h"

namespace tavrion::NSUUID {

namespace {

bool isHyphenPlace(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

bool isHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// From the kernel at each call: a generator kept in the process would give both halves of a fork
/// the same identifiers.
std::array<unsigned char, 16> randomBytes() {
    std::array<unsigned char, 16> bytes{};
    ssize_t count = 0;
    do {
        count = ::getrandom(bytes.data(), bytes.size(), 0);
    } while (count < 0 && errno == EINTR);
    precondition(count == static_cast<ssize_t>(bytes.size()), "the system gives random numbers");
    return bytes;
}

}  // namespace

std::string UUIDString() {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::array<unsigned char, 16> bytes = randomBytes();
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);  // version 4: random
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);  // the usual variant
    std::string text;
    text.reserve(36);
    for (const unsigned char byte : bytes) {
        if (isHyphenPlace(text.size())) {
            text += '-';
        }
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

bool stringIsValidUUID(std::string_view text) {
    if (text.size() != 36) {
        return false;
    }
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool fits = isHyphenPlace(index) ? text[index] == '-' : isHexadecimal(text[index]);
        if (!fits) {
            return false;
        }
    }
    return true;
}

}  // namespace tavrion::NSUUID
