// How fields become keys of a SortedIndex.
//
// Queue: any; pure functions. Dates and numbers keep their order; texts and combinations are
// hashed, so that a hit has to be checked against the record.
#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <optional>

#include "platform/coredata/Field.h"

namespace tavrion::IndexKeys {

/// Keeps the order of the numbers; the two zeros are one.
inline std::uint64_t ofNumber(double number) {
    const auto bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
    constexpr std::uint64_t sign = std::uint64_t{1} << 63U;
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

/// The number that has this key.
inline double numberOfKey(std::uint64_t key) {
    constexpr std::uint64_t sign = std::uint64_t{1} << 63U;
    return std::bit_cast<double>((key & sign) != 0 ? key & ~sign : ~key);
}

inline std::uint64_t ofDate(NSDate date) {
    return ofNumber(date.timeIntervalSinceReferenceDate());
}

/// Key of one field; an absent field of a single-property index has none.
inline std::optional<std::uint64_t> ofField(const FieldView& field) {
    if (const auto* text = std::get_if<std::string_view>(&field)) {
        return std::hash<std::string_view>{}(*text);
    }
    if (const auto* date = std::get_if<NSDate>(&field)) {
        return ofDate(*date);
    }
    if (const auto* link = std::get_if<Link>(&field)) {
        return link->counter;
    }
    if (const auto* number = std::get_if<double>(&field)) {
        return ofNumber(*number);
    }
    if (const auto* number = std::get_if<std::int64_t>(&field)) {
        return static_cast<std::uint64_t>(*number) ^ (std::uint64_t{1} << 63U);
    }
    return std::nullopt;
}

/// The key of a record in an index: `read(property)` gives its fields. Absent when the index does
/// not hold such records.
template <class Read>
std::optional<std::uint64_t> ofRecord(const NSIndexDescription& index, Read read) {
    if (index.properties.size() == 1) {
        return ofField(read(index.properties.front()));
    }
    std::uint64_t combined = 0;
    for (const PropertyIndex property : index.properties) {
        combined = (combined ^ ofField(read(property)).value_or(1)) * 0x9E3779B97F4A7C15U;
        combined ^= combined >> 29U;
    }
    return combined;
}

}  // namespace tavrion::IndexKeys
