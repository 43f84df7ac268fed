// Feeds any bytes to the reader of the user defaults: it answers with values that a file can hold
// again, or with one line.
#include <cstdint>
#include <string_view>

#include "fuzz/Require.h"
#include "platform/foundation/PropertyList.h"

using tavrion::fuzz::require;
using tavrion::fuzz::requireOneLine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto read = tavrion::PropertyList::dictionaryOf(bytes);
    if (!read) {
        requireOneLine(read.error().localizedDescription);
        return 0;
    }
    // Written and read again nothing is lost, so that a file keeps what others have put there.
    const std::string written = tavrion::PropertyList::binaryOf(read.value());
    const auto again = tavrion::PropertyList::dictionaryOf(written);
    require(again.ok());
    require(tavrion::PropertyList::binaryOf(again.value()) == written);
    return 0;
}
