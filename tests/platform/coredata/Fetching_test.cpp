#include <cmath>

#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

using Operator = NSPredicate::Operator;

class FetchTest : public CoreDataTest {
  protected:
    std::vector<double> seconds(NSFetchRequest request) {
        std::vector<double> found;
        for (const NSManagedObject& object : main->executeFetchRequest(request).value()) {
            const std::optional<NSDate> date = Play(object).when();
            found.push_back(date ? date->timeIntervalSinceReferenceDate() : -1);
        }
        return found;
    }
    static NSFetchRequest plays() { return NSFetchRequest::fetchRequestWithEntityName("Play"); }
    static NSPredicate between(double start, double end) {
        return NSPredicate::andPredicateWithSubpredicates(
            {NSPredicate::comparison("date", Operator::greater, at(start)),
             NSPredicate::comparison("date", Operator::less, at(end))});
    }
};

TEST_F(FetchTest, withoutAnOrderRecordsComeInIdentifierOrder) {
    for (const double second : {30.0, 10.0, 20.0}) {
        Play::insert(*main, second);
    }
    EXPECT_EQ(seconds(plays()), (std::vector<double>{30, 10, 20}));
}

TEST_F(FetchTest, datesSortBothWaysAndTiesKeepIdentifierOrder) {
    const Play first = Play::insert(*main, 20);
    const Play tie = Play::insert(*main, 20);
    Play undated = Play::insert(*main, 0);
    undated.setWhen(std::nullopt);
    Play::insert(*main, 10);
    NSFetchRequest request = plays();
    request.sortDescriptors = {{"date", true}};
    EXPECT_EQ(seconds(request), (std::vector<double>{-1, 10, 20, 20}));
    EXPECT_EQ(main->executeFetchRequest(request).value()[2].objectID(), first.objectID());
    request.sortDescriptors = {{"date", false}};
    EXPECT_EQ(seconds(request), (std::vector<double>{20, 20, 10, -1}));
    EXPECT_EQ(main->executeFetchRequest(request).value()[0].objectID(), first.objectID());
    EXPECT_NE(first.objectID(), tie.objectID());
}

TEST_F(FetchTest, theBoundsOfADateRangeAreOutside) {
    for (const double second : {-5.0, 0.0, 1.0, 2.0, 3.0}) {
        Play::insert(*main, second);
    }
    EXPECT_EQ(seconds(plays().where(between(0, 3))), (std::vector<double>{1, 2}));
    EXPECT_EQ(seconds(plays().where(between(-10, 0.5))), (std::vector<double>{-5, 0}));
    EXPECT_TRUE(seconds(plays().where(between(3, 0))).empty());
}

TEST_F(FetchTest, aRangeIsFoundAmongManyRecordsInAnyOrder) {
    constexpr int count = 20000;
    for (int i = 0; i < count; ++i) {
        // Dates in an order of their own, so that the index and the table differ.
        Play::insert(*main, (i * 7919) % count);
    }
    save(*main);
    EXPECT_EQ(countOf(*main, "Play", between(100, 111)), 10U);
    EXPECT_EQ(countOf(*main, "Play", between(-1, count)), static_cast<std::size_t>(count));
    EXPECT_EQ(countOf(*main, "Play", between(99.5, count - 100.5)),
              static_cast<std::size_t>(count - 200));
}

TEST_F(FetchTest, datesAreComparedExactly) {
    Play::insert(*main, 794059200.1234567);
    const auto equal = [](double second) {
        return NSPredicate::comparison("date", Operator::equal, at(second));
    };
    EXPECT_EQ(countOf(*main, "Play", equal(794059200.1234567)), 1U);
    EXPECT_EQ(countOf(*main, "Play", equal(std::nextafter(794059200.1234567, 0))), 0U);
    Play::insert(*main, -0.0);
    EXPECT_EQ(countOf(*main, "Play", equal(0.0)), 1U);
}

TEST_F(FetchTest, equalityOverSeveralPropertiesAndAlternatives) {
    Song::insert(*main, "a", 1);
    Song::insert(*main, "a", 2);
    Song::insert(*main, "b", 1);
    save(*main);
    Song::insert(*main, "a", 1);
    const NSPredicate both = NSPredicate::andPredicateWithSubpredicates(
        {titled("a"), NSPredicate::comparison("length", Operator::equal, 1.0)});
    EXPECT_EQ(countOf(*main, "Song", both), 2U);
    EXPECT_EQ(
        countOf(*main, "Song", NSPredicate::orPredicateWithSubpredicates({both, titled("b")})), 3U);
    EXPECT_EQ(
        countOf(*main, "Song", NSPredicate::andPredicateWithSubpredicates({both, titled("b")})),
        0U);
    EXPECT_EQ(countOf(*main, "Song", NSPredicate::orPredicateWithSubpredicates({})), 0U);
    EXPECT_EQ(countOf(*main, "Song", NSPredicate::andPredicateWithSubpredicates({})), 4U);
}

TEST_F(FetchTest, aChangedKeyIsFoundUnderItsNewValueOnly) {
    Song song = Song::insert(*main, "a", 1);
    save(*main);
    song.setLength(2);
    const auto pair = [](double length) {
        return NSPredicate::andPredicateWithSubpredicates(
            {titled("a"), NSPredicate::comparison("length", Operator::equal, length)});
    };
    EXPECT_EQ(countOf(*main, "Song", pair(1)), 0U);
    EXPECT_EQ(countOf(*main, "Song", pair(2)), 1U);
    save(*main);
    EXPECT_EQ(countOf(*main, "Song", pair(1)), 0U);
    EXPECT_EQ(countOf(*main, "Song", pair(2)), 1U);
}

TEST_F(FetchTest, aBaseEntityGivesTheRecordsOfItsDerivedOne) {
    const Song song = Song::insert(*main, "song");
    const Play play = Play::insert(*main, 1, song);
    const auto found =
        main->executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Event").where(
            NSPredicate::comparison("song", Operator::equal, Value(song.objectID().reference()))));
    ASSERT_EQ(found.value().size(), 1U);
    EXPECT_EQ(found.value()[0].objectID(), play.objectID());
}

TEST_F(FetchTest, flagsAreFoundByEqualityAndByItsOpposite) {
    Song hidden = Song::insert(*main, "hidden");
    hidden.setHidden(true);
    Song::insert(*main, "shown");
    EXPECT_EQ(countOf(*main, "Song", NSPredicate::comparison("hidden", Operator::equal, true)), 1U);
    EXPECT_EQ(countOf(*main, "Song", NSPredicate::comparison("hidden", Operator::notEqual, true)),
              1U);
}

TEST_F(FetchTest, anUnknownEntityOrKeyIsAnErrorThatNamesIt) {
    const auto entity =
        main->executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Nothing"));
    ASSERT_FALSE(entity);
    EXPECT_NE(entity.error().localizedDescription.find("Nothing"), std::string::npos);
    const auto key = main->countForFetchRequest(
        plays().where(NSPredicate::comparison("nothing", Operator::equal, 1)));
    ASSERT_FALSE(key);
    EXPECT_NE(key.error().localizedDescription.find("nothing"), std::string::npos);
    NSFetchRequest sorted = plays();
    sorted.sortDescriptors = {{"nothing", true}};
    EXPECT_FALSE(main->executeFetchRequest(sorted));
}

}  // namespace
}  // namespace tavrion
