#include "library/EntityRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

/// 2026-03-31 12:00 UTC.
const NSDate present = NSDate::dateWithTimeIntervalSinceReferenceDate(796651200);

class EntityRowsTest : public testing::Test {
  protected:
    EntityRowsTest() {
        library_.publish({{.title = "Sky",
                           .duration = 7200,
                           .playCount = 2,
                           .lastPlayed = present,
                           .track = 7,
                           .explicitContent = true},
                          {.title = "Sea", .track = 0}});
    }
    EntityRows rows(RVSortType sortType, RowNumbers numbers = RowNumbers::none) {
        return {{library_.song("Sky"), library_.song("Sea")}, sortType, numbers};
    }
    static std::string property(const EntityRow& row) {
        return row.property.textWithoutAttachments();
    }

    ManualClock clock_{present};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(EntityRowsTest, aRowIsWhatAUserReads) {
    const EntityRow row = EntityRows::ranked({library_.song("Sky")}, RVSortTypePlayCount).row(0);
    EXPECT_EQ(row.entity, library_.song("Sky"));
    EXPECT_EQ(row.title->textWithoutAttachments(), "Sky");
    EXPECT_EQ(row.title->runs().size(), 2U) << "the mark of an explicit song";
    EXPECT_EQ(row.subtitle, "Artist");
    EXPECT_EQ(row.number, 1U);
    EXPECT_EQ(property(row), "2x");
}

TEST_F(EntityRowsTest, theBeginningOfARowHasAllButItsProperty) {
    const EntityRows songs = rows(RVSortTypePlayCount, RowNumbers::places);
    EntityRow whole = songs.row(1);
    EXPECT_EQ(whole.number, 2U);
    whole.property = NSAttributedString();
    EXPECT_EQ(songs.beginningOfRow(1), whole);
}

TEST_F(EntityRowsTest, theNumberIsThePlaceTheTrackOrNone) {
    EXPECT_EQ(rows(0, RowNumbers::tracks).number(0), 7U);
    EXPECT_EQ(rows(0, RowNumbers::tracks).number(1), 0U);
    EXPECT_EQ(rows(0).number(0), std::nullopt);
    const MPMediaEntity album = MPMediaQuery::albumsQuery().collections().at(0);
    EXPECT_EQ(EntityRows({album}, 0, RowNumbers::tracks).number(0), std::nullopt);
    EXPECT_EQ(EntityRows::ranked({album}, RVSortTypeTimeListened).number(0), 1U);
    EXPECT_EQ(EntityRows::ranked({album}, RVSortTypeLastPlayed).number(0), std::nullopt);
}

TEST_F(EntityRowsTest, hitsShowWhatAnAlphabeticalListShows) {
    const EntityRows songs = rows(RVSortTypePlayCount, RowNumbers::places);
    EXPECT_EQ(property(songs.keptRow(0)), "2x");
    const EntityRows hits = songs.asHits();
    EXPECT_EQ(hits.size(), 2U);
    EXPECT_EQ(hits.number(0), std::nullopt);
    EXPECT_EQ(property(hits.keptRow(0)), "Album");
}

TEST_F(EntityRowsTest, keptRowsAreThoseOfTheDayAndTheSettings) {
    const EntityRows played = rows(RVSortTypeLastPlayed);
    EXPECT_EQ(property(played.keptRow(0)), "Today");
    clock_.set(present.dateByAddingTimeInterval(86400));
    EXPECT_EQ(property(played.keptRow(0)), "Yesterday");
    EXPECT_EQ(property(played.keptRow(1)), "—");

    const EntityRows listened = rows(RVSortTypeTimeListened);
    EXPECT_EQ(property(listened.keptRow(0)), "240 min");
    defaults_->setObject(RVMetadataManager::expandedTimeKey, true);
    EXPECT_EQ(property(listened.keptRow(0)), "4h");
}

/// The least time of a few calls, which other work on the machine disturbs least.
template <class Work>
std::chrono::nanoseconds timeOf(const Work& work) {
    auto least = std::chrono::nanoseconds::max();
    for (int round = 0; round < 9; ++round) {
        const auto start = std::chrono::steady_clock::now();
        work();
        least = std::min<std::chrono::nanoseconds>(least, std::chrono::steady_clock::now() - start);
    }
    return least;
}

TEST_F(EntityRowsTest, aKeptRowIsNotMadeAgain) {
    const MPMediaEntity longList =
        MPMediaItemCollection(std::vector<MPMediaItem>(200'000, library_.song("Sky")));
    const EntityRows rows({longList}, RVSortTypePlayCount);
    EXPECT_EQ(property(rows.keptRow(0)), "400000x");
    EXPECT_LT(timeOf([&] { rows.keptRow(0); }) * 4, timeOf([&] { rows.row(0); }));
}

TEST_F(EntityRowsTest, aRowOfManyIsStillTheOneOfItsPlace) {
    std::vector<MPMediaEntity> entities(2500, library_.song("Sky"));
    entities[7] = library_.song("Sea");
    const EntityRows songs(entities, RVSortTypePlayCount, RowNumbers::places);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t place = 0; place < songs.size(); ++place) {
            const EntityRow row = songs.keptRow(place);
            ASSERT_EQ(row.number, place + 1);
            ASSERT_EQ(row.entity, entities[place]);
        }
    }
}

}  // namespace
}  // namespace tavrion
