#include "library/search/SearchRanking.h"

#include <gtest/gtest.h>

#include <random>

#include "library/search/MergeSort.h"
#include "library/search/SearchOrder.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

class SearchRankingTest : public testing::Test {
  protected:
    /// The titles in the order in which a search for the term lists songs that come in this order.
    Names ranked(const Names& titles, std::string_view term) {
        std::vector<TestSong> songs;
        for (const std::string& title : titles) {
            songs.push_back({.title = title});
        }
        library_.publish(songs);
        const auto snapshot = library_.library().snapshot();
        std::vector<MPMediaEntity> entities;
        for (std::uint64_t id = 1; id <= titles.size(); ++id) {
            entities.emplace_back(MPMediaItem(snapshot, *snapshot->positionOfPersistentID(id)));
        }
        Names found;
        for (const MPMediaEntity& entity : sortedResults(entities, "title", term)) {
            found.push_back(stringOfEntity(entity, "title"));
        }
        return found;
    }

    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(SearchRankingTest, exactIgnoresCaseAndTheOthersDoNot) {
    EXPECT_EQ(searchFlags("Air", "Air"), exactFlag | prefixFlag | containsFlag);
    EXPECT_EQ(searchFlags("AIR", "air"), exactFlag);
    EXPECT_EQ(searchFlags("Airbag", "Air"), prefixFlag | containsFlag);
    EXPECT_EQ(searchFlags("On Air", "Air"), containsFlag);
    EXPECT_EQ(searchFlags("On Air", "air"), 0);
    EXPECT_EQ(searchFlags("", "air"), 0);
    EXPECT_EQ(searchFlags("", ""), 0);
}

TEST_F(SearchRankingTest, accentsMakeADifference) {
    EXPECT_EQ(searchFlags("Café", "cafe"), 0);
    EXPECT_EQ(searchFlags("CAFÉ", "café"), exactFlag);
    EXPECT_EQ(searchFlags("cafe\u0301", "Café"), exactFlag);
}

TEST_F(SearchRankingTest, thoseWithAFlagThatOthersLackGoFirst) {
    EXPECT_EQ(ranked({"On Air", "Airbag", "Nothing", "Air"}, "Air"),
              (Names{"Air", "Airbag", "On Air", "Nothing"}));
}

TEST_F(SearchRankingTest, amongEqualsTheAlphabetDecides) {
    EXPECT_EQ(ranked({"Airship 10", "99 Airs", "Airship 9", "\"Airbag\"", "(Airs)"}, "x"),
              (Names{"\"Airbag\"", "(Airs)", "Airship 9", "Airship 10", "99 Airs"}));
}

TEST_F(SearchRankingTest, aPairWithoutAnAgreedOrderStaysAsItComes) {
    // One wins by its start, the other by being the whole but for capitals.
    EXPECT_EQ(ranked({"air mail", "AIR"}, "air"), (Names{"air mail", "AIR"}));
    EXPECT_EQ(ranked({"AIR", "air mail"}, "air"), (Names{"AIR", "air mail"}));
}

TEST_F(SearchRankingTest, typingWithTheLibrarysCapitalsRanksBetter) {
    const Names titles{"Blue", "A Green Day", "Green Blue"};
    EXPECT_EQ(ranked(titles, "Green"), (Names{"Green Blue", "A Green Day", "Blue"}));
    EXPECT_EQ(ranked(titles, "green"), (Names{"A Green Day", "Blue", "Green Blue"}));
}

TEST_F(SearchRankingTest, withoutATermTheOrderStays) {
    EXPECT_EQ(ranked({"c", "a", "b"}, ""), (Names{"c", "a", "b"}));
}

TEST_F(SearchRankingTest, anyListEqualsTheComparisonTakenAtItsWord) {
    const auto compare = [](std::string_view term) {
        return [term](const std::string& a, const std::string& b) {
            const unsigned left = searchFlags(a, term);
            const unsigned right = searchFlags(b, term);
            if ((left & ~right) != 0) {
                return NSComparisonResult::ascending;
            }
            if ((right & ~left) != 0) {
                return NSComparisonResult::descending;
            }
            return Entended::smartAlphabeticalCompare(a, b);
        };
    };
    const Names pieces{"air",    "AIR", "Air", " ",      "mail", "é", "É",         "e\u0301",
                       "10",     "9",   "(",   ")",      "!",    "ß", "ss",        "日",
                       "ａｉｒ", "i",   "İ",   "\u00AD", "o",    "Ø", "\U0001F3B5"};
    std::mt19937 random(11);
    for (const std::string_view term : {"air", "Air", "é", "ss", "!", "9", "İ", "ａｉｒ"}) {
        Names titles;
        for (int i = 0; i < 300; ++i) {
            std::string title;
            for (auto length = 1 + random() % 3; length > 0; --length) {
                title += pieces[random() % pieces.size()];
            }
            titles.push_back(title);
        }
        EXPECT_EQ(ranked(titles, term), mergeSorted(titles, compare(term))) << term;
    }
}

TEST_F(SearchRankingTest, aPlaylistIsAskedForItsOwnName) {
    library_.publish({{.title = "x"}}, {{.name = "zebra", .persistentID = 1, .songs = {1}},
                                        {.name = "apple", .persistentID = 2}});
    std::vector<MPMediaEntity> playlists;
    for (const auto& playlist : MPMediaQuery::playlistsQuery().collections()) {
        playlists.emplace_back(playlist);
    }
    const auto found = sortedResults(playlists, "name", "x");
    EXPECT_EQ(stringOfEntity(found[0], "name"), "apple");
    EXPECT_EQ(stringOfEntity(found[1], "name"), "zebra");
}

TEST_F(SearchRankingTest, splitCompilationsAreRankedByTheirTracksArtist) {
    library_.publish(
        {{.title = "a", .artist = "Zed", .albumArtist = "Various", .compilation = true},
         {.title = "b", .artist = "Yes", .albumArtist = "Yes"}});
    const std::vector<MPMediaEntity> songs{library_.song("a"), library_.song("b")};
    EXPECT_EQ(stringOfEntity(songs[0], "artistSearchKey"), "Various");
    EXPECT_EQ(sortedResults(songs, "artistSearchKey", "Yes").front(), songs[1]);
    defaults_->setObject("BrowseShouldSplitCompilations", true);
    EXPECT_EQ(stringOfEntity(songs[0], "artistSearchKey"), "Zed");
    EXPECT_EQ(sortedResults(songs, "artistSearchKey", "Zed").front(), songs[0]);
}

TEST_F(SearchRankingTest, thePartsOfATermAreFoundInAnyOrder) {
    EXPECT_TRUE(stringContainsSubstringsOfString("Étude in Blue", "BLUE etude"));
    EXPECT_FALSE(stringContainsSubstringsOfString("Étude in Blue", "blue etudes"));
    EXPECT_TRUE(stringContainsSubstringsOfString("One\u3000Two", "two\u3000one"));
    EXPECT_FALSE(stringContainsSubstringsOfString("", "a"));
    EXPECT_FALSE(stringContainsSubstringsOfString("a", ""));
}

TEST_F(SearchRankingTest, twoBlanksInARowHaveAnEmptyPartThatNothingContains) {
    EXPECT_EQ(partsOfTerm("a  b"), (std::vector<std::string_view>{"a", "", "b"}));
    EXPECT_FALSE(stringContainsSubstringsOfString("a b", "a  b"));
}

TEST_F(SearchRankingTest, thePredicateReadsTheSongThatStandsForTheEntity) {
    library_.publish({{.title = "Étude in Blue"}, {.title = ""}});
    const EntityTest hasWords = substringPredicateForKeyPath("title", "blue etude");
    EXPECT_TRUE(hasWords(library_.song("Étude in Blue")));
    EXPECT_TRUE(hasWords(MPMediaItemCollection({library_.song("Étude in Blue")})));
    EXPECT_FALSE(hasWords(MPMediaEntity()));
    EXPECT_FALSE(substringPredicateForKeyPath("title", "")(library_.song("Étude in Blue")));
    EXPECT_FALSE(substringPredicateForKeyPath("genre", "blue")(library_.song("Étude in Blue")));
}

TEST_F(SearchRankingTest, whatStandsAroundATermIsCutOff) {
    EXPECT_EQ(trimmedTerm(" \t\u00A0a b\u2003\n"), "a b");
    EXPECT_EQ(trimmedTerm(" \n\u3000"), "");
}

}  // namespace
}  // namespace tavrion
