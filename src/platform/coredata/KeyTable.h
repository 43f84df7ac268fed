// A hash table from the keys of an index to the records that got them, several for one key.
//
// Queue: its owner's. Records of one key come newest first.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "platform/coredata/NSManagedObjectID.h"

namespace tavrion {

class KeyTable {
  public:
    void add(std::uint64_t key, RecordCounter record) {
        if (entries_.size() >= heads_.size()) {
            grow();
        }
        std::uint32_t& head = heads_[bucket(key)];
        entries_.push_back({key, record, head});
        head = static_cast<std::uint32_t>(entries_.size() - 1);
    }

    template <class Visit>
    void forEachEqual(std::uint64_t key, Visit visit) const {
        if (heads_.empty()) {
            return;
        }
        for (std::uint32_t i = heads_[bucket(key)]; i != end; i = entries_[i].next) {
            if (entries_[i].key == key) {
                visit(entries_[i].record);
            }
        }
    }

  private:
    static constexpr std::uint32_t end = std::numeric_limits<std::uint32_t>::max();
    struct Entry {
        std::uint64_t key;
        RecordCounter record;
        /// The entry before in the same bucket.
        std::uint32_t next;
    };

    std::size_t bucket(std::uint64_t key) const {
        // Keys of dates and references differ in few bits; the product spreads them to the top.
        return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> 32U) & (heads_.size() - 1);
    }
    void grow() {
        constexpr std::size_t smallest = 16;
        heads_.assign(heads_.empty() ? smallest : heads_.size() * 2, end);
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            std::uint32_t& head = heads_[bucket(entries_[i].key)];
            entries_[i].next = head;
            head = static_cast<std::uint32_t>(i);
        }
    }

    std::vector<Entry> entries_;
    std::vector<std::uint32_t> heads_;
};

}  // namespace tavrion
