#include "library/LibrarySearch.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "library/SearchTerm.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/SearchFolding.h"
#include "platform/mediaplayer/MPMediaLibrary.h"

namespace tavrion {

namespace {

using Entities = std::vector<MPMediaEntity>;

struct SectionKind {
    const char* title;
    std::uint64_t tag;
    Entities SearchResults::*list;
};

constexpr std::array sectionKinds{
    SectionKind{"Artists", 2, &SearchResults::artists},
    SectionKind{"Albums", 3, &SearchResults::albums},
    SectionKind{"Songs", 4, &SearchResults::songs},
    SectionKind{"Playlists", 5, &SearchResults::playlists},
};

MPMediaPropertyPredicate contains(std::string_view term, std::string_view property) {
    return MPMediaPropertyPredicate::predicateWithValue(Value(std::string(term)), property,
                                                        MPMediaPredicateComparison::contains);
}

/// Entities of one kind, each once, at its first place.
class OrderedSet {
  public:
    template <class Entity>
    void add(std::vector<Entity> entities) {
        for (Entity& entity : entities) {
            if (persistentIDs_.insert(entity.persistentID()).second) {
                entities_.emplace_back(std::move(entity));
            }
        }
    }
    Entities take() { return std::move(entities_); }

  private:
    Entities entities_;
    std::unordered_set<std::uint64_t> persistentIDs_;
};

/// Songs, each once; they are told apart by their places in the library.
class OrderedSongs {
  public:
    void add(const std::vector<MPMediaItem>& songs) {
        for (const MPMediaItem& song : songs) {
            add(song);
        }
    }
    void add(const MPMediaItem& song) {
        isTaken_.resize(std::max<std::size_t>(isTaken_.size(), song.position() + 1));
        if (!isTaken_[song.position()]) {
            isTaken_[song.position()] = true;
            entities_.emplace_back(song);
        }
    }
    Entities take() { return std::move(entities_); }

  private:
    Entities entities_;
    std::vector<bool> isTaken_;
};

template <class Entity>
Entities entitiesOf(std::vector<Entity> entities) {
    return {std::make_move_iterator(entities.begin()), std::make_move_iterator(entities.end())};
}

}  // namespace

void LibrarySearch::readTitles() {
    const auto snapshot = MPMediaLibrary::defaultMediaLibrary().snapshot();
    const std::string& locale = Port<Regional>::current().locale();
    if (titles_.snapshot == snapshot && titles_.locale == locale) {
        return;
    }
    titles_ = {snapshot, locale, {}};
    titles_.folded.reserve(snapshot->songs().size());
    for (std::uint32_t place = 0; place < snapshot->songs().size(); ++place) {
        const auto title = snapshot->text(place, SongText::title);
        titles_.folded.push_back(foldedForSearch(title.value_or("")));
    }
}

/// Songs by their titles word by word, which no filter of a query can do, then those by a matching
/// artist or on a matching album.
Entities LibrarySearch::foundSongs(std::string_view term, const MPMediaQuery& artistQuery,
                                   const MPMediaQuery& albumQuery) {
    readTitles();
    const FoldedTerm words(term);
    OrderedSongs songs;
    for (const MPMediaItem& song : MPMediaQuery::songsQuery().items()) {
        // Another library may have been read in between.
        if (song.snapshot() == titles_.snapshot ? words.isInFolded(titles_.folded[song.position()])
                                                : words.isIn(song.title().value_or(""))) {
            songs.add(song);
        }
    }
    songs.add(artistQuery.items());
    songs.add(albumQuery.items());
    return songs.take();
}

// Each stage goes on with the queries of the one before.
SearchResults LibrarySearch::results(std::string_view term) {
    SearchResults found;
    MPMediaQuery artistQuery = MPMediaQuery::songsQuery();
    artistQuery.setGroupingType(MPMediaGrouping::albumArtist);
    artistQuery.addFilterPredicate(contains(term, MPMediaItemPropertyAlbumArtist));
    found.artists =
        ranking_.sortedResults(entitiesOf(artistQuery.collections()), "artistSearchKey", term);

    artistQuery.setGroupingType(MPMediaGrouping::album);
    MPMediaQuery albumQuery = MPMediaQuery::albumsQuery();
    albumQuery.addFilterPredicate(contains(term, MPMediaItemPropertyAlbumTitle));
    OrderedSet albums;
    albums.add(albumQuery.collections());
    albums.add(artistQuery.collections());
    found.albums = ranking_.sortedResults(albums.take(), MPMediaItemPropertyAlbumTitle, term);

    found.songs = ranking_.sortedResults(foundSongs(term, artistQuery, albumQuery),
                                         MPMediaItemPropertyTitle, term);

    MPMediaQuery playlistQuery = MPMediaQuery::playlistsQuery();
    playlistQuery.addFilterPredicate(contains(term, MPMediaPlaylistPropertyName));
    found.playlists = ranking_.sortedResults(entitiesOf(playlistQuery.collections()),
                                             MPMediaPlaylistPropertyName, term);
    return found;
}

SearchSnapshot searchSnapshotOf(const SearchResults& results) {
    SearchSnapshot sections;
    for (const SectionKind& kind : sectionKinds) {
        const Entities& hits = results.*kind.list;
        if (!hits.empty()) {
            const auto shown = std::min(hits.size(), LibrarySearch::rowLimit);
            sections.push_back({std::make_shared<const RVSearchSectionIdentifier>(
                                    RVSearchSectionIdentifier{kind.title, hits.size()}),
                                Entities(hits.begin(), hits.begin() + static_cast<int>(shown))});
        }
    }
    return sections;
}

SearchSectionHeader headerOfSection(const RVSearchSectionIdentifier& identifier) {
    const auto kind =
        std::find_if(sectionKinds.begin(), sectionKinds.end(),
                     [&](const SectionKind& each) { return identifier.title == each.title; });
    return {NSLocalizedString(identifier.title.c_str()),
            stringWithFormat(NSLocalizedString("See All (%lu)"), {identifier.count}),
            kind == sectionKinds.end() ? 0 : kind->tag,
            identifier.count <= LibrarySearch::rowLimit};
}

const std::vector<MPMediaEntity>* resultsForTag(const SearchResults& results, std::uint64_t tag) {
    const auto kind = std::find_if(sectionKinds.begin(), sectionKinds.end(),
                                   [&](const SectionKind& each) { return each.tag == tag; });
    return kind == sectionKinds.end() ? nullptr : &(results.*kind->list);
}

}  // namespace tavrion
