#include "platform/foundation/NSUUID.h"

#include <pthread.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <atomic>
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

/// Counts the forks that are behind this process.
std::atomic<unsigned> forks{0};

/// Random numbers of the kernel, fetched for several identifiers at a time. After a fork the child
/// fetches again, so that the two processes never give the same identifier.
class RandomBytes {
  public:
    std::array<unsigned char, 16> next() {
        if (used_ == bytes_.size() || forksBefore_ != forks.load()) {
            fetch();
        }
        std::array<unsigned char, 16> taken{};
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(used_), taken.size(),
                    taken.begin());
        used_ += taken.size();
        return taken;
    }

  private:
    void fetch() {
        static const int watchesForks =
            ::pthread_atfork(nullptr, nullptr, [] { forks.fetch_add(1); });
        precondition(watchesForks == 0, "forks can be watched");
        forksBefore_ = forks.load();
        ssize_t count = 0;
        do {
            count = ::getrandom(bytes_.data(), bytes_.size(), 0);
        } while (count < 0 && errno == EINTR);
        precondition(count == static_cast<ssize_t>(bytes_.size()),
                     "the system gives random numbers");
        used_ = 0;
    }

    // Up to 256 bytes come whole.
    std::array<unsigned char, 256> bytes_{};
    std::size_t used_ = bytes_.size();
    unsigned forksBefore_ = 0;
};

}  // namespace

std::string UUIDString() {
    static constexpr char digits[] = "0123456789ABCDEF";
    thread_local RandomBytes random;
    std::array<unsigned char, 16> bytes = random.next();
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);  // version 4: random
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);  // the usual variant
    std::string text(36, '-');
    std::size_t place = 0;
    for (const unsigned char byte : bytes) {
        place += isHyphenPlace(place) ? 1 : 0;
        text[place++] = digits[byte >> 4];
        text[place++] = digits[byte & 0x0F];
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
