// Looks for artists, albums, songs and playlists in the whole library.
//
// Queue: one caller at a time, off the main queue, since it walks the library; what it gives are
// immutable values. Who owns: a page that is searched, or a command. Absent: a section without hits
// does not appear.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "library/SearchRanking.h"
#include "platform/mediaplayer/MPMediaEntity.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

/// All hits, best first.
struct SearchResults {
    std::vector<MPMediaEntity> artists;
    std::vector<MPMediaEntity> albums;
    std::vector<MPMediaEntity> songs;
    std::vector<MPMediaEntity> playlists;
};

/// What a section of hits goes by. Made anew for each search; two of them are never the same
/// section, so they compare by identity, as pointers.
struct RVSearchSectionIdentifier {
    std::string title;
    /// Of all hits, not of the rows shown.
    std::uint64_t count = 0;
};

struct SearchSection {
    std::shared_ptr<const RVSearchSectionIdentifier> identifier;
    /// The first hits.
    std::vector<MPMediaEntity> rows;
};
using SearchSnapshot = std::vector<SearchSection>;

/// What the header above a section of hits shows.
struct SearchSectionHeader {
    std::string title;
    std::string buttonTitle;
    /// Connects the button to its list; 0 for none.
    std::uint64_t buttonTag = 0;
    bool isButtonHidden = false;
};

class LibrarySearch {
  public:
    static constexpr std::size_t rowLimit = 5;

    /// The term is not empty and has no blanks around it.
    SearchResults results(std::string_view term);

  private:
    /// The titles of one snapshot as a search reads them, by the songs' places.
    struct Titles {
        std::shared_ptr<const MediaSnapshot> snapshot;
        std::string locale;
        std::vector<std::string> folded;
    };
    void readTitles();
    std::vector<MPMediaEntity> foundSongs(std::string_view term, const MPMediaQuery& artistQuery,
                                          const MPMediaQuery& albumQuery);

    SearchRanking ranking_;
    Titles titles_;
};

/// The sections in their order on the page.
SearchSnapshot searchSnapshotOf(const SearchResults& results);
SearchSectionHeader headerOfSection(const RVSearchSectionIdentifier& identifier);
/// The full list behind a button; null for a tag without one.
const std::vector<MPMediaEntity>* resultsForTag(const SearchResults& results, std::uint64_t tag);

}  // namespace tavrion
