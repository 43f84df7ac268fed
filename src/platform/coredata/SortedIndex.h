// An immutable sorted index: keys with the records that have them, in the order of key, then
// record.
//
// Queue: any; immutable and shared. Keys are order-preserving numbers of dates, counters of
// references, or hashes, for which the caller checks the record itself.
//
// An index is two runs: the settled entries, and a few recent ones beside them. Ten thousand new
// entries all over a million would change every leaf of one run; so they are put into the recent
// one, which is merged into the other when it has grown to a part of it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/coredata/IndexRun.h"

namespace tavrion {

class SortedIndex {
  public:
    using Entry = IndexEntry;

    SortedIndex() = default;
    /// From entries in any order.
    static std::shared_ptr<const SortedIndex> build(std::vector<Entry> entries);
    /// This index without `removed` and with `added`; both in any order. Removing what is not there
    /// does nothing.
    std::shared_ptr<const SortedIndex> changed(std::vector<Entry> removed,
                                               std::vector<Entry> added) const;

    std::size_t size() const { return settled_->size() + recent_->size(); }

    /// Calls `visit(record)` for each entry with the key, in record order.
    template <class Visit>
    void forEachEqual(std::uint64_t key, Visit visit) const {
        forEachBetween(key, key, [&](std::uint64_t, RecordCounter record) { visit(record); });
    }
    /// Calls `visit(key, record)` for each entry with low <= key <= high, in order.
    template <class Visit>
    void forEachBetween(std::uint64_t low, std::uint64_t high, Visit visit) const {
        const Entry first{low, 0};
        IndexRun::Cursor recent(*recent_, first);
        const auto visitRecent = [&](const Entry* before) {
            for (; !recent.isAtEnd() && recent.entry().key <= high &&
                   (before == nullptr || recent.entry() < *before);
                 recent.advance()) {
                visit(recent.entry().key, recent.entry().record);
            }
        };
        settled_->forEachStretch(first, [&](const IndexRun::Stretch& stretch) {
            for (std::size_t place = 0; place < stretch.size;) {
                if (stretch.keys[place] > high) {
                    return false;
                }
                const Entry here = stretch.at(place);
                visitRecent(&here);
                const std::size_t end = placesBeforeRecent(stretch, place, recent);
                for (; place < end && stretch.keys[place] <= high; ++place) {
                    visit(stretch.keys[place], stretch.records[place]);
                }
            }
            return true;
        });
        visitRecent(nullptr);
    }
    /// Calls `visit(record, isShared)` for each entry, in order: whether another entry has its key.
    template <class Visit>
    void forEachEntry(Visit visit) const;
    /// How many entries have low <= key <= high; costs no walk over them.
    std::size_t countBetween(std::uint64_t low, std::uint64_t high) const;

  private:
    /// The end of the entries from `place` on that come before the next recent one; more than one.
    static std::size_t placesBeforeRecent(const IndexRun::Stretch& stretch, std::size_t place,
                                          const IndexRun::Cursor& recent);

    std::shared_ptr<const IndexRun> settled_ = std::make_shared<const IndexRun>();
    std::shared_ptr<const IndexRun> recent_ = std::make_shared<const IndexRun>();
};

template <class Visit>
void SortedIndex::forEachEntry(Visit visit) const {
    std::uint64_t key = 0;
    // The entry before, which waits for its follower; 0 is none.
    RecordCounter waiting = 0;
    bool isShared = false;
    forEachBetween(0, UINT64_MAX, [&](std::uint64_t next, RecordCounter record) {
        const bool isSame = waiting != 0 && next == key;
        if (waiting != 0) {
            visit(waiting, isShared || isSame);
        }
        key = next;
        waiting = record;
        isShared = isSame;
    });
    if (waiting != 0) {
        visit(waiting, isShared);
    }
}

}  // namespace tavrion
