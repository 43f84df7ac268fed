// Feeds any bytes to the reader of keyed archives: it answers with an interval or a set of dates
// that an archive can hold again, or with one line.
#include <cstdint>

#include "fuzz/Require.h"
#include "platform/foundation/NSKeyedArchiver.h"

using namespace tavrion;
using fuzz::require;
using fuzz::requireOneLine;

namespace {

template <class Object>
void readAs(const NSData& bytes) {
    const auto read = NSKeyedUnarchiver::unarchivedObjectOfClass<Object>(bytes);
    if (!read) {
        requireOneLine(read.error().localizedDescription);
        return;
    }
    const NSData written = NSKeyedArchiver::archivedDataWithRootObject(read.value());
    const auto again = NSKeyedUnarchiver::unarchivedObjectOfClass<Object>(written);
    require(again.ok() && again.value() == read.value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const NSData bytes{std::string(reinterpret_cast<const char*>(data), size)};
    readAs<NSDateInterval>(bytes);
    readAs<std::set<NSDate>>(bytes);
    return 0;
}
