// What the clean-up need not look at, beside what it must.

#include "persistence/LoneRecords.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class LoneRecordsTest : public testing::Test {
  protected:
    /// The records that are not known to be alone, of `ids`.
    std::vector<NSManagedObjectID> suspects(const std::vector<NSManagedObjectID>& ids) {
        const LoneRecords lone(*environment.main().snapshot(), ids);
        std::vector<NSManagedObjectID> found;
        for (std::size_t place = 0; place < ids.size(); ++place) {
            if (!lone.isAlone(place)) {
                found.push_back(ids[place]);
            }
        }
        return found;
    }
    NSManagedObjectID award(const std::optional<std::string>& identifier) {
        Achievement award = Achievement::insert(environment.main());
        award.setIdentifier(identifier);
        return award.objectID();
    }
    RecordingEnvironment environment;
};

TEST_F(LoneRecordsTest, songsAreComparedByTitleWithDurationAndByEachIdentifier) {
    const auto make = [&](const std::string& title, double duration, const std::string& storeID,
                          const std::string& libraryID) {
        return environment.makeHistory(title, duration, storeID, libraryID).objectID();
    };
    const std::vector<NSManagedObjectID> ids{make("a", 1, "S1", "L1"), make("a", 2, "S2", "L2"),
                                             make("b", 1, "S3", "L3"), make("a", 1, "S4", "L4"),
                                             make("c", 1, "S3", "L5"), make("d", 1, "S6", "L2"),
                                             make("e", 1, "S7", "L7")};
    EXPECT_EQ(suspects(ids),
              (std::vector<NSManagedObjectID>{ids[0], ids[1], ids[2], ids[3], ids[4], ids[5]}));
}

TEST_F(LoneRecordsTest, playsAreComparedByTheirDateAndWhatHasNoneIsSuspect) {
    PlaybackHistory song = environment.makeHistory("a", 1);
    std::vector<NSManagedObjectID> ids{environment.makePlay(song, 100).objectID(),
                                       environment.makePlay(song, 200).objectID(),
                                       environment.makePlay(song, 100).objectID(),
                                       PlayEvent::insert(environment.main()).objectID()};
    EXPECT_EQ(suspects(ids), (std::vector<NSManagedObjectID>{ids[0], ids[2], ids[3]}));
}

TEST_F(LoneRecordsTest, whatIsDoubledMayHaveBeenThereBefore) {
    PlaybackHistory song = environment.makeHistory("a", 1);
    environment.makePlay(song, 100);
    const std::vector<NSManagedObjectID> ids{environment.makePlay(song, 300).objectID(),
                                             environment.makePlay(song, 100).objectID()};
    EXPECT_EQ(suspects(ids), (std::vector<NSManagedObjectID>{ids[1]}));
}

TEST_F(LoneRecordsTest, awardsAreComparedByTheirIdentifier) {
    const std::vector<NSManagedObjectID> ids{award("one"), award("two"), award("one"),
                                             award(std::nullopt)};
    EXPECT_EQ(suspects(ids), (std::vector<NSManagedObjectID>{ids[0], ids[2], ids[3]}));
}

TEST_F(LoneRecordsTest, recordsThatAreGoneOrNotSideBySideAreToldApart) {
    PlaybackHistory song = environment.makeHistory("a", 1);
    const PlayEvent gone = environment.makePlay(song, 100);
    const auto kept = environment.makePlay(song, 200).objectID();
    environment.makePlay(song, 300);
    const auto later = environment.makePlay(song, 400).objectID();
    environment.main().deleteObject(gone);
    EXPECT_EQ(suspects({gone.objectID(), kept, later}),
              (std::vector<NSManagedObjectID>{gone.objectID()}));
}

TEST_F(LoneRecordsTest, aFewAmongVeryManyAreLookedUpOneByOne) {
    PlaybackHistory song = environment.makeHistory("a", 1);
    NSManagedObjectID last;
    for (int i = 0; i < 600; ++i) {
        last = environment.makePlay(song, i).objectID();
    }
    EXPECT_EQ(suspects({last}), std::vector<NSManagedObjectID>{last});
}

TEST_F(LoneRecordsTest, aLargeSaveIsCleanedUpAsASmallOneIs) {
    std::mt19937 random(4);
    std::map<double, RecordCounter> latest;
    PlaybackHistory song = environment.makeHistory("a", 1);
    for (int i = 0; i < 3000; ++i) {
        const auto seconds = static_cast<double>(random() % 5000);
        latest[seconds] = environment.makePlay(song, seconds).objectID().counter;
    }
    environment.makeHistory("b", 1, "S1", "L1");
    environment.makeHistory("c", 2, "S2", "L1");
    environment.makeHistory("d", 3, "S2", "L3");
    environment.saveMain();
    std::map<double, RecordCounter> kept;
    for (const PlayEvent& play : song.plays()) {
        EXPECT_TRUE(kept.emplace(play.eventDate()->timeIntervalSinceReferenceDate(),
                                 play.objectID().counter)
                        .second);
    }
    EXPECT_EQ(kept, latest) << "of plays of one instant the last one stays";
    std::vector<std::string> titles;
    for (const PlaybackHistory& history : environment.histories()) {
        titles.push_back(history.title().value_or(""));
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"a", "b", "d"}));
}

}  // namespace
}  // namespace tavrion
