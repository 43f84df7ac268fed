// What a list shows: sections in order, each with its items, both by identifiers of any type.
//
// Queue: any; a value that one owner changes. Copies share the items of every section that neither
// of them has changed, so that keeping a long list costs next to nothing. A text, a date or a
// reference to a record identifies; an absent value stands for the platform's null object. No item
// stands twice in a list: whoever fills it sees to that.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "kit/NSIndexPath.h"
#include "platform/foundation/Value.h"

namespace tavrion {

/// The items of one section; immutable. References to records of one kind take four bytes each.
class SnapshotItems {
  public:
    SnapshotItems() = default;
    explicit SnapshotItems(std::vector<Value> identifiers) : items_(std::move(identifiers)) {}
    /// References whose upper half is `kind` and whose lower halves are given.
    SnapshotItems(std::uint32_t kind, std::vector<std::uint32_t> numbers);
    /// The same of `count` numbers from `first` on, of a list that other sections share.
    SnapshotItems(std::uint32_t kind, std::shared_ptr<const std::vector<std::uint32_t>> numbers,
                  std::size_t first, std::size_t count)
        : items_(References{kind, std::move(numbers), first, count}) {}

    std::size_t size() const;
    Value at(std::size_t row) const;
    std::optional<std::size_t> find(const Value& identifier) const;
    SnapshotItems without(std::size_t row) const;

  private:
    struct References {
        std::uint32_t kind = 0;
        std::shared_ptr<const std::vector<std::uint32_t>> all;
        std::size_t first = 0;
        std::size_t count = 0;
        std::span<const std::uint32_t> numbers() const {
            return std::span(*all).subspan(first, count);
        }
    };
    static Value referenceTo(std::uint32_t kind, std::uint32_t number) {
        return ObjectReference{(std::uint64_t{kind} << 32U) | number};
    }

    std::variant<std::vector<Value>, References> items_;
};

class NSDiffableDataSourceSnapshot {
  public:
    /// Has no sections at all.
    bool isEmpty() const { return sections_.empty(); }
    std::size_t numberOfSections() const { return sections_.size(); }
    std::size_t numberOfItems() const;
    /// 0 where there is no such section.
    std::size_t numberOfItemsInSection(std::size_t section) const;
    const Value& sectionIdentifier(std::size_t section) const {
        return sections_[section].identifier;
    }
    std::vector<Value> sectionIdentifiers() const;

    /// Absent where there is no such row; a row whose identifier is absent holds the absent value.
    std::optional<Value> itemIdentifierForIndexPath(NSIndexPath indexPath) const;
    std::optional<NSIndexPath> indexPathForItemIdentifier(const Value& identifier) const;
    std::vector<Value> itemIdentifiersInSection(std::size_t section) const;
    /// Of all sections, in order.
    std::vector<Value> itemIdentifiers() const;

    void reserveSections(std::size_t count) { sections_.reserve(count); }
    void appendSection(Value identifier, SnapshotItems items);
    /// A section that loses its last item stays. What is not in the list is not missed.
    void deleteItem(const Value& identifier);

    /// Whether both show the same.
    bool operator==(const NSDiffableDataSourceSnapshot& other) const;

  private:
    struct Section {
        Value identifier;
        std::shared_ptr<const SnapshotItems> items;
    };
    std::vector<Section> sections_;
};

}  // namespace tavrion
