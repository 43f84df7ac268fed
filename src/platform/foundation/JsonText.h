// JSON texts: values as text and back.
//
// Queue: any. Stateless. Null is the absent value.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace tavrion::JsonText {

/// More than anybody writes; whoever reads a value goes down into it by recursion.
inline constexpr int deepestLevel = 100;

/// The value that the text stands for; absent when it is not JSON or is deeper than that. A number
/// without a fraction is a whole one.
std::optional<Value> valueOf(std::string_view text);

/// The text of a value, a line for each member, each level indented by so many spaces more. What is
/// not UTF-8 becomes U+FFFD. A date, data or a reference has no form in JSON and is null.
std::string textOf(const Value& value, int indentation);

}  // namespace tavrion::JsonText
