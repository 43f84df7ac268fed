#include "platform/coredata/SortedIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "platform/coredata/IndexKeys.h"

namespace tavrion {
namespace {

using Entry = SortedIndex::Entry;

std::vector<Entry> entriesOf(const SortedIndex& index, std::uint64_t low, std::uint64_t high) {
    std::vector<Entry> found;
    index.forEachBetween(low, high, [&](std::uint64_t key, RecordCounter record) {
        found.push_back({key, record});
    });
    return found;
}

TEST(SortedIndexTest, manyEntriesInAnyOrderComeOutSorted) {
    std::mt19937_64 random(3);
    std::set<Entry> plain;
    std::vector<Entry> entries;
    for (RecordCounter record = 20000; record > 0; --record) {
        // Every third key occurs many times, with its records in falling order.
        const std::uint64_t key = record % 3 == 0 ? random() % 5 : random();
        entries.push_back({key, record});
        plain.insert(entries.back());
    }
    const auto index = SortedIndex::build(entries);
    EXPECT_EQ(entriesOf(*index, 0, std::numeric_limits<std::uint64_t>::max()),
              std::vector<Entry>(plain.begin(), plain.end()));
}

TEST(SortedIndexTest, agreesWithAPlainSetThroughManyChanges) {
    std::mt19937 random(7);
    std::set<Entry> plain;
    auto index = SortedIndex::build({});
    RecordCounter next = 1;
    for (const unsigned added : {5000U, 1U, 3000U, 0U, 20000U, 10U, 4000U}) {
        std::vector<Entry> removing;
        for (const Entry& entry : plain) {
            if (random() % 3 == 0) {
                removing.push_back(entry);
            }
        }
        std::vector<Entry> adding;
        for (unsigned i = 0; i < added; ++i) {
            adding.push_back({random() % 2000, next++});
        }
        for (const Entry& entry : removing) {
            plain.erase(entry);
        }
        plain.insert(adding.begin(), adding.end());
        removing.push_back({5, 999999});
        index = index->changed(removing, adding);
        ASSERT_EQ(index->size(), plain.size());
        ASSERT_EQ(entriesOf(*index, 0, ~0ULL), std::vector<Entry>(plain.begin(), plain.end()));
        for (int i = 0; i < 50; ++i) {
            const std::uint64_t low = random() % 2100;
            const std::uint64_t high = random() % 2100;
            const std::vector<Entry> expected(
                plain.lower_bound({low, 0}),
                low > high ? plain.lower_bound({low, 0}) : plain.lower_bound({high + 1, 0}));
            ASSERT_EQ(entriesOf(*index, low, high), expected);
            ASSERT_EQ(index->countBetween(low, high), expected.size());
        }
    }
}

/// What a walk over all entries should say, from a plain set.
std::vector<std::pair<RecordCounter, bool>> sharingOf(const std::set<Entry>& plain) {
    std::map<std::uint64_t, int> counts;
    for (const Entry& entry : plain) {
        ++counts[entry.key];
    }
    std::vector<std::pair<RecordCounter, bool>> expected;
    for (const Entry& entry : plain) {
        expected.emplace_back(entry.record, counts[entry.key] > 1);
    }
    return expected;
}

TEST(SortedIndexTest, fewNewEntriesBesideManyAreFoundInOrder) {
    std::mt19937 random(9);
    std::set<Entry> plain;
    RecordCounter next = 1;
    const auto anyEntries = [&](std::size_t count) {
        std::vector<Entry> entries;
        while (entries.size() < count) {
            entries.push_back({random() % 60000, next++});
        }
        plain.insert(entries.begin(), entries.end());
        return entries;
    };
    auto index = SortedIndex::build(anyEntries(50000));
    for (const std::size_t added : {1000U, 1U, 3000U, 0U, 2500U, 4000U, 10U, 9000U, 20U}) {
        std::vector<Entry> removing;
        std::copy_if(plain.begin(), plain.end(), std::back_inserter(removing),
                     [&](const Entry&) { return random() % 500 == 0; });
        // Of old ones and of those that came last.
        removing.push_back(
            *std::max_element(plain.begin(), plain.end(),
                              [](const Entry& a, const Entry& b) { return a.record < b.record; }));
        for (const Entry& entry : removing) {
            plain.erase(entry);
        }
        const auto before = index;
        index = index->changed(removing, anyEntries(added));
        ASSERT_EQ(index->size(), plain.size());
        ASSERT_EQ(entriesOf(*index, 0, ~0ULL), std::vector<Entry>(plain.begin(), plain.end()));
        std::vector<std::pair<RecordCounter, bool>> sharing;
        index->forEachEntry(
            [&](RecordCounter record, bool isShared) { sharing.emplace_back(record, isShared); });
        ASSERT_EQ(sharing, sharingOf(plain));
        for (int i = 0; i < 300; ++i) {
            const std::uint64_t low = random() % 61000;
            const std::uint64_t high = low + random() % (i < 200 ? 3 : 20000);
            const std::vector<Entry> expected(plain.lower_bound({low, 0}),
                                              plain.lower_bound({high + 1, 0}));
            ASSERT_EQ(entriesOf(*index, low, high), expected);
            ASSERT_EQ(index->countBetween(low, high), expected.size());
        }
    }
}

TEST(SortedIndexTest, sharedKeysAreThoseOfTwoEntriesOrMore) {
    const auto index = SortedIndex::build({{1, 4}, {2, 3}, {2, 9}, {3, 1}, {5, 5}, {5, 6}, {5, 7}});
    std::vector<std::pair<RecordCounter, bool>> sharing;
    index->forEachEntry(
        [&](RecordCounter record, bool isShared) { sharing.emplace_back(record, isShared); });
    EXPECT_EQ(sharing,
              (std::vector<std::pair<RecordCounter, bool>>{
                  {4, false}, {3, true}, {9, true}, {1, false}, {5, true}, {6, true}, {7, true}}));
    SortedIndex().forEachEntry([](RecordCounter, bool) { FAIL() << "nothing is there"; });
}

TEST(SortedIndexTest, aKeyWithMoreEntriesThanALeafHolds) {
    std::vector<Entry> entries;
    for (RecordCounter record = 9000; record > 0; --record) {
        entries.push_back({record % 2, record});
    }
    const auto index = SortedIndex::build(entries);
    std::size_t seen = 0;
    RecordCounter last = 0;
    index->forEachEqual(1, [&](RecordCounter record) {
        EXPECT_GT(record, last);
        last = record;
        ++seen;
    });
    EXPECT_EQ(seen, 4500U);
    EXPECT_EQ(index->countBetween(1, 1), 4500U);
}

TEST(SortedIndexTest, anOlderVersionStaysAsItWas) {
    const auto before = SortedIndex::build({{1, 1}, {2, 2}});
    const auto after = before->changed({{1, 1}}, {{3, 3}});
    EXPECT_EQ(entriesOf(*before, 0, 9), (std::vector<Entry>{{1, 1}, {2, 2}}));
    EXPECT_EQ(entriesOf(*after, 0, 9), (std::vector<Entry>{{2, 2}, {3, 3}}));
}

TEST(IndexKeysTest, numbersKeepTheirOrderAndTheTwoZerosAreOne) {
    const std::vector<double> ascending{-1e300, -2, -1, -1e-300, 0, 1e-300, 1, 2, 1e300};
    for (std::size_t i = 1; i < ascending.size(); ++i) {
        EXPECT_LT(IndexKeys::ofNumber(ascending[i - 1]), IndexKeys::ofNumber(ascending[i]));
    }
    EXPECT_EQ(IndexKeys::ofNumber(-0.0), IndexKeys::ofNumber(0.0));
}

}  // namespace
}  // namespace tavrion
