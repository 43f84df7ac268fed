// The edges of the lists of the library, one test each.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kit/RVAlertManager.h"
#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

class QueryEdges : public testing::Test {
  protected:
    static std::vector<MPMediaEntity> results(MPMediaGrouping group, RVSortType sort,
                                              bool reverse = false) {
        return RVQueryManager::resultsForQuery(nullptr, group, sort, reverse);
    }
    static Names titles(const std::vector<MPMediaEntity>& entities) {
        Names found;
        for (const MPMediaEntity& entity : entities) {
            const auto title = RVMetadataManager::titleForMediaEntity(entity, std::nullopt);
            found.push_back(title ? title->textWithoutAttachments() : "(none)");
        }
        return found;
    }

    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(QueryEdges, withCompilationsSplitBothKindsOfArtistMixInOneList) {
    library_.publish({{.title = "1", .artist = "Carol", .albumArtist = "Carol", .albumTitle = "A"},
                      {.title = "2", .artist = "Alice", .albumArtist = "Alice", .albumTitle = "B"},
                      {.title = "3",
                       .artist = "The Bobs",
                       .albumArtist = "Various Artists",
                       .albumTitle = "C",
                       .compilation = true,
                       .sortArtist = "Bobs"},
                      {.title = "4",
                       .artist = "Carol",
                       .albumArtist = "Various Artists",
                       .albumTitle = "C",
                       .compilation = true}});
    defaults_->setObject("BrowseShouldSplitCompilations", true);
    const auto found = results(MPMediaGrouping::albumArtist, 0);
    EXPECT_EQ(titles(found), (Names{"Alice", "The Bobs", "Carol", "Carol"}));
    // Of the two Carols the album artist was delivered first.
    EXPECT_EQ(found[2].groupingType(), MPMediaGrouping::albumArtist);
    EXPECT_EQ(found[3].groupingType(), MPMediaGrouping::artist);
    EXPECT_EQ(RVMetadataManager::subtitleForMediaEntity(found[3]), "From 1 compilation");
    EXPECT_EQ(titles(results(MPMediaGrouping::albumArtist, 0, true)),
              (Names{"Carol", "Carol", "The Bobs", "Alice"}));
}

TEST_F(QueryEdges, withoutTheSplitACompilationIsOneRowUnderItsAlbumArtist) {
    library_.publish(
        {{.title = "1", .artist = "Bob", .albumArtist = "Various Artists", .compilation = true},
         {.title = "2", .artist = "Carol", .albumArtist = "Various Artists", .compilation = true},
         {.title = "3", .artist = "Alice", .albumArtist = "Alice"}});
    const auto found = results(MPMediaGrouping::albumArtist, 0);
    EXPECT_EQ(titles(found), (Names{"Alice", "Various Artists"}));
    EXPECT_EQ(found[1].collection()->count(), 2U);
}

TEST_F(QueryEdges, albumsKeepTheLibrarysOwnOrder) {
    // By the library's order a digit comes before a letter; a person would put it behind.
    library_.publish({{.title = "1", .albumTitle = "Zebra"},
                      {.title = "2", .albumTitle = "1999"},
                      {.title = "3", .albumTitle = "\"Apples\""}});
    const Names inLibraryOrder = titles([] {
        std::vector<MPMediaEntity> entities;
        for (const auto& album : MPMediaQuery::albumsQuery().collections()) {
            entities.emplace_back(album);
        }
        return entities;
    }());
    EXPECT_EQ(inLibraryOrder, (Names{"\"Apples\"", "1999", "Zebra"}));
    EXPECT_EQ(titles(results(MPMediaGrouping::album, 0)), inLibraryOrder);
    EXPECT_EQ(titles(results(MPMediaGrouping::album, 0, true)),
              Names(inLibraryOrder.rbegin(), inLibraryOrder.rend()));
}

TEST_F(QueryEdges, songsReversedAreTheMirrorOfTheLibrarysOrder) {
    library_.publish({{.title = "same", .persistentID = 1},
                      {.title = "Zebra", .persistentID = 2},
                      {.title = "1999", .persistentID = 3},
                      {.title = "same", .persistentID = 4}});
    const auto forward = results(MPMediaGrouping::title, 0);
    EXPECT_EQ(titles(forward), (Names{"1999", "same", "same", "Zebra"}));
    EXPECT_EQ(results(MPMediaGrouping::title, 0, true),
              std::vector<MPMediaEntity>(forward.rbegin(), forward.rend()));
}

TEST_F(QueryEdges, songsOfEqualPlayCountsKeepTheirOrderInBothDirections) {
    library_.publish({{.title = "a", .playCount = 5},
                      {.title = "b", .playCount = 5},
                      {.title = "c", .playCount = 7},
                      {.title = "d", .playCount = 5}});
    EXPECT_EQ(titles(results(MPMediaGrouping::title, 1)), (Names{"c", "a", "b", "d"}));
    EXPECT_EQ(titles(results(MPMediaGrouping::title, 1, true)), (Names{"a", "b", "d", "c"}));
}

TEST_F(QueryEdges, aGroupingThatIsNotOfferedStillSortsWhenItIsStored) {
    library_.publish({{.title = "1", .artist = "One", .playCount = 1, .composer = "W1"},
                      {.title = "2", .artist = "Two", .playCount = 3, .composer = "W2"},
                      {.title = "3", .artist = "Three", .playCount = 2, .composer = "W3"}});
    for (const std::uint64_t stored : {2U, 4U}) {
        RVAlertManager::storeValue(stored, "browse.groupType");
        const auto group =
            static_cast<MPMediaGrouping>(RVAlertManager::storedValueForKey("browse.groupType"));
        std::vector<std::uint64_t> plays;
        for (const MPMediaEntity& entity : results(group, RVSortTypePlayCount)) {
            EXPECT_EQ(entity.groupingType(), group);
            plays.push_back(entity.representativeItem()->playCount());
        }
        EXPECT_EQ(plays, (std::vector<std::uint64_t>{3, 2, 1})) << stored;
    }
    EXPECT_EQ(titles(results(MPMediaGrouping::artist, 0)), (Names{"One", "Three", "Two"}));
}

TEST_F(QueryEdges, anEmptyDictionaryOfChoicesMeansSongsInAlphabeticalOrder) {
    defaults_->setObject("com.oskelvane.Nerinda.sortPreferences", Value(Value::Dictionary()));
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.groupType"),
              static_cast<std::uint64_t>(MPMediaGrouping::title));
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), RVSortTypeAlphabetical);
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.reverse"), 0U);
}

}  // namespace
}  // namespace tavrion
