// Feeds any bytes to the reader of what a user did to the sample library: it answers with a state
// that it would write and read again, or with one line.
#include <cstdint>
#include <string_view>

#include "fuzz/Require.h"
#include "sources/sample/SampleState.h"

using tavrion::SampleState;
using tavrion::fuzz::require;
using tavrion::fuzz::requireOneLine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto read =
        SampleState::fromText(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!read) {
        requireOneLine(read.error().localizedDescription);
        return 0;
    }
    const auto again = SampleState::fromText(read.value().text());
    require(again.ok() && again.value() == read.value());
    return 0;
}
