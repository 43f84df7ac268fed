#include "platform/foundation/Value.h"

#include <gtest/gtest.h>

namespace tavrion {
namespace {

TEST(Value, keepsTheTypeItWasMadeOf) {
    const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(1);
    EXPECT_TRUE(Value().isAbsent());
    ASSERT_NE(Value(true).get<bool>(), nullptr);
    EXPECT_EQ(Value(true).get<std::int64_t>(), nullptr);
    EXPECT_EQ(Value(7), Value(std::int64_t{7}));
    EXPECT_NE(Value(7), Value(7.0));
    EXPECT_NE(Value(1), Value(true));
    const Value text("seven");
    ASSERT_NE(text.get<std::string>(), nullptr);
    EXPECT_EQ(*text.get<std::string>(), "seven");
    EXPECT_EQ(text.get<NSData>(), nullptr);
    EXPECT_NE(Value(NSData{"seven"}), text);
    EXPECT_NE(Value(date), Value(1.0));
    EXPECT_FALSE(Value("").isAbsent());
}

TEST(Value, countsAboveTheSignedRangeKeepTheirBits) {
    EXPECT_EQ(Value(~std::uint64_t{0}), Value(-1));
}

TEST(Value, anEmptyOptionalIsAbsent) {
    EXPECT_TRUE(Value(std::optional<std::string>()).isAbsent());
    EXPECT_EQ(Value(std::optional<std::string>("seven")), Value("seven"));
    EXPECT_EQ(Value(std::optional<NSDate>(NSDate())), Value(NSDate()));
}

TEST(Value, listsAreEqualMemberByMember) {
    const Value nested = Value::Dictionary{{"a", Value::Array{1, "b"}}};
    EXPECT_EQ(nested, Value(Value::Dictionary{{"a", Value::Array{1, "b"}}}));
    EXPECT_NE(nested, Value(Value::Dictionary{{"a", Value::Array{1, "c"}}}));
}

}  // namespace
}  // namespace tavrion
