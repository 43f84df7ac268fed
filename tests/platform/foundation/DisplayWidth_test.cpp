#include "platform/foundation/DisplayWidth.h"

#include <gtest/gtest.h>

#include <string>

namespace tavrion {
namespace {

struct Row {
    const char* text;
    std::size_t width;
};

TEST(DisplayWidth, countsColumnsAndNotBytes) {
    const Row rows[] = {
        {"", 0},
        {"abc", 3},
        {"Größe", 5},
        {"—", 1},
        {"日本", 4},
        {"アメリカ", 8},
        {"ｱﾒﾘｶ", 4},
        {"ＡＢＣ", 6},
        {"한국", 4},
        // The same in parts: a consonant with its vowel and its last consonant is one letter.
        {"\u1112\u1161\u11AB", 2},
        {"e\u0301", 1},
        {"\u0928\u093F", 2},
        {"\u05D0\u05B8", 1},
        {"كِتاب", 4},
        // Marks that only turn the direction or keep letters together.
        {"\u200F\u061Ca\u200D\u2060\uFEFF", 1},
        {"a\u00ADb", 3},
        {"★ ▶ ⇣", 5},
        {"😀", 2},
        {"⏱", 1},
        {"⏱\uFE0F", 1},
        {"\u00A0\u202F", 2},
        {"\t", 1},
        {"\xff\xfe", 2},
        {"a\xc3", 2},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(displayWidth(row.text), row.width) << row.text;
    }
}

TEST(DisplayWidth, aStartDoesNotCutALetter) {
    EXPECT_EQ(startOfWidth("abc", 2), "ab");
    EXPECT_EQ(startOfWidth("abc", 3), "abc");
    EXPECT_EQ(startOfWidth("abc", 9), "abc");
    EXPECT_EQ(startOfWidth("日本", 3), "日");
    EXPECT_EQ(startOfWidth("日本", 1), "");
    EXPECT_EQ(startOfWidth("Größe", 3), "Grö");
    EXPECT_EQ(startOfWidth("abc", 0), "");
    EXPECT_EQ(startOfWidth("", 5), "");
}

TEST(DisplayWidth, aLetterKeepsItsMarks) {
    EXPECT_EQ(startOfWidth("cafe\u0301 noir", 4), "cafe\u0301");
    EXPECT_EQ(startOfWidth("e\u0301", 0), "");
}

}  // namespace
}  // namespace tavrion
