// The values of one property for a run of records, side by side.
//
// Queue: appended to by its maker alone, then shared and immutable. Texts are in one block of
// bytes. In reals() an absent date is not a number, so that a comparison with a range leaves it out
// by itself.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/coredata/DraftColumn.h"

namespace tavrion {

class Column {
  public:
    explicit Column(NSAttributeType type);

    NSAttributeType type() const { return type_; }
    std::size_t size() const;
    FieldView at(std::size_t row) const;

    void reserve(std::size_t rows);
    /// A field of another type than the column's, or an absent one, is stored as never set.
    void append(const FieldView& field);
    /// By the column's type, for whoever knows it. A real is also a date, not a number where it is
    /// absent; a reference to 0 is an absent one.
    void appendBoolean(bool value) {
        std::get<std::vector<std::uint8_t>>(values_).push_back(value ? 1 : 0);
    }
    void appendInteger(std::int64_t value) {
        std::get<std::vector<std::int64_t>>(values_).push_back(value);
    }
    void appendReal(double value) { std::get<std::vector<double>>(values_).push_back(value); }
    void appendReference(RecordCounter value) {
        std::get<std::vector<RecordCounter>>(values_).push_back(value);
    }
    void appendText(const std::optional<std::string_view>& value);
    /// The rows of a draft of the same type from `first` to before `last`.
    void appendDrafts(const DraftColumn& drafts, std::size_t first, std::size_t last);
    /// Appends the rows from `first` to before `last` of a column of the same type.
    void appendRange(const Column& other, std::size_t first, std::size_t last);

    std::span<const double> reals() const { return std::get<std::vector<double>>(values_); }
    std::span<const std::int64_t> integers() const {
        return std::get<std::vector<std::int64_t>>(values_);
    }
    std::span<const std::uint8_t> booleans() const {
        return std::get<std::vector<std::uint8_t>>(values_);
    }
    std::span<const RecordCounter> references() const {
        return std::get<std::vector<RecordCounter>>(values_);
    }

  private:
    struct Texts {
        std::vector<std::uint32_t> ends;
        std::vector<std::uint8_t> absent;
        std::string bytes;
    };
    std::string_view textAt(const Texts& texts, std::size_t row) const;

    NSAttributeType type_;
    std::variant<std::vector<std::uint8_t>, std::vector<std::int64_t>, std::vector<double>,
                 std::vector<RecordCounter>, Texts>
        values_;
};

}  // namespace tavrion
