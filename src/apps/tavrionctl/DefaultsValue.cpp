#include "apps/tavrionctl/DefaultsValue.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "apps/tavrionctl/JsonWriter.h"

namespace tavrion::ctl {
namespace {

/// The value that a piece of JSON stands for; null has none.
Value valueOfJson(const nlohmann::json& json) {
    if (json.is_boolean()) {
        return json.get<bool>();
    }
    if (json.is_number_integer()) {
        return json.get<std::int64_t>();
    }
    if (json.is_number()) {
        return json.get<double>();
    }
    if (json.is_string()) {
        return json.get<std::string>();
    }
    if (json.is_array()) {
        Value::Array array;
        for (const nlohmann::json& element : json) {
            array.push_back(valueOfJson(element));
        }
        return array;
    }
    if (json.is_object()) {
        Value::Dictionary dictionary;
        for (const auto& [name, element] : json.items()) {
            dictionary[name] = valueOfJson(element);
        }
        return dictionary;
    }
    return {};
}

/// More than anybody writes; all that goes down into a value does so by recursion.
constexpr int deepestLevel = 100;

/// Whether a file of defaults can hold the value.
bool isStorable(const nlohmann::json& json, int level) {
    return level <= deepestLevel &&
           std::all_of(json.begin(), json.end(), [&](const nlohmann::json& each) {
               const bool isHole = json.is_array() && each.is_null();
               return !isHole && (!each.is_structured() || isStorable(each, level + 1));
           });
}

std::optional<Value> storableValueOfJson(const nlohmann::json& json) {
    return isStorable(json, 1) ? std::optional(valueOfJson(json)) : std::nullopt;
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
        const nlohmann::json json = nlohmann::json::parse(texts.front(), nullptr, false);
        return json.is_array() ? storableValueOfJson(json) : std::nullopt;
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
        const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
        return json.is_object() ? storableValueOfJson(json) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace tavrion::ctl
