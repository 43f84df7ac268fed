// Numbers for the texts of songs, from one version of the records to the next.

#include "timeviews/TrendingKeys.h"

#include <gtest/gtest.h>

#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

TEST(TextNumbers, equalTextsHaveOneNumberHoweverManyThereAre) {
    TextNumbers numbers;
    for (int round = 0; round < 2; ++round) {
        for (std::uint32_t i = 0; i < 5000; ++i) {
            ASSERT_EQ(numbers.numberOf("Text " + std::to_string(i)), i);
        }
    }
    EXPECT_EQ(numbers.numberOf(""), 5000U);
    EXPECT_EQ(numbers.size(), 5001U);
    EXPECT_EQ(numbers.text(4321), "Text 4321");
    EXPECT_EQ(numbers.text(5000), "");
}

class TrendingKeysTest : public testing::Test {
  protected:
    PlaybackHistory song(const std::string& title, const char* artist, const char* genre) {
        PlaybackHistory history = environment.makeHistory(title, 100);
        history.setArtist(artist);
        history.setGenre(genre);
        return history;
    }
    void follow() {
        records = environment.main().snapshot();
        keys.follow(records->table(NerindaEntity::PlaybackHistory));
    }
    std::string text(std::size_t leaf, std::size_t row, TrendingLevel level) {
        const std::uint32_t number = keys.number(leaf, row, level);
        return number == TrendingKeys::none ? "none" : std::string(keys.text(number));
    }

    RecordingEnvironment environment;
    std::shared_ptr<const StoreVersion> records;
    TrendingKeys keys;
};

TEST_F(TrendingKeysTest, allLevelsShareTheNumbersAndAnAbsentTextIsNone) {
    song("One", "Rock", "Pop");
    song("Two", "Other", "Rock");
    follow();
    EXPECT_EQ(keys.number(0, 0, TrendingLevel::artist), keys.number(0, 1, TrendingLevel::genre));
    EXPECT_EQ(text(0, 0, TrendingLevel::genre), "Pop");
    EXPECT_EQ(text(0, 1, TrendingLevel::artist), "Other");
    EXPECT_EQ(text(0, 0, TrendingLevel::album), "none");
    EXPECT_LT(keys.number(0, 1, TrendingLevel::artist), keys.end());
}

TEST_F(TrendingKeysTest, whatChangedIsReadAgainAndTheRestKeepsItsNumber) {
    PlaybackHistory first = song("One", "A", "Pop");
    // More than one leaf holds.
    for (std::size_t i = 0; i < TableVersion::largestLeaf; ++i) {
        song(std::to_string(i), "B", "Pop");
    }
    environment.saveMain();
    follow();
    ASSERT_GE(records->table(NerindaEntity::PlaybackHistory).leaves().size(), 2U);
    const std::uint32_t kept = keys.number(1, 0, TrendingLevel::artist);
    EXPECT_EQ(text(0, 0, TrendingLevel::artist), "A");
    first.setArtist("C");
    follow();
    EXPECT_EQ(text(0, 0, TrendingLevel::artist), "C");
    EXPECT_EQ(keys.number(1, 0, TrendingLevel::artist), kept);
    EXPECT_EQ(text(0, 1, TrendingLevel::artist), "B");
    EXPECT_EQ(keys.number(0, 1, TrendingLevel::artist), kept);
}

TEST_F(TrendingKeysTest, aVersionWithoutSongsHasNothingToAskFor) {
    follow();
    EXPECT_EQ(keys.end(), TrendingKeys::none + 1U);
    song("One", "A", "Pop");
    follow();
    EXPECT_EQ(text(0, 0, TrendingLevel::artist), "A");
}

}  // namespace
}  // namespace tavrion
