#include "apps/tavrionctl/DefaultsValue.h"

#include <algorithm>
#include <charconv>

#include "apps/tavrionctl/JsonWriter.h"
#include "platform/foundation/JsonText.h"

namespace tavrion::ctl {
namespace {

/// A list has no holes. A member that is null is left out.
bool hasHole(const Value& value) {
    if (const auto* array = value.get<Value::Array>()) {
        return std::any_of(array->begin(), array->end(),
                           [](const Value& each) { return each.isAbsent() || hasHole(each); });
    }
    const auto* dictionary = value.get<Value::Dictionary>();
    return dictionary != nullptr &&
           std::any_of(dictionary->begin(), dictionary->end(),
                       [](const auto& member) { return hasHole(member.second); });
}

/// The JSON value of that text, where it is one of type T and a file of defaults can hold it.
template <class T>
std::optional<Value> storableValue(const std::string& text) {
    std::optional<Value> value = JsonText::valueOf(text);
    return value && value->get<T>() != nullptr && !hasHole(*value) ? value : std::nullopt;
}

std::optional<Value> boolOf(const std::string& text) {
    if (text == "true" || text == "yes" || text == "YES" || text == "1") {
        return Value(true);
    }
    if (text == "false" || text == "no" || text == "NO" || text == "0") {
        return Value(false);
    }
    return std::nullopt;
}

std::optional<Value> integerOf(const std::string& text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(Value(number))
                                                                    : std::nullopt;
}

std::optional<Value> arrayOf(const std::vector<std::string>& texts) {
    if (texts.size() == 1 && texts.front().starts_with('[')) {
        return storableValue<Value::Array>(texts.front());
    }
    return Value(Value::Array(texts.begin(), texts.end()));
}

}  // namespace

std::optional<Value> defaultsValue(const std::string& type, const std::vector<std::string>& texts) {
    if (type == "-array") {
        return arrayOf(texts);
    }
    if (texts.size() != 1) {
        return std::nullopt;
    }
    const std::string& text = texts.front();
    if (type == "-bool") {
        return boolOf(text);
    }
    if (type == "-int") {
        return integerOf(text);
    }
    if (type == "-string") {
        return Value(text);
    }
    if (type == "-date") {
        const std::optional<NSDate> date = dateFromIsoText(text);
        return date ? std::optional(Value(*date)) : std::nullopt;
    }
    if (type == "-data") {
        auto bytes = bytesOfBase64(text);
        return bytes ? std::optional(Value(NSData{std::move(*bytes)})) : std::nullopt;
    }
    if (type == "-dict") {
        return storableValue<Value::Dictionary>(text);
    }
    return std::nullopt;
}

}  // namespace tavrion::ctl
