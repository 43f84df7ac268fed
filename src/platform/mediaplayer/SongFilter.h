// The songs of one snapshot that match filters.
//
// Queue: any. Made for one query and thrown away; the snapshot and the predicates outlive it.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/mediaplayer/MPMediaItemProperties.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion {

class SongFilter {
  public:
    /// Filters on playlist properties are left out when `ignoresPlaylistProperties`.
    SongFilter(std::shared_ptr<const MediaSnapshot> snapshot,
               const std::vector<MPMediaPropertyPredicate>& predicates, bool includesNonLibrary,
               bool ignoresPlaylistProperties);

    /// Positions in library order.
    std::vector<std::uint32_t> matches() const;
    bool matches(std::uint32_t position) const;

  private:
    struct Test {
        const MPMediaPropertyPredicate* predicate;
        /// Null for a property that songs do not have.
        const MPMediaItemProperty* property;
        /// Of a contains test.
        std::string foldedNeedle;
        /// Of a test for any of several persistent identifiers: these, sorted.
        std::optional<std::vector<std::uint64_t>> persistentIDs;
        /// Of a contains test on a name that all songs of a collection share: what was found, by
        /// the collection's rank.
        mutable std::vector<std::optional<bool>> verdicts = {};
    };

    std::optional<std::vector<std::uint32_t>> candidates() const;
    std::optional<std::span<const std::uint32_t>> bucketOf(const Test& test) const;
    std::vector<std::uint32_t> positionsOfPersistentIDs(
        const std::vector<std::uint64_t>& persistentIDs) const;
    bool passes(std::uint32_t position, const Test& test) const;
    bool contains(std::uint32_t position, const Test& test) const;
    bool containsAnew(std::uint32_t position, const Test& test) const;

    std::shared_ptr<const MediaSnapshot> snapshot_;
    bool includesNonLibrary_;
    std::vector<Test> tests_;
};

}  // namespace tavrion
