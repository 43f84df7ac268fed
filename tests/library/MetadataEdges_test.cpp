// The edges of what the library shows as text, one test each.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSString+Entended.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "tests/platform/foundation/ZoneText.h"

namespace tavrion {
namespace {

using Manager = RVMetadataManager;
using test::instant;

class MetadataEdges : public testing::Test {
  protected:
    static std::vector<std::string> sorted(std::vector<std::string> names) {
        std::stable_sort(names.begin(), names.end(), [](const auto& a, const auto& b) {
            return Entended::smartAlphabeticalCompare(a, b) == NSComparisonResult::ascending;
        });
        return names;
    }

    /// A Friday.
    ManualClock clock_{instant("2024-03-15T12:00:00Z")};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(MetadataEdges, anEmptyTitleIsUntitledAnEmptyArtistUnknownAndAPlaylistMayBeNameless) {
    library_.publish({{.title = "", .artist = ""}}, {{.name = "", .persistentID = 9}});
    const MPMediaEntity song = MPMediaItem(library_.library().snapshot(), 0);
    const MPMediaEntity playlist = MPMediaQuery::playlistsQuery().collections().front();
    EXPECT_EQ(Manager::titleForMediaEntity(song, std::nullopt), NSAttributedString("Untitled"));
    EXPECT_EQ(Manager::subtitleForMediaEntity(song), "Unknown");
    EXPECT_EQ(Manager::titleForMediaEntity(playlist, std::nullopt), NSAttributedString(""));
}

TEST_F(MetadataEdges, sevenDaysBackIsAWeekdayAndEightADate) {
    EXPECT_EQ(Manager::formattedDate(instant("2024-03-08T00:00:00Z"), false), "Friday");
    EXPECT_EQ(Manager::formattedDate(instant("2024-03-08T00:00:00Z"), true), "Friday");
    EXPECT_EQ(Manager::formattedDate(instant("2024-03-07T23:59:59Z"), false), "Mar 7, 2024");
    EXPECT_EQ(Manager::formattedDate(instant("2024-03-07T23:59:59Z"), true), "Mar 7");
}

TEST_F(MetadataEdges, tomorrowIsAWeekdayAndNotToday) {
    EXPECT_EQ(Manager::formattedDate(instant("2024-03-16T00:00:00Z"), false), "Saturday");
    EXPECT_EQ(Manager::formattedDate(instant("2024-03-15T23:59:59Z"), false), "Today");
}

TEST_F(MetadataEdges, aNameOfExclamationMarksComesBehindAllThatStartWithALetter) {
    EXPECT_TRUE(Entended::stringBeginsWithNumeral("~"));
    EXPECT_EQ(Entended::smartAlphabeticalCompare("!!!", "~"), NSComparisonResult::same);
    EXPECT_EQ(sorted({"!!!", "zz top", "Ära", "Ωmega"}),
              (std::vector<std::string>{"Ära", "zz top", "Ωmega", "!!!"}));
}

TEST_F(MetadataEdges, anApostropheInFrontIsIgnoredAndOneInsideStays) {
    EXPECT_EQ(Entended::smartAlphabeticalCompare("'Heroes'", "Heroes"), NSComparisonResult::same);
    EXPECT_EQ(sorted({"Tisch", "'Tis", "Tin"}), (std::vector<std::string>{"Tin", "'Tis", "Tisch"}));
    EXPECT_EQ(Entended::smartAlphabeticalCompare("Don't", "Dont"), NSComparisonResult::ascending);
}

TEST_F(MetadataEdges, aNameThatStartsWithADigitComesBehindTheLetterZ) {
    EXPECT_EQ(sorted({"1999", "Zulu", "99 Tears", "Alpha"}),
              (std::vector<std::string>{"Alpha", "Zulu", "99 Tears", "1999"}));
}

TEST_F(MetadataEdges, onlyPlayCountAndTimeListenedAreRanked) {
    for (const RVSortType type : {0U, 2U, 4U, 5U, 6U, 7U, 100U}) {
        EXPECT_FALSE(Manager::sortTypeIsRanked(type)) << type;
    }
    EXPECT_TRUE(Manager::sortTypeIsRanked(1));
    EXPECT_TRUE(Manager::sortTypeIsRanked(3));
}

TEST_F(MetadataEdges, atExactlyAHundredHoursATimeStillHasTwoUnitsAndAClockHoursOnly) {
    defaults_->setObject("TimeListenedFormatExpanded", true);
    // The second of the two units is zero at the boundary itself and shows beside it.
    EXPECT_EQ(Manager::formattedDuration(359941), "99h 59m");
    EXPECT_EQ(Manager::formattedDuration(360000.0), "100h");
    EXPECT_EQ(Manager::formattedDuration(360000.5), "100h");
    EXPECT_EQ(Manager::formattedDuration(361800), "100h");
    EXPECT_EQ(Manager::formattedPlaybackDuration(359999.5), "99:59:59");
    EXPECT_EQ(Manager::formattedPlaybackDuration(360000.0), "100h");
}

TEST_F(MetadataEdges, withoutArtworkASongIsAnItemAndACollectionAList) {
    library_.publish({{.title = "a"}});
    EXPECT_EQ(Manager::artworkForEntity(library_.song("a")), UIImage::imageNamed("item"));
    EXPECT_EQ(Manager::artworkForEntity(MPMediaQuery::albumsQuery().collections().front()),
              UIImage::imageNamed("list"));
}

}  // namespace
}  // namespace tavrion
