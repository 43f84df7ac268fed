// A library whose songs have years and no dates, as players keep it that know of no release days.
#include <gtest/gtest.h>

#include <algorithm>

#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"
#include "library/RVQueryManager+Statistics.h"
#include "library/search/LibrarySearch.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

class YearsWithoutDates : public testing::Test {
  protected:
    static std::string valueOf(const MPMediaEntity& entity, RVSortType sortType) {
        return RVMetadataManager::sortPropertyForMediaEntity(entity, sortType)
            .textWithoutAttachments();
    }
    static MPMediaEntity albumOf(const std::string& title) {
        return LibrarySearch().results(title).albums[0];
    }

    ManualClock clock_{NSDate::dateWithTimeIntervalSinceReferenceDate(796651200)};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_{{{.title = "Old wave", .albumTitle = "Sea", .year = 1969},
                                  {.title = "New wave", .albumTitle = "Shore", .year = 1999},
                                  {.title = "No wave", .albumTitle = "Sand"}}};
};

TEST_F(YearsWithoutDates, aFoundAlbumShowsItsYear) {
    EXPECT_EQ(valueOf(albumOf("sea"), RVSortTypeAlphabetical), "1969");
    EXPECT_EQ(valueOf(albumOf("shore"), RVSortTypeAlphabetical), "1999");
    EXPECT_EQ(valueOf(albumOf("sand"), RVSortTypeAlphabetical), "0") << "the year itself";
}

TEST_F(YearsWithoutDates, aFoundSongShowsItsAlbum) {
    const FoundEntities songs = LibrarySearch().results("old wave").songs;
    ASSERT_EQ(songs.size(), 1U);
    EXPECT_EQ(valueOf(songs[0], RVSortTypeAlphabetical), "Sea");
}

TEST_F(YearsWithoutDates, aSongsPageTellsTheYearInPlaceOfTheReleaseDate) {
    Names captions;
    Names values;
    const auto statistics = RVQueryManager::statsForMediaEntity(library_.song("New wave"));
    ASSERT_TRUE(statistics);
    for (const RVStatisticReference& statistic : *statistics) {
        captions.push_back(statistic->caption());
        values.push_back(statistic->value());
    }
    const auto year = std::find(captions.begin(), captions.end(), "Year");
    ASSERT_NE(year, captions.end());
    EXPECT_EQ(values[static_cast<std::size_t>(year - captions.begin())], "1999");
    const auto added = std::find(captions.begin(), captions.end(), "Date Added");
    ASSERT_NE(added, captions.end());
    EXPECT_EQ(values[static_cast<std::size_t>(added - captions.begin())], "—");
}

TEST_F(YearsWithoutDates, releaseDatesSortByTheYearAndPutSongsWithoutOneLast) {
    Names titles;
    for (const MPMediaEntity& song : RVQueryManager::resultsForQuery(
             nullptr, MPMediaGrouping::title, RVSortTypeReleaseDate, false)) {
        titles.push_back(stringOfEntity(song, "title"));
    }
    EXPECT_EQ(titles, (Names{"New wave", "Old wave", "No wave"}));
}

}  // namespace
}  // namespace tavrion
