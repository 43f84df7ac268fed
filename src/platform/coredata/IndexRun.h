// Entries of an index in order, cut into leaves.
//
// Queue: any; immutable and shared. A changed run shares every leaf that did not change.
#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/coredata/NSManagedObjectID.h"

namespace tavrion {

/// A key with a record that has it, in the order of key, then record.
struct IndexEntry {
    std::uint64_t key = 0;
    RecordCounter record = 0;
    auto operator<=>(const IndexEntry&) const = default;
};

class IndexRun {
  public:
    using Entry = IndexEntry;

    IndexRun() = default;
    /// From entries in any order.
    static std::shared_ptr<const IndexRun> build(std::vector<Entry> entries);
    /// This run without `removed` and with `added`; both in any order. Removing what is not there
    /// does nothing.
    std::shared_ptr<const IndexRun> changed(std::vector<Entry> removed,
                                            std::vector<Entry> added) const;

    std::size_t size() const { return size_; }
    std::vector<Entry> entries() const;
    /// How many entries come before `entry`.
    std::size_t rankOf(const Entry& entry) const;

    /// A stretch of entries that are side by side.
    struct Stretch {
        const std::uint64_t* keys = nullptr;
        const RecordCounter* records = nullptr;
        std::size_t size = 0;
        Entry at(std::size_t place) const { return {keys[place], records[place]}; }
    };
    /// Calls `visit(stretch)` for all entries from the first one on that is not before `entry`,
    /// stretch by stretch, until it says false.
    template <class Visit>
    void forEachStretch(const Entry& entry, Visit visit) const {
        for (std::size_t i = leafOf(entry); i < leaves_.size(); ++i) {
            const Leaf& leaf = *leaves_[i];
            const std::size_t row = lowerBound(leaf, entry);
            if (!visit(Stretch{leaf.keys.data() + row, leaf.records.data() + row,
                               leaf.keys.size() - row})) {
                return;
            }
        }
    }
    /// Walks the entries from a place on, one at a time.
    class Cursor {
      public:
        /// At the first entry that is not before `entry`.
        Cursor(const IndexRun& run, const Entry& entry);
        bool isAtEnd() const { return leaf_ == run_.leaves_.size(); }
        Entry entry() const { return run_.leaves_[leaf_]->at(row_); }
        void advance() {
            ++row_;
            skipToLeaf();
        }

      private:
        void skipToLeaf() {
            if (row_ == run_.leaves_[leaf_]->keys.size()) {
                row_ = 0;
                ++leaf_;
            }
        }

        const IndexRun& run_;
        std::size_t leaf_;
        std::size_t row_ = 0;
    };

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

    std::vector<std::shared_ptr<const Leaf>> leaves_;
    /// The first entry of each leaf.
    std::vector<Entry> firsts_;
    std::size_t size_ = 0;
};

}  // namespace tavrion
