// The edges of the search, one test each.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include "library/RVMetadataManager.h"
#include "library/search/LibrarySearch.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

class SearchEdges : public testing::Test {
  protected:
    template <class Entities>
    static Names titles(const Entities& entities) {
        Names found;
        for (const MPMediaEntity& entity : entities) {
            found.push_back(RVMetadataManager::titleForMediaEntity(entity, std::nullopt)
                                .value_or(NSAttributedString("(none)"))
                                .textWithoutAttachments());
        }
        return found;
    }
    SearchResults found(std::string_view term) { return search_.results(term); }
    static Names sections(const SearchSnapshot& snapshot) {
        Names found;
        for (const SearchSection& section : snapshot) {
            found.push_back(section.identifier->title);
        }
        return found;
    }
    void publishNumbered(int count) {
        std::vector<TestSong> songs;
        for (int i = 1; i <= count; ++i) {
            songs.push_back({.title = fmt::format("Wave {}", i)});
        }
        library_.publish(songs);
    }

    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_;
    LibrarySearch search_;
};

TEST_F(SearchEdges, twoWordsFindATitleWithBothInAnyOrderButOnlyWholeNamesElsewhere) {
    library_.publish({{.title = "Blue and Green",
                       .artist = "Green Blue Band",
                       .albumArtist = "Green Blue Band",
                       .albumTitle = "Green on Blue"},
                      {.title = "Other",
                       .artist = "Very Blue Green",
                       .albumArtist = "Very Blue Green",
                       .albumTitle = "x"}},
                     {{.name = "green then blue", .persistentID = 1},
                      {.name = "my BLUE GREEN list", .persistentID = 2}});
    const SearchResults results = found("blue green");
    EXPECT_EQ(titles(results.artists), (Names{"Very Blue Green"}));
    EXPECT_EQ(titles(results.albums), (Names{"x"})) << "the album of the artist";
    EXPECT_EQ(titles(results.songs), (Names{"Blue and Green", "Other"}));
    EXPECT_EQ(titles(results.playlists), (Names{"my BLUE GREEN list"}));
}

TEST_F(SearchEdges, aSongByAMatchingAlbumArtistIsFoundWhateverItsTitle) {
    library_.publish({{.title = "Nothing in common", .artist = "Guest", .albumArtist = "The Waves"},
                      {.title = "Neither", .artist = "The Waves", .albumArtist = "Various"}});
    EXPECT_EQ(titles(found("waves").songs), (Names{"Nothing in common"}));
}

TEST_F(SearchEdges, aSongOnAMatchingAlbumIsFoundWhateverItsTitle) {
    library_.publish({{.title = "Nothing in common", .albumTitle = "Making Waves"},
                      {.title = "Neither", .albumTitle = "Calm"}});
    EXPECT_EQ(titles(found("waves").songs), (Names{"Nothing in common"}));
}

TEST_F(SearchEdges, fiveHitsShowNoButton) {
    publishNumbered(5);
    const SearchSnapshot snapshot = searchSnapshotOf(found("wave"));
    ASSERT_EQ(sections(snapshot), (Names{"Songs"}));
    EXPECT_EQ(snapshot[0].rows.size(), 5U);
    EXPECT_TRUE(headerOfSection(*snapshot[0].identifier).isButtonHidden);
}

TEST_F(SearchEdges, sixHitsShowFiveRowsAndAButtonWithSix) {
    publishNumbered(6);
    const SearchResults results = found("wave");
    const SearchSnapshot snapshot = searchSnapshotOf(results);
    ASSERT_EQ(sections(snapshot), (Names{"Songs"}));
    EXPECT_EQ(titles(snapshot[0].rows.entities()),
              (Names{"Wave 1", "Wave 2", "Wave 3", "Wave 4", "Wave 5"}));
    const SearchSectionHeader header = headerOfSection(*snapshot[0].identifier);
    EXPECT_FALSE(header.isButtonHidden);
    EXPECT_EQ(header.title, "Songs");
    EXPECT_EQ(header.buttonTitle, "See All (6)");
    EXPECT_EQ(header.buttonTag, 4U);
    EXPECT_EQ(resultsForTag(results, header.buttonTag)->size(), 6U);
}

TEST_F(SearchEdges, sectionsStandInTheirOrderEachWithItsTag) {
    library_.publish({{.title = "wave", .artist = "wave", .albumTitle = "wave"}},
                     {{.name = "wave", .persistentID = 1}});
    const SearchResults results = found("wave");
    const SearchSnapshot snapshot = searchSnapshotOf(results);
    EXPECT_EQ(sections(snapshot), (Names{"Artists", "Albums", "Songs", "Playlists"}));
    std::uint64_t tag = 2;
    for (const SearchSection& section : snapshot) {
        EXPECT_EQ(headerOfSection(*section.identifier).buttonTag, tag++);
    }
    EXPECT_EQ(resultsForTag(results, 2), &results.artists);
    EXPECT_EQ(resultsForTag(results, 3), &results.albums);
    EXPECT_EQ(resultsForTag(results, 4), &results.songs);
    EXPECT_EQ(resultsForTag(results, 5), &results.playlists);
    EXPECT_EQ(resultsForTag(results, 1), nullptr);
    EXPECT_EQ(resultsForTag(results, 6), nullptr);
}

TEST_F(SearchEdges, withoutHitsThereIsNoSection) {
    publishNumbered(3);
    EXPECT_TRUE(searchSnapshotOf(found("nowhere")).empty());
}

TEST_F(SearchEdges, twoSearchesHaveDifferentSections) {
    publishNumbered(1);
    EXPECT_NE(searchSnapshotOf(found("wave"))[0].identifier,
              searchSnapshotOf(found("wave"))[0].identifier);
}

TEST_F(SearchEdges, anAlbumThatMatchesBothWaysIsListedOnce) {
    library_.publish({{.title = "a", .artist = "Wave", .albumTitle = "Wave"},
                      {.title = "b", .artist = "Wave", .albumTitle = "Calm"},
                      {.title = "c", .artist = "Sea", .albumTitle = "wave two"}});
    const SearchResults results = found("Wave");
    EXPECT_EQ(titles(results.albums), (Names{"Wave", "Calm", "wave two"}));
    EXPECT_EQ(titles(results.songs), (Names{"a", "b", "c"}));
}

TEST_F(SearchEdges, accentsAndCaseDoNotMatterForFinding) {
    library_.publish({{.title = "Mañana", .artist = "Björk", .albumTitle = "ÉTOILE"}},
                     {{.name = "Ça va", .persistentID = 1}});
    EXPECT_EQ(titles(found("MANANA").songs), (Names{"Mañana"}));
    EXPECT_EQ(titles(found("bjork").artists), (Names{"Björk"}));
    EXPECT_EQ(titles(found("etoile").albums), (Names{"ÉTOILE"}));
    EXPECT_EQ(titles(found("ca").playlists), (Names{"Ça va"}));
}

TEST_F(SearchEdges, songsWithoutATitleAndAnArtistOfSignsAreFound) {
    library_.publish({{.title = "", .artist = "!!!", .albumTitle = "Thr!!!er"},
                      {.title = "Plain", .artist = "", .albumTitle = ""}});
    const SearchResults results = found("!!!");
    EXPECT_EQ(titles(results.artists), (Names{"!!!"}));
    EXPECT_EQ(titles(results.albums), (Names{"Thr!!!er"}));
    EXPECT_EQ(titles(results.songs), (Names{"Untitled"}));
}

TEST_F(SearchEdges, hiddenPlaylistsAndFoldersAreFoundToo) {
    library_.publish({}, {{.name = "wave folder", .persistentID = 1, .folder = true},
                          {.name = "wave hidden", .persistentID = 2, .hidden = true}});
    EXPECT_EQ(titles(found("wave").playlists), (Names{"wave folder", "wave hidden"}));
}

TEST_F(SearchEdges, aThousandPlaylistsAreRankedAndCounted) {
    std::vector<TestPlaylist> playlists;
    for (std::uint64_t i = 1; i <= 1000; ++i) {
        playlists.push_back({.name = fmt::format("Mix {}", 1001 - i), .persistentID = i});
    }
    library_.publish({}, playlists);
    const SearchSnapshot snapshot = searchSnapshotOf(found("Mix"));
    EXPECT_EQ(snapshot[0].identifier->count, 1000U);
    EXPECT_EQ(titles(snapshot[0].rows.entities()),
              (Names{"Mix 1", "Mix 2", "Mix 3", "Mix 4", "Mix 5"}));
}

}  // namespace
}  // namespace tavrion
