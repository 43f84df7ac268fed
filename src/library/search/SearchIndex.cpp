#include "library/search/SearchIndex.h"

#include <algorithm>
#include <tuple>

#include "library/RVQueryManager+Results.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaLibrary.h"

namespace tavrion {

namespace {

using Texts = std::vector<std::string_view>;

std::uint32_t songCount(const MediaSnapshot& snapshot) {
    return static_cast<std::uint32_t>(snapshot.songs().size());
}

std::string_view textAt(const MediaSnapshot& snapshot, std::uint32_t position, SongText which) {
    return snapshot.text(position, which).value_or(std::string_view());
}

Texts titlesOf(const MediaSnapshot& snapshot) {
    Texts titles;
    titles.reserve(songCount(snapshot));
    for (std::uint32_t position = 0; position < songCount(snapshot); ++position) {
        titles.push_back(textAt(snapshot, position, SongText::title));
    }
    return titles;
}

/// The text of the song that stands for each collection.
Texts textsOf(const MediaSnapshot& snapshot, const GroupedSongs& groups, SongText which) {
    Texts texts(groups.count());
    for (std::uint32_t rank = 0; rank < texts.size(); ++rank) {
        if (const auto songs = groups.songs(rank); !songs.empty()) {
            texts[rank] = textAt(snapshot, songs.front(), which);
        }
    }
    return texts;
}

/// The artists by the names that hits are ranked by.
Texts searchKeysOf(const MediaSnapshot& snapshot, const GroupedSongs& groups,
                   bool splitsCompilations) {
    Texts texts = textsOf(snapshot, groups, SongText::albumArtist);
    for (std::uint32_t rank = 0; splitsCompilations && rank < texts.size(); ++rank) {
        const auto songs = groups.songs(rank);
        if (!songs.empty() &&
            (snapshot.songs()[songs.front()].flags & SongRecord::compilation) != 0) {
            texts[rank] = textAt(snapshot, songs.front(), SongText::artist);
        }
    }
    return texts;
}

}  // namespace

GroupedSongs::GroupedSongs(const MediaSnapshot& snapshot, SongGroup group) {
    struct Member {
        std::uint32_t rank;
        std::uint32_t disc;
        std::uint32_t track;
        std::uint32_t position;
    };
    std::vector<Member> members;
    members.reserve(songCount(snapshot));
    std::uint32_t rankCount = 0;
    for (std::uint32_t position = 0; position < songCount(snapshot); ++position) {
        const SongRecord& song = snapshot.songs()[position];
        const std::uint32_t rank = song.groupRanks[static_cast<std::size_t>(group)];
        if ((song.flags & SongRecord::outsideLibrary) == 0 && rank != SongRecord::noGroup) {
            const bool isAlbum = group == SongGroup::album;
            members.push_back(
                {rank, isAlbum ? song.discNumber : 0, isAlbum ? song.trackNumber : 0, position});
            rankCount = std::max(rankCount, rank + 1);
        }
    }
    std::sort(members.begin(), members.end(), [](const Member& a, const Member& b) {
        return std::tie(a.rank, a.disc, a.track, a.position) <
               std::tie(b.rank, b.disc, b.track, b.position);
    });
    starts_.resize(rankCount + 1);
    positions_.reserve(members.size());
    for (const Member& member : members) {
        ++starts_[member.rank + 1];
        positions_.push_back(member.position);
    }
    for (std::size_t rank = 1; rank < starts_.size(); ++rank) {
        starts_[rank] += starts_[rank - 1];
    }
}

SearchIndex::Basis SearchIndex::Basis::current() {
    return {
        MPMediaLibrary::defaultMediaLibrary().snapshot(), Port<Regional>::current().orderLocale(),
        NSUserDefaults::standardUserDefaults().boolForKey(RVQueryManager::splitCompilationsKey)};
}

SearchIndex::SearchIndex(Basis madeFrom)
    : basis(std::move(madeFrom)),
      artists(*basis.snapshot, SongGroup::albumArtist),
      albums(*basis.snapshot, SongGroup::album),
      foldedArtists(textsOf(*basis.snapshot, artists, SongText::albumArtist)),
      foldedAlbums(textsOf(*basis.snapshot, albums, SongText::albumTitle)),
      artistNames(searchKeysOf(*basis.snapshot, artists, basis.splitsCompilations)),
      albumNames(textsOf(*basis.snapshot, albums, SongText::albumTitle)),
      foldedTitles(titlesOf(*basis.snapshot)),
      titles(titlesOf(*basis.snapshot)) {}

}  // namespace tavrion
