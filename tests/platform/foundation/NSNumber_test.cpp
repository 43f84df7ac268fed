#include "platform/foundation/NSNumber.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace tavrion {
namespace {

struct Row {
    double number;
    const char* text;
};

TEST(NSNumber, theTextOfADoubleHasSixteenDigits) {
    const Row rows[] = {
        {215.96, "215.96"},
        {0.1 + 0.2, "0.3"},
        {1e21, "1e+21"},
        {8.8, "8.800000000000001"},
        {0.07, "0.07000000000000001"},
        {1.0 / 3, "0.3333333333333333"},
        {2.675, "2.675"},
        {179.99, "179.99"},
        {1.7976931348623157e308, "1.797693134862316e+308"},
        {3.0, "3"},
        {100.0, "100"},
        {1e15, "1000000000000000"},
        {1e16, "1e+16"},
        {123456789012345680.0, "1.234567890123457e+17"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {-0.0, "-0"},
        {5e-324, "4.940656458412465e-324"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {std::nan(""), "nan"},
        {-std::nan(""), "nan"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(NSNumber::stringValue(row.number), row.text);
    }
}

TEST(NSNumber, aWholeNumberHasAllItsDigits) {
    EXPECT_EQ(NSNumber::stringValue(0), "0");
    EXPECT_EQ(NSNumber::stringValue(-7), "-7");
    EXPECT_EQ(NSNumber::stringValue(1999U), "1999");
    EXPECT_EQ(NSNumber::stringValue(std::numeric_limits<std::uint64_t>::max()),
              "18446744073709551615");
}

}  // namespace
}  // namespace tavrion
