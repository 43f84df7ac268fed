// Which of many inserted records stand alone under every key by which the clean-up would look for
// their like: nothing can be doubled or folded there. Found out in one walk over each index, since
// as soon as there are many, a look-up for each takes longer than the walk.
//
// Queue: its owner's; looks at an immutable version. Who owns: holds nothing of the version. A
// record that the version no longer has is not said to be alone, nor one without the value by which
// its kind is compared, nor any when there are too few for a walk.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "platform/coredata/StoreVersion.h"

namespace tavrion {

class LoneRecords {
  public:
    /// `inserted` is in identifier order.
    LoneRecords(const StoreVersion& version, const std::vector<NSManagedObjectID>& inserted);

    /// Whether that one of the inserted records, by its place, is known to be alone.
    bool isAlone(std::size_t place) const { return alone_[place]; }

  private:
    /// `inserted` are of one entity, the first of them at the place `first`.
    void lookThrough(const TableVersion& table, std::span<const NSManagedObjectID> inserted,
                     std::size_t first);

    std::vector<bool> alone_;
};

}  // namespace tavrion
