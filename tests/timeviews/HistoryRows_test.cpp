// What a play shows, and that what is kept is never an old answer.

#include "timeviews/HistoryRows.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class HistoryRowsTest : public testing::Test {
  protected:
    HistoryRow row(const PlayEvent& event, const std::optional<UIFont>& font = std::nullopt) {
        return *rows.rowOf(*environment.main().snapshot(), event.objectID(), font);
    }
    std::string title(const PlayEvent& event) { return row(event).title.textWithoutAttachments(); }

    RecordingEnvironment environment;
    HistoryRows rows;
    PlaybackHistory song = environment.makeHistory("One", 100);
    PlayEvent play = environment.makePlay(song, 794059200, true);
};

TEST_F(HistoryRowsTest, aPlayThatIsGoneHasNoRow) {
    const NSManagedObjectID id = play.objectID();
    environment.main().deleteObject(play);
    EXPECT_FALSE(rows.rowOf(*environment.main().snapshot(), id, std::nullopt));
}

TEST_F(HistoryRowsTest, anotherLibraryGivesAnotherRow) {
    song.setArtist("Stored");
    environment.library.publish({{.title = "One", .artist = "Singer", .duration = 100}});
    EXPECT_EQ(row(play).subtitle, "Singer");
    environment.library.publish({{.title = "One", .artist = "Band", .duration = 100}});
    EXPECT_EQ(row(play).subtitle, "Band");
    environment.library.publish({});
    EXPECT_EQ(row(play).subtitle, "Stored");
    EXPECT_FALSE(row(play).item);
    environment.library.publish({{.title = "One", .artist = "Back", .duration = 100}});
    EXPECT_EQ(row(play).subtitle, "Back") << "also where none was found before";
}

TEST_F(HistoryRowsTest, anotherRecordGivesAnotherRow) {
    environment.library.publish({{.title = "Two", .artist = "Singer", .duration = 100},
                                 {.title = "Three", .artist = "Third", .libraryID = "L3"}});
    EXPECT_EQ(title(play), "One");
    EXPECT_FALSE(row(play).item);
    song.setArtist("Artist");
    EXPECT_EQ(row(play).subtitle, "Artist");
    song.setTitle("Two");
    EXPECT_EQ(row(play).subtitle, "Singer");
    song.setTitle("Nothing");
    EXPECT_EQ(title(play), "Nothing");
    song.setLibraryID("L3");
    EXPECT_EQ(title(play), "Three");
}

TEST_F(HistoryRowsTest, everyPlayOfASongShowsItsOwnDate) {
    environment.library.publish({{.title = "One", .duration = 100}});
    const PlayEvent exact = environment.makePlay(song, 794059200 - 86400);
    EXPECT_NE(row(play).property, row(exact).property);
    EXPECT_TRUE(row(play).isInterpolated);
    EXPECT_FALSE(row(exact).isInterpolated);
    EXPECT_EQ(row(play).item, row(exact).item);
}

TEST_F(HistoryRowsTest, aRowChangesNoRecord) {
    song.setLibraryID("L1");
    environment.saveMain();
    environment.library.publish({{.title = "Renamed", .duration = 100, .libraryID = "L1"},
                                 {.title = "Other", .duration = 5}});
    EXPECT_EQ(title(play), "Renamed");
    EXPECT_EQ(song.title(), "One");
    HistoryRows::takeOver(*row(play).item, play.objectID(), environment.main());
    EXPECT_EQ(song.title(), "Renamed");
}

TEST_F(HistoryRowsTest, aPlayWithoutASongHasAnEmptyRow) {
    environment.main().deleteObject(song);
    EXPECT_EQ(title(play), "");
    EXPECT_FALSE(row(play).item);
    EXPECT_FALSE(row(play).property);
}

TEST_F(HistoryRowsTest, rowsMayBeAskedForOnSeveralThreads) {
    environment.library.publish({{.title = "One", .artist = "Singer", .duration = 100}});
    const auto records = environment.main().snapshot();
    std::vector<std::thread> threads;
    std::atomic<int> right{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                const auto found = rows.rowOf(*records, play.objectID(), std::nullopt);
                right += found->subtitle == "Singer" ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 800);
}

}  // namespace
}  // namespace tavrion
