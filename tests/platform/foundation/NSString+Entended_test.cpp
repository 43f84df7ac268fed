#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSString+Entended.h"

namespace tavrion {
namespace {

/// Plugs a locale and keeps it for the life of the scope.
class InLocale {
  public:
    explicit InLocale(const char* name) : region_(NSTimeZone(), name), plug_(region_) {}

  private:
    Regional region_;
    Port<Regional>::Plug plug_;
};

struct Row {
    const char* a;
    const char* b;
    /// '<' or '>'.
    char relation;
};

char relationOf(NSComparisonResult result) {
    if (result == NSComparisonResult::same) {
        return '=';
    }
    return result == NSComparisonResult::ascending ? '<' : '>';
}

char opposite(char relation) {
    if (relation == '=') {
        return '=';
    }
    return relation == '<' ? '>' : '<';
}

void expectOrder(const char* locale, const Row& row) {
    EXPECT_EQ(relationOf(localizedStandardCompare(row.a, row.b)), row.relation)
        << locale << ": " << row.a << " and " << row.b;
    EXPECT_EQ(relationOf(localizedStandardCompare(row.b, row.a)), opposite(row.relation))
        << locale << ": " << row.b << " and " << row.a;
    EXPECT_EQ(localizedStandardCompare(row.a, row.a), NSComparisonResult::same) << row.a;
}

const std::vector<Row> commonRows{
    {"file2", "file10", '<'},
    {"file2", "file02", '<'},
    {"001", "1", '>'},
    {"a1b2", "a01b1", '>'},
    {"a01b2", "a1b2", '>'},
    {"a1b02", "a01b2", '<'},
    {"file 2", "file2", '<'},
    {"Item 9", "item 10", '<'},
    {"apple", "Banana", '<'},
    {"a", "A", '<'},
    {"A", "b", '<'},
    {"The Hill", "the hill", '>'},
    {"resume", "r\xC3\xA9sum\xC3\xA9", '<'},
    {"R\xC3\xA9sum\xC3\xA9", "resumes", '<'},
    {"\xC3\xA4", "z", '<'},
    {"Stra\xC3\x9F"
     "e",
     "Strasse", '>'},
    {"co-op", "coop", '<'},
    {"_x", "a", '<'},
    {"#1", "1", '<'},
    {"'tis'", "tis", '<'},
    {"N/A", "NA", '<'},
    {"1", "a", '<'},
    {"-5", "-10", '<'},
    {"v1.2", "v1.10", '<'},
    {"\xC3\x98", "Oz", '<'},
    {"\xE6\x97\xA5\xE6\x9C\xAC", "\xE3\x82\xA2\xE3\x83\xA1\xE3\x83\xAA\xE3\x82\xAB", '>'},
    {"\xE3\x81\x82", "\xE3\x82\xA2", '<'},
    {"\xC3\xA9", "e\xCC\x81", '>'},
    {"", "a", '<'},
    {"\xF0\x9F\x98\x80", "a", '<'},
};

TEST(LocalizedStandardCompare, ordersAlikeInTheCommonLocales) {
    for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ar_EG"}) {
        const InLocale plugged(locale);
        for (const Row& row : commonRows) {
            expectOrder(locale, row);
        }
    }
}

TEST(LocalizedStandardCompare, followsTheLocaleWhereLocalesDiffer) {
    {
        const InLocale danish("da_DK");
        expectOrder("da_DK", {"a", "A", '>'});
        expectOrder("da_DK", {"The Hill", "the hill", '<'});
        expectOrder("da_DK", {"\xC3\xA4", "z", '>'});
        expectOrder("da_DK", {"\xC3\x98", "Oz", '>'});
    }
    {
        const InLocale swedish("sv_SE");
        expectOrder("sv_SE", {"\xC3\xA4", "z", '>'});
        expectOrder("sv_SE", {"\xC3\x98", "Oz", '>'});
    }
    const InLocale thai("th_TH");
    expectOrder("th_TH", {"co-op", "coop", '<'});
    expectOrder("th_TH", {"file 2", "file2", '<'});
}

TEST(LocalizedStandardCompare, anUnknownLocaleHasTheCommonOrder) {
    const InLocale unknown("xx_XX");
    expectOrder("xx_XX", {"file2", "file10", '<'});
}

char caselessRelation(const char* a, const char* b) {
    return relationOf(localizedCaseInsensitiveCompare(a, b));
}

TEST(LocalizedCaseInsensitiveCompare, takesTextsThatDifferInCaseForTheSame) {
    for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ar_EG"}) {
        const InLocale plugged(locale);
        EXPECT_EQ(caselessRelation("a", "A"), '=') << locale;
        EXPECT_EQ(caselessRelation("The Hill", "the hill"), '=') << locale;
        EXPECT_EQ(caselessRelation("ＡＢＣ", "ABC"), '=') << locale;
        EXPECT_EQ(caselessRelation("①", "1"), '=') << locale;
        EXPECT_EQ(caselessRelation("あ", "ア"), '=') << locale;
        EXPECT_EQ(caselessRelation("é", "e\u0301"), '=') << locale;
        EXPECT_EQ(caselessRelation("Straße", "Strasse"), '=') << locale;
        EXPECT_EQ(caselessRelation("ﬁ", "fi"), '=') << locale;
        EXPECT_EQ(caselessRelation("", ""), '=') << locale;
    }
}

TEST(LocalizedCaseInsensitiveCompare, digitsAreSignsAndAccentsAndPunctuationCount) {
    const InLocale plugged("en_US");
    EXPECT_EQ(caselessRelation("file2", "file10"), '>');
    EXPECT_EQ(caselessRelation("résumé", "resume"), '>');
    EXPECT_EQ(caselessRelation("co-op", "coop"), '<');
    EXPECT_EQ(caselessRelation("", "a"), '<');
}

TEST(CaselessHashes, textsThatCompareAsTheSameMayBeTheSame) {
    const std::vector<std::string_view> texts{
        "a",       "A", "ＡＢＣ", "abc", "①",       "1", "あ", "ア", "é",       "E\u0301", "Straße",
        "STRASSE", "ﬁ", "fi",     "İ",   "i\u0307", "ı", "I",  "i",  "a\u00AD", "",        "file2"};
    for (const char* locale : {"en_US", "tr_TR", "da_DK", "ja_JP"}) {
        const InLocale plugged(locale);
        const std::vector<CaselessHashes> hashes = caselessHashes(texts);
        for (std::size_t a = 0; a < texts.size(); ++a) {
            for (std::size_t b = 0; b < texts.size(); ++b) {
                const bool areSame =
                    localizedCaseInsensitiveCompare(texts[a], texts[b]) == NSComparisonResult::same;
                EXPECT_EQ(hashes[a].mayBeSame(hashes[b]), areSame)
                    << locale << ": " << texts[a] << ", " << texts[b];
            }
        }
    }
}

TEST(LocalizedStandardCompare, differentStringsAreNeverTheSame) {
    const InLocale plugged("en_US");
    expectOrder("en_US", {"\xEF\xBC\xA1", "A", '>'});
    expectOrder("en_US", {"\xFF", "\xFE", '>'});
    expectOrder("en_US", {"a\xE2\x80\x8D", "a", '>'});
}

TEST(LocalizedStandardCompare, severalThreadsAndLocalesAtOnce) {
    for (int round = 0; round < 3; ++round) {
        const InLocale plugged(round % 2 == 0 ? "sv_SE" : "en_US");
        const char expected = round % 2 == 0 ? '>' : '<';
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([expected] {
                for (int repeat = 0; repeat < 50; ++repeat) {
                    ASSERT_EQ(relationOf(localizedStandardCompare("\xC3\xA4", "z")), expected);
                    ASSERT_EQ(collationKeys({"\xC3\xA4"})[0] < collationKeys({"z"})[0],
                              expected == '<');
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
}

TEST(CollationKeys, haveTheOrderOfTheComparisonUpToItsTieBreaks) {
    for (const char* locale : {"en_US", "ja_JP", "da_DK"}) {
        const InLocale plugged(locale);
        std::vector<std::string_view> texts;
        for (const Row& row : commonRows) {
            texts.insert(texts.end(), {row.a, row.b});
        }
        const std::vector<std::string> keys = collationKeys(texts);
        ASSERT_EQ(keys.size(), texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            for (std::size_t j = 0; j < texts.size(); ++j) {
                if (keys[i] != keys[j]) {
                    EXPECT_EQ(keys[i] < keys[j], localizedStandardCompare(texts[i], texts[j]) ==
                                                     NSComparisonResult::ascending)
                        << locale << ": " << texts[i] << " and " << texts[j];
                }
            }
        }
    }
}

TEST(CollationKeys, leaveTheTieBreaksOut) {
    const InLocale plugged("en_US");
    const auto keys = collationKeys({"file2", "FILE02", "file3", "\xC3\xA9", "e\xCC\x81", "e"});
    EXPECT_EQ(keys[0], keys[1]);
    EXPECT_LT(keys[0], keys[2]);
    EXPECT_EQ(keys[3], keys[4]);
    EXPECT_LT(keys[5], keys[3]);
}

TEST(CollationKeys, anEmptyTextHasTheLeastKeyAndALongOneAWholeOne) {
    const InLocale plugged("en_US");
    const std::string longText(5000, 'x');
    const std::string longerText = longText + "a";
    const auto keys = collationKeys({longerText, "", "!", longText, "\xCC\x81"});
    for (const std::size_t other : {0U, 2U, 3U, 4U}) {
        EXPECT_LT(keys[1], keys[other]) << other;
    }
    EXPECT_LT(keys[3], keys[0]);
    EXPECT_TRUE(collationKeys({}).empty());
}

struct SmartRow {
    std::optional<std::string> a;
    std::optional<std::string> b;
    char relation;
};

const std::vector<SmartRow> smartRows{
    {"apple", "Banana", '<'},
    {"\"Heroes\"", "Hello", '>'},
    {"\"Heroes\"", "Heroes", '='},
    {"(What's the Story)", "What", '>'},
    {"\xE2\x80\x9CQuoted\xE2\x80\x9D", "quoted", '>'},
    {"\xC2\xBFQui\xC3\xA9n?", "Qui\xC3\xA9n", '='},
    {"zebra", "1999", '<'},
    {"1999", "zebra", '>'},
    {"99", "1999", '<'},
    {"'99", "1999", '<'},
    {"+", "zebra", '>'},
    {"+", "-+-", '='},
    {"...", "zebra", '>'},
    {"...", "~", '='},
    {"", "!!!", '='},
    {std::nullopt, "~", '='},
    {std::nullopt, std::nullopt, '='},
    {std::nullopt, "zebra", '>'},
    {"zebra", std::nullopt, '<'},
    {"\xF0\x9D\x94\xB8 song", "zebra", '>'},
    {"\xF0\x9F\x98\x80", "zebra", '>'},
    {"\xE6\x97\xA5\xE6\x9C\xAC", "1", '<'},
    {"\xE3\x80\x8C\xE6\x97\xA5\xE6\x9C\xAC\xE3\x80\x8D", "\xE6\x97\xA5\xE6\x9C\xAC", '='},
    {"a.b", "ab", '<'},
    {"_a_", "a", '='},
    {"a\xFF!", "a\xFF", '='},
    {"\xAD!", "\xAD", '='},
};

TEST(SmartAlphabeticalCompare, lettersComeFirstAndPunctuationAroundIsIgnored) {
    const InLocale plugged("en_US");
    for (const SmartRow& row : smartRows) {
        const auto name = [](const auto& text) { return text.value_or("(absent)"); };
        EXPECT_EQ(relationOf(Entended::smartAlphabeticalCompare(row.a, row.b)), row.relation)
            << name(row.a) << " and " << name(row.b);
        EXPECT_EQ(relationOf(Entended::smartAlphabeticalCompare(row.b, row.a)),
                  opposite(row.relation))
            << name(row.b) << " and " << name(row.a);
    }
}

TEST(SmartAlphabeticalKeys, haveTheOrderOfTheComparisonUpToItsTieBreaks) {
    const InLocale plugged("en_US");
    std::vector<std::optional<std::string>> texts;
    for (const SmartRow& row : smartRows) {
        texts.insert(texts.end(), {row.a, row.b});
    }
    const std::vector<std::string> keys = Entended::smartAlphabeticalKeys(texts);
    ASSERT_EQ(keys.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        for (std::size_t j = 0; j < texts.size(); ++j) {
            const auto result = Entended::smartAlphabeticalCompare(texts[i], texts[j]);
            if (keys[i] != keys[j]) {
                EXPECT_EQ(keys[i] < keys[j], result == NSComparisonResult::ascending)
                    << texts[i].value_or("(absent)") << " and " << texts[j].value_or("(absent)");
            }
        }
    }
    EXPECT_NE(Entended::smartAlphabeticalKeys({"zebra"}), Entended::smartAlphabeticalKeys({"1"}));
}

TEST(StringBeginsWithNumeral, isTrueOfAllButALetter) {
    for (const char* text : {"1", "~", "$x", " a", "'a", "\xF0\x9D\x94\xB8", "\xF0\x9F\x98\x80",
                             "\xE2\x85\xA0", "\xE2\x92\xB6", "\xFFz", "\xE2\x80\x8Dz"}) {
        EXPECT_TRUE(Entended::stringBeginsWithNumeral(text)) << text;
    }
    for (const char* text : {"", "a", "Z1", "\xC3\xA9", "\xCC\x81", "\xC2\xAA", "\xE6\x97\xA5",
                             "\xE3\x82\xAB", "\xEF\xBC\xA1", "\xE0\xA4\xBE", "\xEF\xB8\x8F"}) {
        EXPECT_FALSE(Entended::stringBeginsWithNumeral(text)) << text;
    }
}

TEST(StringValue, isTheStringItself) {
    EXPECT_EQ(Entended::stringValue("7"), "7");
}

}  // namespace
}  // namespace tavrion
