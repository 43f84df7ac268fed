#include "platform/foundation/SearchFolding.h"

#include <gtest/gtest.h>

#include "platform/foundation/NSCalendar.h"

namespace tavrion {
namespace {

bool finds(const char* haystack, const char* needle, const char* locale = "en_US") {
    Regional region(NSTimeZone(), locale);
    const Port<Regional>::Plug plug(region);
    return localizedStandardContainsString(haystack, needle);
}

TEST(SearchFolding, ignoresCaseAndAccents) {
    EXPECT_TRUE(finds("Renée", "renee"));
    EXPECT_TRUE(finds("Renee", "é"));
    EXPECT_TRUE(finds("Señor Ramón", "RAMON"));
    EXPECT_TRUE(finds("Göteborg", "gote"));
    EXPECT_TRUE(finds("Ёлка", "елка"));
    EXPECT_TRUE(finds("cafe\u0301", "café"));
    EXPECT_TRUE(finds("كِتاب", "كتاب"));
    EXPECT_FALSE(finds("Renée", "rene e"));
}

TEST(SearchFolding, unfoldsLettersThatStandForSeveral) {
    EXPECT_TRUE(finds("Straße", "strasse"));
    EXPECT_TRUE(finds("Strasse", "ß"));
    EXPECT_TRUE(finds("ﬁnal", "final"));
}

TEST(SearchFolding, keepsLettersThatAreLettersOfTheirOwn) {
    EXPECT_FALSE(finds("Smørrebrød", "smor"));
    EXPECT_FALSE(finds("Æther", "aether"));
    EXPECT_FALSE(finds("Łódź", "lodz"));
    EXPECT_FALSE(finds("ＡＢＣ", "abc"));
    EXPECT_FALSE(finds("がく", "かく"));
    EXPECT_FALSE(finds("カ", "か"));
}

TEST(SearchFolding, takesPunctuationAsItStands) {
    EXPECT_FALSE(finds("Don’t", "don't"));
    EXPECT_FALSE(finds("N/A", "na"));
    EXPECT_TRUE(finds("N/A", "n/a"));
}

TEST(SearchFolding, followsTheLocaleForTheDottedI) {
    EXPECT_TRUE(finds("İstanbul", "istanbul", "tr_TR"));
    EXPECT_TRUE(finds("İstanbul", "istanbul"));
    EXPECT_FALSE(finds("ISTANBUL", "istanbul", "tr_TR"));
    EXPECT_TRUE(finds("ISTANBUL", "istanbul"));
    EXPECT_TRUE(finds("ılık", "ILIK", "tr_TR"));
    EXPECT_FALSE(finds("ılık", "ILIK"));
}

TEST(SearchFolding, findsNothingForAnEmptyNeedle) {
    EXPECT_FALSE(finds("abc", ""));
    EXPECT_FALSE(finds("", ""));
    EXPECT_FALSE(finds("", "a"));
}

TEST(SearchFolding, survivesBrokenText) {
    EXPECT_TRUE(
        finds("\xff"
              "abc",
              "ABC"));
    EXPECT_FALSE(finds("abc\xc3", "z"));
}

TEST(SearchFolding, foldsPlainTextWithoutChangingOtherCharacters) {
    Regional region(NSTimeZone(), "en_US");
    const Port<Regional>::Plug plug(region);
    EXPECT_EQ(foldedForSearch("AZ az 09 [@]"), "az az 09 [@]");
    EXPECT_EQ(foldedForSearch(""), "");
}

bool findsCaseless(const char* haystack, const char* needle, const char* locale = "en_US") {
    Regional region(NSTimeZone(), locale);
    const Port<Regional>::Plug plug(region);
    return localizedCaseInsensitiveContainsString(haystack, needle);
}

TEST(SearchFolding, withoutCaseAloneAccentsCount) {
    for (const auto& [haystack, needle] : {std::pair("Renée", "renee"),
                                           {"Renee", "é"},
                                           {"Señor Ramón", "RAMON"},
                                           {"Göteborg", "gote"},
                                           {"Smørrebrød", "smor"},
                                           {"Æther", "aether"},
                                           {"Łódź", "lodz"},
                                           {"ＡＢＣ", "abc"},
                                           {"がく", "かく"},
                                           {"カ", "か"},
                                           {"Don’t", "don't"},
                                           {"N/A", "na"},
                                           {"كِتاب", "كتاب"},
                                           {"Ёлка", "елка"},
                                           {"İstanbul", "istanbul"},
                                           {"abc", ""},
                                           {"", ""}}) {
        EXPECT_FALSE(findsCaseless(haystack, needle)) << haystack << " " << needle;
    }
}

TEST(SearchFolding, withoutCaseAloneEqualLettersAreFound) {
    for (const auto& [haystack, needle] : {std::pair("Straße", "strasse"),
                                           {"Strasse", "ß"},
                                           {"ﬁnal", "final"},
                                           {"N/A", "n/a"},
                                           {"cafe\u0301", "café"},
                                           {"CAFÉ noir", "cafe\u0301"},
                                           {"Renée", "RENÉE"},
                                           {"Ёлка", "ёЛ"}}) {
        EXPECT_TRUE(findsCaseless(haystack, needle)) << haystack << " " << needle;
    }
    EXPECT_TRUE(findsCaseless("İstanbul", "istanbul", "tr_TR"));
    EXPECT_FALSE(findsCaseless("ISTANBUL", "istanbul", "tr_TR"));
    EXPECT_TRUE(findsCaseless("ılık", "ILIK", "tr_TR"));
}

TEST(SearchFolding, withoutCaseAloneAHitDoesNotEndInsideOfALetter) {
    EXPECT_FALSE(findsCaseless("café", "cafe"));
    EXPECT_TRUE(findsCaseless("café cafe", "cafe"));
    EXPECT_TRUE(findsCaseless("café", "caf"));
}

}  // namespace
}  // namespace tavrion
