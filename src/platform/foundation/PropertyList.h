// Property lists: values as bytes and back.
//
// Queue: any. Stateless. A list holds a dictionary at its top. An instant is kept as a dictionary
// with the one key "NS.time" and its seconds, because the date type of a list loses digits; such a
// dictionary therefore reads back as an instant, as a plain date does.
#pragma once

#include <string>
#include <string_view>

#include "platform/foundation/Result.h"
#include "platform/foundation/Value.h"

namespace tavrion::PropertyList {

/// The text as a list can hold it: what is not UTF-8, and each zero byte, becomes U+FFFD.
std::string storableText(std::string_view text);

/// The value as a list can hold it: its texts storable, absent members of dictionaries left out. An
/// ObjectReference, or an absent member of an array, is a broken promise.
Value storableValue(Value value);

/// The binary list of a dictionary of storable values.
std::string binaryOf(const Value::Dictionary& dictionary);

/// Reads a binary or an XML list. The error says what is wrong with it, without a full stop.
Result<Value::Dictionary> dictionaryOf(std::string_view data);

}  // namespace tavrion::PropertyList
