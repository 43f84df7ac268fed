// Feeds any bytes to the reader of the user defaults: it answers with values that a file can hold
// again, or with one line.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "fuzz/Require.h"
#include "platform/foundation/PropertyList.h"

using tavrion::Value;
using tavrion::fuzz::require;
using tavrion::fuzz::requireOneLine;

namespace {

bool isNotANumber(const Value& value) {
    const auto* real = value.get<double>();
    const auto* date = value.get<tavrion::NSDate>();
    return (real != nullptr && std::isnan(*real)) ||
           (date != nullptr && std::isnan(date->timeIntervalSinceReferenceDate()));
}

/// Equal, where what is no number equals itself too.
bool isSame(const Value& a, const Value& b) {
    const auto* list = a.get<Value::Array>();
    const auto* otherList = b.get<Value::Array>();
    if (list != nullptr && otherList != nullptr) {
        return std::equal(list->begin(), list->end(), otherList->begin(), otherList->end(), isSame);
    }
    const auto* names = a.get<Value::Dictionary>();
    const auto* otherNames = b.get<Value::Dictionary>();
    if (names != nullptr && otherNames != nullptr) {
        return std::equal(names->begin(), names->end(), otherNames->begin(), otherNames->end(),
                          [](const auto& one, const auto& other) {
                              return one.first == other.first && isSame(one.second, other.second);
                          });
    }
    return a == b || (isNotANumber(a) && isNotANumber(b));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto read = tavrion::PropertyList::dictionaryOf(bytes);
    if (!read) {
        requireOneLine(read.error().localizedDescription);
        return 0;
    }
    // Written and read again nothing is lost, so that a file keeps what others have put there.
    const auto again =
        tavrion::PropertyList::dictionaryOf(tavrion::PropertyList::binaryOf(read.value()));
    require(again.ok());
    require(isSame(Value(again.value()), Value(read.value())));
    return 0;
}
