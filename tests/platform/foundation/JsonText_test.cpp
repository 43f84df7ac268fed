#include "platform/foundation/JsonText.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavrion {
namespace {

std::string nested(std::size_t levels) {
    return std::string(levels, '[') + std::string(levels, ']');
}

TEST(JsonText, everyKindOfValueIsReadBack) {
    const Value::Dictionary all{{"flag", true},
                                {"hole", Value()},
                                {"number", 0.1},
                                {"whole", std::numeric_limits<std::int64_t>::min()},
                                {"text", "Für \"m\"\n"},
                                {"list", Value::Array{1, Value(), Value::Array{}, "x"}},
                                {"empty", Value::Dictionary{}}};
    EXPECT_EQ(JsonText::valueOf(JsonText::textOf(all, 2)), Value(all));
    EXPECT_EQ(JsonText::valueOf(" null "), Value());
    EXPECT_EQ(JsonText::valueOf("-0.0"), Value(-0.0));
    EXPECT_EQ(JsonText::valueOf("1.0"), Value(1.0));
    EXPECT_EQ(JsonText::valueOf("1"), Value(1));
    EXPECT_EQ(JsonText::valueOf("false"), Value(false));
}

TEST(JsonText, theTextHasALineForEachMember) {
    const Value value = Value::Dictionary{{"b", Value::Array{1, 2.0}}, {"a", "x"}};
    EXPECT_EQ(JsonText::textOf(value, 1), "{\n \"a\": \"x\",\n \"b\": [\n  1,\n  2.0\n ]\n}");
}

TEST(JsonText, whatJsonCannotHoldIsReplaced) {
    EXPECT_EQ(JsonText::textOf("a\xFFz", 0), "\"a\xEF\xBF\xBDz\"");
    EXPECT_EQ(JsonText::textOf(NSDate::distantPast(), 0), "null");
    EXPECT_EQ(JsonText::textOf(NSData{"x"}, 0), "null");
}

TEST(JsonText, whatIsNotJsonIsAbsent) {
    for (const char* text : {"", "{", "nul", "[1,]", "{\"a\":1}x", "1e999", "\"\xFF\"", "'a'"}) {
        EXPECT_EQ(JsonText::valueOf(text), std::nullopt) << text;
    }
}

TEST(JsonText, aTextThatIsTooDeepIsAbsent) {
    EXPECT_TRUE(JsonText::valueOf(nested(JsonText::deepestLevel)));
    EXPECT_FALSE(JsonText::valueOf(nested(JsonText::deepestLevel + 1)));
    EXPECT_FALSE(JsonText::valueOf("{\"a\":" + nested(JsonText::deepestLevel) + "}"));
    EXPECT_FALSE(JsonText::valueOf(nested(1'000'000)));
    EXPECT_TRUE(JsonText::valueOf("[1," + nested(JsonText::deepestLevel - 1) + "]"));
}

}  // namespace
}  // namespace tavrion
