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

#include "kit/FoundEntities.h"
#include "library/EntityRows.h"
#include "library/search/SearchIndex.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// All hits, best first.
struct SearchResults {
    FoundEntities artists;
    FoundEntities albums;
    FoundEntities songs;
    FoundEntities playlists;
};

/// What a section of hits goes by. Made again for each search; two of them are never the same
/// section, so they compare by identity, as pointers.
struct RVSearchSectionIdentifier {
    std::string title;
    /// Of all hits, not of the rows shown.
    std::uint64_t count = 0;
};

struct SearchSection {
    std::shared_ptr<const RVSearchSectionIdentifier> identifier;
    /// The first hits.
    EntityRows rows;
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

    /// Gets the library as it is now ready to be searched, so that the first keystroke need not.
    void prepare();
    /// The term is not empty and has no blanks around it.
    SearchResults results(std::string_view term);

  private:
    const std::shared_ptr<const SearchIndex>& currentIndex();

    /// Made again when the library, the locale or the setting for compilations is another.
    std::shared_ptr<const SearchIndex> index_;
};

/// The sections in their order on the page.
SearchSnapshot searchSnapshotOf(const SearchResults& results);
SearchSectionHeader headerOfSection(const RVSearchSectionIdentifier& identifier);
/// The full list behind a button; null for a tag without one.
const FoundEntities* resultsForTag(const SearchResults& results, std::uint64_t tag);

}  // namespace tavrion
