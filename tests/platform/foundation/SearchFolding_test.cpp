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

TEST(SearchFolding, IgnoresCaseAndAccents) {
    EXPECT_TRUE(finds("Renée", "renee"));
    EXPECT_TRUE(finds("Renee", "é"));
    EXPECT_TRUE(finds("Señor Ramón", "RAMON"));
    EXPECT_TRUE(finds("Göteborg", "gote"));
    EXPECT_TRUE(finds("Ёлка", "елка"));
    EXPECT_TRUE(finds("cafe\u0301", "café"));
    EXPECT_TRUE(finds("كِتاب", "كتاب"));
    EXPECT_FALSE(finds("Renée", "rene e"));
}

TEST(SearchFolding, UnfoldsLettersThatStandForSeveral) {
    EXPECT_TRUE(finds("Straße", "strasse"));
    EXPECT_TRUE(finds("Strasse", "ß"));
    EXPECT_TRUE(finds("ﬁnal", "final"));
}

TEST(SearchFolding, KeepsLettersThatAreLettersOfTheirOwn) {
    EXPECT_FALSE(finds("Smørrebrød", "smor"));
    EXPECT_FALSE(finds("Æther", "aether"));
    EXPECT_FALSE(finds("Łódź", "lodz"));
    EXPECT_FALSE(finds("ＡＢＣ", "abc"));
    EXPECT_FALSE(finds("がく", "かく"));
    EXPECT_FALSE(finds("カ", "か"));
}

TEST(SearchFolding, TakesPunctuationAsItStands) {
    EXPECT_FALSE(finds("Don’t", "don't"));
    EXPECT_FALSE(finds("N/A", "na"));
    EXPECT_TRUE(finds("N/A", "n/a"));
}

TEST(SearchFolding, FollowsTheLocaleForTheDottedI) {
    EXPECT_TRUE(finds("İstanbul", "istanbul", "tr_TR"));
    EXPECT_TRUE(finds("İstanbul", "istanbul"));
    EXPECT_FALSE(finds("ISTANBUL", "istanbul", "tr_TR"));
    EXPECT_TRUE(finds("ISTANBUL", "istanbul"));
    EXPECT_TRUE(finds("ılık", "ILIK", "tr_TR"));
    EXPECT_FALSE(finds("ılık", "ILIK"));
}

TEST(SearchFolding, FindsNothingForAnEmptyNeedle) {
    EXPECT_FALSE(finds("abc", ""));
    EXPECT_FALSE(finds("", ""));
    EXPECT_FALSE(finds("", "a"));
}

TEST(SearchFolding, SurvivesBrokenText) {
    EXPECT_TRUE(
        finds("\xff"
              "abc",
              "ABC"));
    EXPECT_FALSE(finds("abc\xc3", "z"));
}

TEST(SearchFolding, FoldsPlainTextWithoutChangingOtherCharacters) {
    Regional region(NSTimeZone(), "en_US");
    const Port<Regional>::Plug plug(region);
    EXPECT_EQ(foldedForSearch("AZ az 09 [@]"), "az az 09 [@]");
    EXPECT_EQ(foldedForSearch(""), "");
}

}  // namespace
}  // namespace tavrion
