#include "library/SortedEntities.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/foundation/NSCalendar.h"

namespace tavrion {
namespace {

using SortedEntities::Key;
using SortedEntities::keyOf;
using Places = std::vector<std::uint32_t>;

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

TEST(SortedEntities, aKeyIsOrderedAsItsNumber) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double numbers[] = {-infinity, -1e300, -2.5, -1e-300, 0, 1e-300, 1, 2.5, 1e300, infinity};
    for (std::size_t i = 1; i < std::size(numbers); ++i) {
        EXPECT_LT(keyOf(numbers[i - 1]), keyOf(numbers[i])) << numbers[i];
    }
    EXPECT_EQ(keyOf(-0.0), keyOf(0.0));
    EXPECT_LT(keyOf(std::uint64_t{1} << 62U), keyOf(~std::uint64_t{0}));
}

TEST(SortedEntities, anAbsentDateIsSmallerThanAnyDate) {
    const std::optional<NSDate> absent;
    EXPECT_LT(keyOf(absent), keyOf(std::optional(at(-std::numeric_limits<double>::infinity()))));
    EXPECT_LT(keyOf(absent), keyOf(std::optional(NSDate::distantPast())));
    EXPECT_LT(keyOf(std::optional(at(-1))), keyOf(std::optional(at(0))));
}

TEST(SortedEntities, equalKeysKeepTheirPlacesInBothDirections) {
    const std::vector<Key> keys{5, 7, 5, 0, 7, 5};
    EXPECT_EQ(SortedEntities::order(keys, true), (Places{3, 0, 2, 5, 1, 4}));
    EXPECT_EQ(SortedEntities::order(keys, false), (Places{1, 4, 0, 2, 5, 3}));
    EXPECT_TRUE(SortedEntities::order({}, true).empty());
}

TEST(SortedEntities, namesAreOrderedAsAPersonWouldOrderThem) {
    Regional region(NSTimeZone(), "en_US");
    const Port<Regional>::Plug plug(region);
    const std::vector<std::optional<std::string>> names{"zebra",     "10", std::nullopt, "Apple",
                                                        "\"apple\"", "9",  "Apple!"};
    EXPECT_EQ(SortedEntities::alphabeticalOrder(names, true), (Places{4, 3, 6, 0, 2, 5, 1}));
    EXPECT_EQ(SortedEntities::alphabeticalOrder(names, false), (Places{1, 5, 2, 0, 3, 6, 4}));
}

}  // namespace
}  // namespace tavrion
