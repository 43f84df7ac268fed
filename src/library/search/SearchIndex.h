// A library made ready for searches: what the stages look through, and which songs belong to what
// they find.
//
// Queue: any; immutable. Who owns: the index keeps its snapshot. Positions are those of songs,
// ranks those of collections of one kind in the snapshot (SongRecord::groupRanks). Making one walks
// every title a few times; it takes about 60 bytes a song.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "library/search/FoldedTexts.h"
#include "library/search/SearchNames.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

/// The collections of one kind, by rank, with their songs that are in the library.
class GroupedSongs {
  public:
    /// An album's songs come by disc and track, all others in library order.
    GroupedSongs(const MediaSnapshot& snapshot, SongGroup group);

    /// Also of collections without a song.
    std::size_t count() const { return starts_.size() - 1; }
    /// Empty when none is in the library.
    std::span<const std::uint32_t> songs(std::uint32_t rank) const {
        return std::span(positions_).subspan(starts_[rank], starts_[rank + 1] - starts_[rank]);
    }

  private:
    std::vector<std::uint32_t> starts_;
    std::vector<std::uint32_t> positions_;
};

struct SearchIndex {
    /// What the index was made from.
    struct Basis {
        std::shared_ptr<const MediaSnapshot> snapshot;
        std::string locale;
        bool splitsCompilations = false;
        bool operator==(const Basis&) const = default;

        /// What a search would go by now.
        static Basis current();
    };
    explicit SearchIndex(Basis madeFrom);

    std::uint32_t rankOf(std::uint32_t position, SongGroup group) const {
        return basis.snapshot->songs()[position].groupRanks[static_cast<std::size_t>(group)];
    }

    Basis basis;
    GroupedSongs artists;
    GroupedSongs albums;
    /// By rank.
    FoldedTexts foldedArtists;
    FoldedTexts foldedAlbums;
    SearchNames artistNames;
    SearchNames albumNames;
    /// By position.
    FoldedTexts foldedTitles;
    SearchNames titles;
};

}  // namespace tavrion
