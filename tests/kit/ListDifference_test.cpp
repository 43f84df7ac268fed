// Doing a difference's steps to the old list gives the new one.

#include "kit/ListDifference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Move = ListDifference::Move;
using Range = ListDifference::Range;

std::vector<ListRow> rows(const std::vector<std::uint64_t>& numbers) {
    std::vector<ListRow> rows;
    for (const std::uint64_t number : numbers) {
        rows.push_back({1, number, number});
    }
    return rows;
}

ListDifference between(const std::vector<std::uint64_t>& before,
                       const std::vector<std::uint64_t>& after) {
    return differenceBetween(rows(before), rows(after));
}

/// What a list model does, one step after the other.
std::vector<ListRow> applied(const ListDifference& difference, std::vector<ListRow> list,
                             const std::vector<ListRow>& after) {
    const auto at = [&list](std::size_t place) {
        EXPECT_LE(place, list.size());
        return list.begin() + static_cast<std::ptrdiff_t>(place);
    };
    for (const Range& range : difference.deletions) {
        list.erase(at(range.first), at(range.first + range.count));
    }
    for (const Move& move : difference.moves) {
        const ListRow row = *at(move.from);
        list.erase(at(move.from));
        list.insert(at(move.to), row);
    }
    for (const Range& range : difference.insertions) {
        for (std::size_t place = range.first; place < range.first + range.count; ++place) {
            list.insert(at(place), after[place]);
        }
    }
    for (const std::size_t place : difference.reloads) {
        EXPECT_TRUE(list[place].isSameAs(after[place])) << "a reload brings no other row";
        EXPECT_NE(list[place].content, after[place].content);
        list[place].content = after[place].content;
    }
    return list;
}

TEST(ListDifference, equalListsHaveNone) {
    EXPECT_TRUE(between({}, {}).isEmpty());
    EXPECT_TRUE(between({1, 2, 3}, {1, 2, 3}).isEmpty());
}

TEST(ListDifference, neighboursGoAndComeTogether) {
    const ListDifference difference = between({1, 2, 3, 4, 5, 6}, {1, 4, 7, 8, 6, 9});
    EXPECT_THAT(difference.deletions, ElementsAre(Range{4, 1}, Range{1, 2})) << "from the back";
    EXPECT_THAT(difference.insertions, ElementsAre(Range{2, 2}, Range{5, 1}));
    EXPECT_THAT(difference.moves, IsEmpty());
    EXPECT_THAT(difference.reloads, IsEmpty());
}

TEST(ListDifference, aRowThatMovesMovesAlone) {
    EXPECT_THAT(between({1, 2, 3, 4, 5}, {5, 1, 2, 3, 4}).moves, ElementsAre(Move{4, 0}));
    EXPECT_THAT(between({1, 2, 3, 4, 5}, {2, 3, 4, 5, 1}).moves, ElementsAre(Move{0, 4}));
    EXPECT_THAT(between({1, 2}, {2, 1}).moves.size(), 1U);
}

TEST(ListDifference, aChangedTitleIsAReload) {
    std::vector<ListRow> after = rows({3, 1, 2});
    after[2].content = 99;
    const ListDifference difference = differenceBetween(rows({1, 2, 3}), after);
    EXPECT_THAT(difference.reloads, ElementsAre(2U)) << "where it stands now";
    EXPECT_THAT(difference.moves, ElementsAre(Move{2, 0}));
}

TEST(ListDifference, kindsAreToldApart) {
    const ListDifference difference =
        differenceBetween({{1, 7, 0}, {2, 7, 0}}, std::vector<ListRow>{{2, 7, 0}, {3, 7, 0}});
    EXPECT_THAT(difference.deletions, ElementsAre(Range{0, 1}));
    EXPECT_THAT(difference.insertions, ElementsAre(Range{1, 1}));
}

TEST(ListDifference, anyListBecomesAnyOther) {
    std::mt19937 random(20260315);
    for (int round = 0; round < 3000; ++round) {
        // Few numbers stand in both lists several times, many hardly meet.
        const std::uint64_t highest = 1 + random() % 40;
        const auto list = [&] {
            std::vector<ListRow> made;
            for (std::size_t i = random() % 25; i > 0; --i) {
                made.push_back({random() % 2, random() % highest, random() % 3});
            }
            return made;
        };
        const std::vector<ListRow> before = list();
        const std::vector<ListRow> after = list();
        ASSERT_EQ(applied(differenceBetween(before, after), before, after), after)
            << "round " << round;
    }
}

TEST(ListDifference, noMoreRowsMoveThanMust) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::uint64_t> before{1, 2, 3, 4, 5, 6, 7};
        std::vector<std::uint64_t> after = before;
        std::shuffle(after.begin(), after.end(), random);
        // The longest rising part of what stands after, the plain way.
        std::size_t longest = 0;
        for (unsigned chosen = 0; chosen < (1U << before.size()); ++chosen) {
            std::vector<std::uint64_t> part;
            for (std::size_t i = 0; i < after.size(); ++i) {
                if ((chosen >> i & 1U) != 0) {
                    part.push_back(after[i]);
                }
            }
            longest =
                std::is_sorted(part.begin(), part.end()) ? std::max(longest, part.size()) : longest;
        }
        EXPECT_LE(between(before, after).moves.size(), before.size() - longest);
    }
}

TEST(ListDifference, aLongListIsLookedAtOnceAndSortedInNoTimeToSpeakOf) {
    constexpr std::uint64_t count = 100000;
    std::vector<std::uint64_t> numbers(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        numbers[i] = i * 2654435761U;
    }
    const std::vector<ListRow> before = rows(numbers);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(1));
    const std::vector<ListRow> after = rows(numbers);
    const ListDifference difference = differenceBetween(before, after);
    EXPECT_GT(difference.moves.size(), count / 2);
    EXPECT_THAT(difference.deletions, IsEmpty());
    EXPECT_THAT(difference.insertions, IsEmpty());
}

TEST(ListDifference, onlyRowsThatDifferAreLookedAtMoreThanOnce) {
    std::vector<std::uint64_t> numbers(1000);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = i;
    }
    const std::vector<ListRow> before = rows(numbers);
    numbers.erase(numbers.begin() + 500);
    const std::vector<ListRow> after = rows(numbers);
    std::size_t looks = 0;
    const auto counted = [&looks](const std::vector<ListRow>& list) {
        return ListRows{list.size(), [&](std::size_t place) {
                            ++looks;
                            return list[place];
                        }};
    };
    EXPECT_THAT(differenceBetween(counted(before), counted(after)).deletions,
                ElementsAre(Range{500, 1}));
    EXPECT_LE(looks, 2010U);
}

// Rows of things

class ListRowTest : public testing::Test {
  protected:
    MediaLibraryFixture library;
};

TEST_F(ListRowTest, aSongIsTheSameAfterTheLibraryWasReadAgain) {
    library.publish({{.title = "One", .persistentID = 5}});
    const MPMediaItem before = library.song("One");
    library.publish({{.title = "Zero", .persistentID = 4}, {.title = "One", .persistentID = 5}});
    const MPMediaItem after = library.song("One");
    EXPECT_NE(before, after);
    EXPECT_EQ(listRowOf(before, "One"), listRowOf(after, "One"));
    EXPECT_NE(listRowOf(before, "One").content, listRowOf(after, "Won").content);
    EXPECT_TRUE(listRowOf(before, "One").isSameAs(listRowOf(after, "Won")));
    EXPECT_FALSE(listRowOf(before, "").isSameAs(listRowOf(library.song("Zero"), "")));
    EXPECT_FALSE(listRowOf(before, "").isSameAs(listRowOf(MPMediaItemCollection({before}), "")));
}

TEST_F(ListRowTest, itemsOfAListAreToldApartByTypeAndValue) {
    const std::vector<Value> items{Value(),
                                   Value("StatSection"),
                                   Value("Other"),
                                   Value(ObjectReference{7}),
                                   Value(ObjectReference{8}),
                                   Value(NSDate::dateWithTimeIntervalSinceReferenceDate(7)),
                                   Value(NSDate::dateWithTimeIntervalSinceReferenceDate(8))};
    std::set<std::pair<std::uint64_t, std::uint64_t>> identities;
    for (const Value& item : items) {
        identities.emplace(listRowOf(item).kind, listRowOf(item).number);
        EXPECT_EQ(listRowOf(item), listRowOf(Value(item)));
    }
    EXPECT_EQ(identities.size(), items.size());
}

}  // namespace
}  // namespace tavrion
