// An immutable sorted index: keys with the records that have them, in the order of key, then
// record.
//
// Queue: any; immutable and shared. Entries lie in leaves; a changed index shares every leaf that
// did not change. Keys are order-preserving numbers of dates, counters of references, or hashes,
// for which the caller checks the record itself.
#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/coredata/NSManagedObjectID.h"

namespace tavrion {

class SortedIndex {
  public:
    struct Entry {
        std::uint64_t key = 0;
        RecordCounter record = 0;
        auto operator<=>(const Entry&) const = default;
    };

    SortedIndex() = default;
    /// From entries in any order.
    static std::shared_ptr<const SortedIndex> build(std::vector<Entry> entries);
    /// This index without `removed` and with `added`; both in any order. Removing what is not there
    /// does nothing.
    std::shared_ptr<const SortedIndex> changed(std::vector<Entry> removed,
                                               std::vector<Entry> added) const;

    std::size_t size() const { return size_; }

    /// Calls `visit(record)` for each entry with the key, in record order.
    template <class Visit>
    void forEachEqual(std::uint64_t key, Visit visit) const {
        forEachBetween(key, key, [&](std::uint64_t, RecordCounter record) { visit(record); });
    }
    /// Calls `visit(key, record)` for each entry with low <= key <= high, in order.
    template <class Visit>
    void forEachBetween(std::uint64_t low, std::uint64_t high, Visit visit) const {
        for (std::size_t i = leafOf({low, 0}); i < leaves_.size(); ++i) {
            const Leaf& leaf = *leaves_[i];
            std::size_t row = lowerBound(leaf, {low, 0});
            for (; row < leaf.keys.size(); ++row) {
                if (leaf.keys[row] > high) {
                    return;
                }
                visit(leaf.keys[row], leaf.records[row]);
            }
        }
    }
    /// How many entries have low <= key <= high; costs no walk over them.
    std::size_t countBetween(std::uint64_t low, std::uint64_t high) const;

  private:
    struct Leaf {
        std::vector<std::uint64_t> keys;
        std::vector<RecordCounter> records;
        Entry at(std::size_t row) const { return {keys[row], records[row]}; }
    };
    class LeafWriter;

    /// The leaf in which `entry` is or would be; 0 when there is none.
    std::size_t leafOf(const Entry& entry) const;
    /// The first row from `from` on whose entry is not before `entry`.
    static std::size_t lowerBound(const Leaf& leaf, const Entry& entry, std::size_t from = 0);
    /// How many entries come before `entry`.
    std::size_t rankOf(const Entry& entry) const;

    std::vector<std::shared_ptr<const Leaf>> leaves_;
    /// The first entry of each leaf.
    std::vector<Entry> firsts_;
    std::size_t size_ = 0;
};

}  // namespace tavrion
