#include "platform/foundation/PropertyListKeys.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/foundation/PropertyList.h"

namespace tavrion {
namespace {

using namespace std::string_literals;

/// The list with every place of `shown` in it overwritten; both are of one length.
std::string replaced(std::string bytes, const std::string& shown, const std::string& by) {
    std::size_t at = bytes.find(shown);
    EXPECT_NE(at, std::string::npos);
    for (; at != std::string::npos; at = bytes.find(shown, at + 1)) {
        bytes.replace(at, shown.size(), by);
    }
    return bytes;
}

std::string listWith(const std::string& key) {
    return PropertyList::binaryOf({{key, Value(1)}});
}

void expectRefused(const std::string& bytes) {
    EXPECT_TRUE(PropertyList::hasKeyWithNul(bytes));
    const auto read = PropertyList::dictionaryOf(bytes);
    ASSERT_FALSE(read.ok());
    EXPECT_EQ(read.error().localizedDescription, "it has a key with the character NUL in it");
}

TEST(PropertyListKeys, aKeyWithNulIsFoundInABinaryList) {
    expectRefused(replaced(listWith("a?b"), "a?b", "a\0b"s));
}

TEST(PropertyListKeys, soItIsInAWideAndInALongKey) {
    expectRefused(replaced(listWith("ä?b"), "\0?"s, "\0\0"s));
    const std::string longKey(40, '?');
    expectRefused(replaced(listWith(longKey), "??", "?\0"s));
    const std::string veryLongKey(70000, '?');
    expectRefused(replaced(listWith(veryLongKey), "?????", "????\0"s));
}

TEST(PropertyListKeys, soItIsInALowerDictionaryAndAmongManyKeys) {
    Value::Dictionary many;
    for (int i = 0; i < 300; ++i) {
        many["key " + std::to_string(i)] = Value(i);
    }
    many["last?"] = Value(1);
    const std::string bytes = PropertyList::binaryOf(
        {{"list", Value(Value::Array{Value(Value::Dictionary{{"deep", Value(many)}})})}});
    EXPECT_FALSE(PropertyList::hasKeyWithNul(bytes));
    expectRefused(replaced(bytes, "last?", "last\0"s));
}

TEST(PropertyListKeys, aValueMayHoldIt) {
    const std::string bytes =
        replaced(PropertyList::binaryOf({{"key", Value("a?b")}}), "a?b", "a\0b"s);
    EXPECT_FALSE(PropertyList::hasKeyWithNul(bytes));
    EXPECT_TRUE(PropertyList::dictionaryOf(bytes).ok());
}

TEST(PropertyListKeys, xmlMayNotHoldItAtAll) {
    const auto xml = [](const std::string& key) {
        return "<plist version=\"1.0\"><dict><key>" + key + "</key><true/></dict></plist>";
    };
    for (const std::string& key : {"a\0b"s, "a&#0;b"s, "a&#000;b"s, "a&#x0;b"s, "a&#X00;b"s}) {
        EXPECT_TRUE(PropertyList::hasKeyWithNul(xml(key))) << key;
        EXPECT_FALSE(PropertyList::dictionaryOf(xml(key)).ok()) << key;
    }
    for (const std::string& key : {"a&#48;b"s, "a&#x30;b"s, "&#"s, "&#x;"s, "&#;"s, "&#0"s}) {
        EXPECT_FALSE(PropertyList::hasKeyWithNul(xml(key))) << key;
    }
}

TEST(PropertyListKeys, whateverPointsOutOfTheListIsNoKey) {
    const std::string bytes = listWith("a?b");
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(PropertyList::hasKeyWithNul(bytes.substr(0, length)));
    }
    for (std::size_t at = 8; at < bytes.size(); ++at) {
        std::string changed = bytes;
        changed[at] = '\xff';
        PropertyList::dictionaryOf(changed).ignore();
    }
}

}  // namespace
}  // namespace tavrion
