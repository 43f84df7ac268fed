#include "platform/foundation/JsonText.h"

#include <algorithm>
// The library takes five seconds to compile and is included nowhere else.
#include <nlohmann/json.hpp>

namespace tavrion::JsonText {
namespace {

using nlohmann::json;

bool isDeeperThan(int levels, const json& document) {
    return document.is_structured() &&
           (levels == 0 || std::any_of(document.begin(), document.end(), [&](const json& each) {
                return isDeeperThan(levels - 1, each);
            }));
}

Value valueOfJson(const json& document) {
    if (document.is_boolean()) {
        return document.get<bool>();
    }
    if (document.is_number_integer()) {
        return document.get<std::int64_t>();
    }
    if (document.is_number()) {
        return document.get<double>();
    }
    if (document.is_string()) {
        return document.get<std::string>();
    }
    if (document.is_array()) {
        Value::Array array;
        for (const json& element : document) {
            array.push_back(valueOfJson(element));
        }
        return array;
    }
    if (document.is_object()) {
        Value::Dictionary dictionary;
        for (const auto& [name, element] : document.items()) {
            dictionary[name] = valueOfJson(element);
        }
        return dictionary;
    }
    return {};
}

json jsonOfValue(const Value& value) {
    if (const auto* array = value.get<Value::Array>()) {
        json document = json::array();
        for (const Value& element : *array) {
            document.push_back(jsonOfValue(element));
        }
        return document;
    }
    if (const auto* dictionary = value.get<Value::Dictionary>()) {
        json document = json::object();
        for (const auto& [name, element] : *dictionary) {
            document[name] = jsonOfValue(element);
        }
        return document;
    }
    if (const auto* text = value.get<std::string>()) {
        return *text;
    }
    if (const auto* integer = value.get<std::int64_t>()) {
        return *integer;
    }
    if (const auto* number = value.get<double>()) {
        return *number;
    }
    const auto* flag = value.get<bool>();
    return flag != nullptr ? json(*flag) : json();
}

}  // namespace

std::optional<Value> valueOf(std::string_view text) {
    const json document = json::parse(text, nullptr, false);
    return document.is_discarded() || isDeeperThan(deepestLevel, document)
               ? std::nullopt
               : std::optional(valueOfJson(document));
}

std::string textOf(const Value& value, int indentation) {
    return jsonOfValue(value).dump(indentation, ' ', false, json::error_handler_t::replace);
}

}  // namespace tavrion::JsonText
