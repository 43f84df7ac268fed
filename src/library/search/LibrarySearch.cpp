#include "library/search/LibrarySearch.h"

#include <algorithm>
#include <array>
#include <utility>

#include "library/search/SearchRanking.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion {

namespace {

using Index = std::shared_ptr<const SearchIndex>;
using Places = std::vector<std::uint32_t>;

struct SectionKind {
    const char* title;
    std::uint64_t tag;
    FoundEntities SearchResults::*list;
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

/// A mark for each place that a stage found.
std::vector<bool> marksOf(const Places& places, std::size_t size) {
    std::vector<bool> marks(size);
    for (const std::uint32_t place : places) {
        marks[place] = true;
    }
    return marks;
}

void keepThoseWithSongs(Places& ranks, const GroupedSongs& groups) {
    std::erase_if(ranks, [&](std::uint32_t rank) { return groups.songs(rank).empty(); });
}

/// Collections of the index; each remembers the query that finds its songs again.
MPMediaEntity collectionAt(const Index& index, const GroupedSongs& groups, std::uint32_t rank,
                           const MPMediaQuery& query) {
    const auto songs = groups.songs(rank);
    return query.collectionOf(index->basis.snapshot, {songs.begin(), songs.end()});
}

/// The stages of one search; each goes on with what the one before has found.
class SearchStages {
  public:
    SearchStages(Index index, std::string_view term)
        : index_(std::move(index)),
          term_(term),
          artistQuery_(MPMediaQuery::songsQuery()),
          albumQuery_(MPMediaQuery::albumsQuery()) {
        artistQuery_.setGroupingType(MPMediaGrouping::albumArtist);
        artistQuery_.addFilterPredicate(contains(term, MPMediaItemPropertyAlbumArtist));
        albumQuery_.addFilterPredicate(contains(term, MPMediaItemPropertyAlbumTitle));
    }

    FoundEntities artists() {
        Places ranks = index_->foldedArtists.placesWith(FoldedTerm::whole(term_));
        keepThoseWithSongs(ranks, index_->artists);
        isFoundArtist_ = marksOf(ranks, index_->artists.count());
        ranks = index_->artistNames.ranked(ranks, term_);
        const std::size_t count = ranks.size();
        return {count, [index = index_, ranks = std::move(ranks),
                        query = artistQuery_](std::size_t place) {
                    return collectionAt(index, index->artists, ranks[place], query);
                }};
    }

    /// Albums by their titles, then the other albums of the artists.
    FoundEntities albums() {
        artistQuery_.setGroupingType(MPMediaGrouping::album);
        Places ranks = index_->foldedAlbums.placesWith(FoldedTerm::whole(term_));
        keepThoseWithSongs(ranks, index_->albums);
        isFoundAlbum_ = marksOf(ranks, index_->albums.count());
        for (std::uint32_t rank = 0; rank < index_->albums.count(); ++rank) {
            const auto songs = index_->albums.songs(rank);
            if (!songs.empty() && !isFoundAlbum_[rank] && isByFoundArtist(songs.front())) {
                ranks.push_back(rank);
            }
        }
        ranks = index_->albumNames.ranked(ranks, term_);
        const std::size_t count = ranks.size();
        return {count, [index = index_, ranks = std::move(ranks), byTitle = isFoundAlbum_,
                        albumQuery = albumQuery_, artistQuery = artistQuery_](std::size_t place) {
                    const std::uint32_t rank = ranks[place];
                    return collectionAt(index, index->albums, rank,
                                        byTitle[rank] ? albumQuery : artistQuery);
                }};
    }

    /// Songs by their titles word by word, which no filter of a query can do, then those by a
    /// matching artist, then those on a matching album.
    FoundEntities songs() const {
        Places found = index_->foldedTitles.placesWith(FoldedTerm(term_));
        std::erase_if(found, [this](std::uint32_t position) { return isOutside(position); });
        std::vector<bool> isTaken = marksOf(found, index_->titles.size());
        const auto add = [&](const auto& isHit) {
            for (std::uint32_t position = 0; position < isTaken.size(); ++position) {
                if (!isTaken[position] && !isOutside(position) && isHit(position)) {
                    isTaken[position] = true;
                    found.push_back(position);
                }
            }
        };
        add([this](std::uint32_t position) { return isByFoundArtist(position); });
        add([this](std::uint32_t position) {
            return isMarked(isFoundAlbum_, index_->rankOf(position, SongGroup::album));
        });
        found = index_->titles.ranked(found, term_);
        const std::size_t count = found.size();
        return {count, [index = index_, found = std::move(found)](std::size_t place) {
                    return MPMediaEntity(MPMediaItem(index->basis.snapshot, found[place]));
                }};
    }

  private:
    static bool isMarked(const std::vector<bool>& marks, std::uint32_t rank) {
        return rank < marks.size() && marks[rank];
    }
    bool isByFoundArtist(std::uint32_t position) const {
        return isMarked(isFoundArtist_, index_->rankOf(position, SongGroup::albumArtist));
    }
    bool isOutside(std::uint32_t position) const {
        return (index_->basis.snapshot->songs()[position].flags & SongRecord::outsideLibrary) != 0;
    }

    Index index_;
    std::string_view term_;
    MPMediaQuery artistQuery_;
    MPMediaQuery albumQuery_;
    /// By rank.
    std::vector<bool> isFoundArtist_;
    std::vector<bool> isFoundAlbum_;
};

}  // namespace

const Index& LibrarySearch::currentIndex() {
    if (SearchIndex::Basis basis = SearchIndex::Basis::current();
        !index_ || index_->basis != basis) {
        index_.reset();
        index_ = std::make_shared<const SearchIndex>(std::move(basis));
    }
    return index_;
}

void LibrarySearch::prepare() {
    currentIndex();
}

SearchResults LibrarySearch::results(std::string_view term) {
    SearchResults found;
    SearchStages stages(currentIndex(), term);
    found.artists = stages.artists();
    found.albums = stages.albums();
    found.songs = stages.songs();

    MPMediaQuery playlistQuery = MPMediaQuery::playlistsQuery();
    playlistQuery.addFilterPredicate(contains(term, MPMediaPlaylistPropertyName));
    std::vector<MPMediaEntity> playlists;
    for (MPMediaItemCollection& playlist : playlistQuery.collections()) {
        playlists.emplace_back(std::move(playlist));
    }
    found.playlists =
        FoundEntities(sortedResults(std::move(playlists), MPMediaPlaylistPropertyName, term));
    return found;
}

SearchSnapshot searchSnapshotOf(const SearchResults& results) {
    SearchSnapshot sections;
    for (const SectionKind& kind : sectionKinds) {
        const FoundEntities& hits = results.*kind.list;
        if (!hits.empty()) {
            sections.push_back({std::make_shared<const RVSearchSectionIdentifier>(
                                    RVSearchSectionIdentifier{kind.title, hits.size()}),
                                {hits.first(LibrarySearch::rowLimit), RVSortTypeAlphabetical}});
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

const FoundEntities* resultsForTag(const SearchResults& results, std::uint64_t tag) {
    const auto kind = std::find_if(sectionKinds.begin(), sectionKinds.end(),
                                   [&](const SectionKind& each) { return each.tag == tag; });
    return kind == sectionKinds.end() ? nullptr : &(results.*kind->list);
}

}  // namespace tavrion
