// The values of one property of records that are being inserted: any of them can still change.
//
// Queue: its owner's; once shared with a change set it is immutable. Every value is one cell of
// eight bytes; texts are in one block of bytes, to which a changed text is added again. A value of
// another type than the column's, or an absent one, is stored as never set; a date that is not a
// number is an absent one. A view lives until the next change.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/coredata/Field.h"

namespace tavrion {

class DraftColumn {
  public:
    explicit DraftColumn(NSAttributeType type);

    std::size_t size() const { return cells_.size(); }
    /// One more row, never set.
    void addRow() { cells_.push_back(unset_); }
    void set(std::size_t row, const FieldView& value);
    FieldView at(std::size_t row) const;

    /// Cells as they are: a number's bits, a reference's counter, or where a text is.
    std::span<const std::uint64_t> cells() const { return cells_; }
    /// The text that a cell stands for; nothing for an absent one.
    std::optional<std::string_view> textOf(std::uint64_t cell) const;

  private:
    std::uint64_t cellOf(const FieldView& value);

    NSAttributeType type_;
    std::uint64_t unset_;
    std::vector<std::uint64_t> cells_;
    std::string bytes_;
};

}  // namespace tavrion
