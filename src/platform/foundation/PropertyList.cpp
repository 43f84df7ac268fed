#include "platform/foundation/PropertyList.h"

#include <plist/plist.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

#include "platform/foundation/PropertyListKeys.h"

namespace tavrion::PropertyList {

namespace {

constexpr const char* instantKey = "NS.time";
// Deeper lists are nobody's defaults; reading goes down by recursion.
constexpr int deepestLevel = 256;
// The library counts bytes in 32 bits.
constexpr std::size_t largestList = std::size_t{1} << 30;

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using Node = std::unique_ptr<void, FreeNode>;
template <class T>
using Allocated = std::unique_ptr<T, FreeMemory>;

NSError unreadable(std::string what) {
    return {std::move(what), {}};
}

// --- writing

plist_t nodeOf(const Value& value);

struct NodeMaker {
    plist_t operator()(bool value) const { return plist_new_bool(value ? 1 : 0); }
    // The library writes the bits of a negative number as a signed one.
    plist_t operator()(std::int64_t value) const {
        return plist_new_uint(static_cast<std::uint64_t>(value));
    }
    plist_t operator()(double value) const { return plist_new_real(value); }
    plist_t operator()(NSDate value) const {
        plist_t dictionary = plist_new_dict();
        plist_dict_set_item(dictionary, instantKey,
                            plist_new_real(value.timeIntervalSinceReferenceDate()));
        return dictionary;
    }
    plist_t operator()(const std::string& value) const { return plist_new_string(value.c_str()); }
    plist_t operator()(const NSData& value) const {
        return plist_new_data(value.bytes.data(), value.bytes.size());
    }
    plist_t operator()(const Value::Array& values) const {
        plist_t array = plist_new_array();
        for (const Value& each : values) {
            plist_array_append_item(array, nodeOf(each));
        }
        return array;
    }
    plist_t operator()(const Value::Dictionary& values) const {
        plist_t dictionary = plist_new_dict();
        for (const auto& [key, each] : values) {
            plist_dict_set_item(dictionary, key.c_str(), nodeOf(each));
        }
        return dictionary;
    }
    plist_t operator()(std::monostate) const { return refused(); }
    plist_t operator()(ObjectReference) const { return refused(); }

  private:
    static plist_t refused() {
        precondition(false, "only values that a property list can hold are written into one");
        return nullptr;
    }
};

plist_t nodeOf(const Value& value) {
    return std::visit(NodeMaker{}, value.alternatives());
}

// --- reading

Result<Value> valueOf(plist_t node, int level);

// The library gives the seconds of a date in 32 bits, which end in the years 1932 and 2069. The
// text of a list has no such end.
std::optional<NSDate> dateFromText(plist_t node) {
    char* text = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node, &text, &length);
    const Allocated<char> owner(text);
    const std::string_view xml =
        text == nullptr ? std::string_view() : std::string_view(text, length);
    constexpr std::string_view opening = "<date>";
    const std::size_t start = xml.find(opening);
    const std::size_t end = xml.find("</date>");
    if (start == std::string_view::npos || end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t first = start + opening.size();
    return dateFromIsoText(xml.substr(first, end - first));
}

Result<Value> plainDate(plist_t node) {
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    using Limits = std::numeric_limits<std::int32_t>;
    if (seconds != Limits::min() && seconds != Limits::max()) {
        const double fraction = static_cast<double>(microseconds) / 1e6;
        return Value(NSDate::dateWithTimeIntervalSinceReferenceDate(
            seconds < 0 ? seconds - fraction : seconds + fraction));
    }
    if (const auto date = dateFromText(node)) {
        return Value(*date);
    }
    return unreadable("it holds a date outside the years 1 to 9999");
}

Result<Value> arrayOf(plist_t node, int level) {
    Value::Array values;
    const std::uint32_t count = plist_array_get_size(node);
    values.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        Result<Value> each = valueOf(plist_array_get_item(node, i), level + 1);
        if (!each) {
            return each;
        }
        values.push_back(std::move(each).value());
    }
    return Value(std::move(values));
}

Result<Value> readDictionary(plist_t node, int level) {
    Value::Dictionary values;
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(node, &position);
    const Allocated<void> owner(position);
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, position, &key, &item);
        const Allocated<char> keyOwner(key);
        if (item == nullptr) {
            return Value(std::move(values));
        }
        Result<Value> each = valueOf(item, level + 1);
        if (!each) {
            return each;
        }
        values.insert_or_assign(storableText(key), std::move(each).value());
    }
}

/// A dictionary that stands for an instant as that instant.
Result<Value> dictionaryOrInstant(plist_t node, int level) {
    Result<Value> result = readDictionary(node, level);
    if (!result || level == 0) {
        return result;
    }
    const auto& dictionary = *result.value().get<Value::Dictionary>();
    const auto found = dictionary.find(instantKey);
    if (dictionary.size() != 1 || found == dictionary.end()) {
        return result;
    }
    const double* seconds = found->second.get<double>();
    if (seconds == nullptr) {
        return result;
    }
    return Value(NSDate::dateWithTimeIntervalSinceReferenceDate(*seconds));
}

Value scalarOf(plist_t node, plist_type type) {
    if (type == PLIST_BOOLEAN) {
        std::uint8_t flag = 0;
        plist_get_bool_val(node, &flag);
        return Value(flag != 0);
    }
    if (type == PLIST_UINT) {
        std::uint64_t bits = 0;
        plist_get_uint_val(node, &bits);
        return Value(bits);
    }
    double real = 0;
    plist_get_real_val(node, &real);
    return Value(real);
}

Value bytesOf(plist_t node, plist_type type) {
    std::uint64_t length = 0;
    const char* bytes = type == PLIST_DATA ? plist_get_data_ptr(node, &length)
                                           : plist_get_string_ptr(node, &length);
    std::string copy(bytes == nullptr ? "" : bytes, bytes == nullptr ? 0 : length);
    if (type == PLIST_DATA) {
        return Value(NSData{std::move(copy)});
    }
    return Value(storableText(copy));
}

Result<Value> valueOf(plist_t node, int level) {
    if (level > deepestLevel) {
        return unreadable("its values lie too deep inside each other");
    }
    const plist_type type = plist_get_node_type(node);
    switch (type) {
        case PLIST_BOOLEAN:
        case PLIST_UINT:
        case PLIST_REAL:
            return scalarOf(node, type);
        case PLIST_STRING:
        case PLIST_DATA:
            return bytesOf(node, type);
        case PLIST_DATE:
            return plainDate(node);
        case PLIST_ARRAY:
            return arrayOf(node, level);
        case PLIST_DICT:
            return dictionaryOrInstant(node, level);
        default:
            // Leaving it out would lose it at the next write.
            return unreadable("it holds a value of a type that defaults cannot hold");
    }
}

}  // namespace

std::string storableText(std::string_view text) {
    const auto isPlain = [](char c) { return c > 0; };
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        return std::string(text);
    }
    // The range of int32_t holds: no property list comes near it.
    auto units = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    constexpr char16_t replacement = 0xFFFD;
    for (std::int32_t i = 0; i < units.length(); ++i) {
        if (units.charAt(i) == 0) {
            units.setCharAt(i, replacement);
        }
    }
    std::string storable;
    units.toUTF8String(storable);
    return storable;
}

Value storableValue(Value value) {
    precondition(value.get<ObjectReference>() == nullptr,
                 "a reference to an object is never put into a property list");
    if (const auto* text = value.get<std::string>()) {
        return Value(storableText(*text));
    }
    if (const auto* array = value.get<Value::Array>()) {
        Value::Array storable;
        storable.reserve(array->size());
        for (const Value& each : *array) {
            precondition(!each.isAbsent(), "an array in a property list has no absent member");
            storable.push_back(storableValue(each));
        }
        return Value(std::move(storable));
    }
    if (const auto* dictionary = value.get<Value::Dictionary>()) {
        Value::Dictionary storable;
        for (const auto& [key, each] : *dictionary) {
            if (!each.isAbsent()) {
                storable.insert_or_assign(storableText(key), storableValue(each));
            }
        }
        return Value(std::move(storable));
    }
    return value;
}

std::string binaryOf(const Value::Dictionary& dictionary) {
    const Node top(NodeMaker{}(dictionary));
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(top.get(), &bytes, &length);
    const Allocated<char> owner(bytes);
    precondition(bytes != nullptr, "a property list of storable values can be written");
    return std::string(bytes, length);
}

Result<Value::Dictionary> dictionaryOf(std::string_view data) {
    if (data.size() > largestList) {
        return unreadable("it is too large");
    }
    plist_t parsed = nullptr;
    if (!data.empty()) {
        plist_from_memory(data.data(), static_cast<std::uint32_t>(data.size()), &parsed);
    }
    const Node top(parsed);
    if (!top || plist_get_node_type(top.get()) != PLIST_DICT) {
        return unreadable("it is not a property list with a dictionary at its top");
    }
    if (hasKeyWithNul(data)) {
        return unreadable("it has a key with the character NUL in it");
    }
    Result<Value> value = valueOf(top.get(), 0);
    if (!value) {
        return value.error();
    }
    return *value.value().get<Value::Dictionary>();
}

}  // namespace tavrion::PropertyList
