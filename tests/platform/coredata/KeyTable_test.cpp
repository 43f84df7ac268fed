#include "platform/coredata/KeyTable.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace tavrion {
namespace {

TEST(KeyTableTest, anEmptyTableHasNoRecord) {
    KeyTable().forEachEqual(0, [](RecordCounter) { FAIL(); });
}

TEST(KeyTableTest, agreesWithAPlainMapWhileItGrows) {
    std::mt19937_64 random(5);
    KeyTable table;
    std::multimap<std::uint64_t, RecordCounter> plain;
    for (RecordCounter record = 1; record <= 3000; ++record) {
        const std::uint64_t key = random() % 2 == 0 ? random() % 50 : random();
        table.add(key, record);
        plain.emplace(key, record);
    }
    for (auto entry = plain.begin(); entry != plain.end();
         entry = plain.upper_bound(entry->first)) {
        std::multimap<std::uint64_t, RecordCounter> found;
        table.forEachEqual(entry->first,
                           [&](RecordCounter record) { found.emplace(entry->first, record); });
        ASSERT_EQ(found.size(), plain.count(entry->first));
        for (const auto& pair : found) {
            const auto [first, last] = plain.equal_range(pair.first);
            ASSERT_TRUE(std::any_of(first, last,
                                    [&](const auto& each) { return each.second == pair.second; }));
        }
    }
}

TEST(KeyTableTest, recordsOfOneKeyComeNewestFirst) {
    KeyTable table;
    for (RecordCounter record = 1; record <= 40; ++record) {
        table.add(9, record);
    }
    RecordCounter expected = 40;
    table.forEachEqual(9, [&](RecordCounter record) { EXPECT_EQ(record, expected--); });
    EXPECT_EQ(expected, 0U);
}

}  // namespace
}  // namespace tavrion
