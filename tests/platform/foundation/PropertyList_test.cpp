#include "platform/foundation/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace tavrion {
namespace {

using ::testing::HasSubstr;

Value valueAfterRoundTrip(const Value& value) {
    const auto read = PropertyList::dictionaryOf(PropertyList::binaryOf({{"key", value}}));
    EXPECT_TRUE(read.ok());
    return read.value().at("key");
}

std::string xmlList(const std::string& content) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + content + "</plist>";
}

/// What stands under "key" in an XML list with that value.
Value valueOfXml(const std::string& value) {
    const auto read =
        PropertyList::dictionaryOf(xmlList("<dict><key>key</key>" + value + "</dict>"));
    EXPECT_TRUE(read.ok()) << value;
    return read.ok() ? read.value().at("key") : Value();
}

std::string errorOf(const std::string& data) {
    const auto read = PropertyList::dictionaryOf(data);
    return read.ok() ? "" : read.error().localizedDescription;
}

/// The binary list of a dictionary with this node of the library under "key".
std::string listWithNode(plist_t node) {
    plist_t top = plist_new_dict();
    plist_dict_set_item(top, "key", node);
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(top, &bytes, &length);
    std::string list(bytes, length);
    plist_to_bin_free(bytes);
    plist_free(top);
    return list;
}

NSDate dateAt(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

class RoundTrip : public ::testing::TestWithParam<Value> {};

TEST_P(RoundTrip, givesTheSameValueOfTheSameType) {
    EXPECT_EQ(valueAfterRoundTrip(GetParam()), GetParam());
}

using Integers = std::numeric_limits<std::int64_t>;
using Reals = std::numeric_limits<double>;

INSTANTIATE_TEST_SUITE_P(Scalars, RoundTrip,
                         ::testing::Values(Value(true), Value(false), Value(0), Value(1), Value(-1),
                                           Value(-5), Value(127), Value(128), Value(-128),
                                           Value(65536), Value(std::int64_t{-2147483649}),
                                           Value(Integers::max()), Value(Integers::min()),
                                           Value(0.5), Value(-0.1), Value(1e-300),
                                           Value(Reals::max()), Value(Reals::denorm_min()),
                                           Value(Reals::infinity()), Value(-Reals::infinity())));

INSTANTIATE_TEST_SUITE_P(Instants, RoundTrip,
                         ::testing::Values(Value(dateAt(794059200.1234567)), Value(dateAt(0)),
                                           Value(dateAt(-0.25)), Value(dateAt(-63114076800.5)),
                                           Value(NSDate::distantFuture())));

INSTANTIATE_TEST_SUITE_P(Texts, RoundTrip,
                         ::testing::Values(Value(""), Value("plain"), Value("Señor Ramón"),
                                           Value("日本"), Value("😀 and 🎵"),
                                           Value("<a href=\"x\">&amp;</a>"),
                                           Value("line\nand\ttab"), Value(std::string(5000, 'x')),
                                           Value(NSData{""}),
                                           Value(NSData{std::string("\0\xFF\x80 z\0", 6)}),
                                           Value(NSData{std::string(70000, '\0')})));

INSTANTIATE_TEST_SUITE_P(
    Containers, RoundTrip,
    ::testing::Values(
        Value(Value::Array{}), Value(Value::Dictionary{}),
        Value(Value::Array{Value(1), Value("two"), Value(3.5), Value(dateAt(4.25)), Value(true)}),
        Value(Value::Array{Value(Value::Array{Value(Value::Array{})})}),
        Value(Value::Dictionary{{"", Value("the empty key")},
                                {"Größe 😀", Value(Value::Dictionary{{"in", Value(-7)}})}}),
        Value(Value::Dictionary{{"NS.time", Value(1)}}),
        Value(Value::Dictionary{{"NS.time", Value(1.5)}, {"more", Value(2)}})));

TEST(PropertyList, keepsTheSignOfZeroAndANumberThatIsNone) {
    EXPECT_TRUE(std::signbit(*valueAfterRoundTrip(Value(-0.0)).get<double>()));
    EXPECT_TRUE(std::isnan(*valueAfterRoundTrip(Value(std::nan(""))).get<double>()));
}

TEST(PropertyList, keepsTheBitsOfACountAboveTheSignedRange) {
    const std::uint64_t count = 18446744073709551610u;
    EXPECT_EQ(valueAfterRoundTrip(Value(count)), Value(count));
}

TEST(PropertyList, writesTheBinaryForm) {
    EXPECT_EQ(PropertyList::binaryOf({}).substr(0, 8), "bplist00");
}

TEST(PropertyList, writesEqualDictionariesAsEqualBytes) {
    const Value::Dictionary values{{"b", Value(dateAt(1.5))}, {"a", Value(Value::Array{Value(1)})}};
    EXPECT_EQ(PropertyList::binaryOf(values), PropertyList::binaryOf(Value::Dictionary(values)));
}

TEST(PropertyList, readsTheXmlForm) {
    EXPECT_EQ(valueOfXml("<true/>"), Value(true));
    EXPECT_EQ(valueOfXml("<integer>-5</integer>"), Value(-5));
    EXPECT_EQ(valueOfXml("<real>794059200.5</real>"), Value(794059200.5));
    EXPECT_EQ(valueOfXml("<string>a &lt; ü</string>"), Value("a < ü"));
    EXPECT_EQ(valueOfXml("<data>AP+A</data>"), Value(NSData{std::string("\0\xFF\x80", 3)}));
    EXPECT_EQ(valueOfXml("<array><integer>1</integer><string/></array>"),
              Value(Value::Array{Value(1), Value("")}));
    EXPECT_EQ(valueOfXml("<dict><key>NS.time</key><real>0.25</real></dict>"), Value(dateAt(0.25)));
}

TEST(PropertyList, readsPlainDatesOfOtherPrograms) {
    EXPECT_EQ(valueOfXml("<date>2026-03-01T12:00:00Z</date>"), Value(dateAt(794059200)));
    const auto read = PropertyList::dictionaryOf(listWithNode(plist_new_date(794059200, 250000)));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.value().at("key"), Value(dateAt(794059200.25)));
    const auto before = PropertyList::dictionaryOf(listWithNode(plist_new_date(-5, 250000)));
    ASSERT_TRUE(before.ok());
    EXPECT_EQ(before.value().at("key"), Value(dateAt(-4.75)));
}

TEST(PropertyList, readsPlainDatesBeyondTheSecondsThatFit32Bits) {
    EXPECT_EQ(valueOfXml("<date>2100-01-01T00:00:00Z</date>"),
              Value(*dateFromIsoText("2100-01-01T00:00:00Z")));
    EXPECT_EQ(valueOfXml("<date>1900-01-01T00:00:00Z</date>"),
              Value(*dateFromIsoText("1900-01-01T00:00:00Z")));
}

TEST(PropertyList, aDictionaryAtTheTopIsNeverAnInstant) {
    const Value::Dictionary values{{"NS.time", Value(1.5)}};
    EXPECT_EQ(PropertyList::dictionaryOf(PropertyList::binaryOf(values)).value(), values);
}

TEST(PropertyList, refusesWhatIsNoListWithADictionaryAtTheTop) {
    const std::string good = PropertyList::binaryOf({{"key", Value("a value")}});
    for (const std::string& data :
         {std::string(), std::string("x"), std::string("bplist00"), good.substr(0, good.size() / 2),
          good.substr(0, good.size() - 1), std::string(100, '\0'), std::string("{ key = value; }"),
          xmlList("<array/>"), xmlList("<string>text</string>"), xmlList("<dict>")}) {
        EXPECT_THAT(errorOf(data), HasSubstr("not a property list with a dictionary at its top"))
            << data;
    }
}

TEST(PropertyList, refusesATypeThatItCouldNotWriteBack) {
    EXPECT_THAT(errorOf(listWithNode(plist_new_uid(1))),
                HasSubstr("a type that defaults cannot hold"));
}

TEST(PropertyList, refusesListsThatWouldUseUpTheStack) {
    std::string deep;
    std::string end;
    for (int i = 0; i < 2000; ++i) {
        deep += "<array>";
        end += "</array>";
    }
    deep += end;
    EXPECT_THAT(errorOf(xmlList("<dict><key>key</key>" + deep + "</dict>")), HasSubstr("too deep"));
}

TEST(PropertyList, storableTextIsUtf8WithoutZeroBytes) {
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(PropertyList::storableText("plain"), "plain");
    EXPECT_EQ(PropertyList::storableText("Größe 😀"), "Größe 😀");
    EXPECT_EQ(PropertyList::storableText("a\xFFz"), "a" + replacement + "z");
    EXPECT_EQ(PropertyList::storableText(std::string_view("a\0z", 3)), "a" + replacement + "z");
    EXPECT_EQ(PropertyList::storableText("\xF0\x9F"), replacement);
}

TEST(PropertyList, storableValueReachesInsideContainers) {
    const Value inside(
        Value::Dictionary{{"a\xFF", Value(Value::Array{Value("\xFF")})}, {"gone", Value()}});
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(
        PropertyList::storableValue(inside),
        Value(Value::Dictionary{{"a" + replacement, Value(Value::Array{Value(replacement)})}}));
}

TEST(PropertyListDeathTest, aReferenceIsNeverStored) {
    EXPECT_DEATH(PropertyList::storableValue(Value(Value::Array{Value(ObjectReference{7})})),
                 "reference");
    EXPECT_DEATH(PropertyList::storableValue(Value(Value::Array{Value()})), "absent member");
}

}  // namespace
}  // namespace tavrion
