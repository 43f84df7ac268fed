#include "platform/coredata/SortedIndex.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tavrion {
namespace {

/// Recent entries are merged when there are more of them than this part of the settled ones.
constexpr std::size_t recentPart = 8;
/// Under so many entries in all one run is as good.
constexpr std::size_t worthTwoRuns = 32768;

}  // namespace

std::shared_ptr<const SortedIndex> SortedIndex::build(std::vector<Entry> entries) {
    auto index = std::make_shared<SortedIndex>();
    index->settled_ = IndexRun::build(std::move(entries));
    return index;
}

std::shared_ptr<const SortedIndex> SortedIndex::changed(std::vector<Entry> removed,
                                                        std::vector<Entry> added) const {
    auto next = std::make_shared<SortedIndex>(*this);
    if (!removed.empty()) {
        next->settled_ = settled_->changed(removed, {});
    }
    const std::size_t entries = size() + added.size();
    if (recent_->size() + added.size() <= entries / recentPart && entries >= worthTwoRuns) {
        next->recent_ = recent_->changed(std::move(removed), std::move(added));
        return next;
    }
    if (recent_->size() != 0) {
        std::vector<Entry> recent = recent_->changed(std::move(removed), {})->entries();
        added.insert(added.end(), recent.begin(), recent.end());
        next->recent_ = std::make_shared<const IndexRun>();
    }
    next->settled_ = next->settled_->changed({}, std::move(added));
    return next;
}

std::size_t SortedIndex::placesBeforeRecent(const IndexRun::Stretch& stretch, std::size_t place,
                                            const IndexRun::Cursor& recent) {
    if (recent.isAtEnd() || stretch.at(stretch.size - 1) < recent.entry()) {
        return stretch.size;
    }
    std::size_t end = place + 1;
    while (end < stretch.size && stretch.at(end) < recent.entry()) {
        ++end;
    }
    return end;
}

std::size_t SortedIndex::countBetween(std::uint64_t low, std::uint64_t high) const {
    if (low > high) {
        return 0;
    }
    const auto rankOf = [this](const Entry& entry) {
        return settled_->rankOf(entry) + recent_->rankOf(entry);
    };
    const std::size_t end =
        high == std::numeric_limits<std::uint64_t>::max() ? size() : rankOf({high + 1, 0});
    return end - rankOf({low, 0});
}

}  // namespace tavrion
