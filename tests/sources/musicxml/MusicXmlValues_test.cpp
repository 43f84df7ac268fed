#include "sources/musicxml/MusicXmlValues.h"

#include <gtest/gtest.h>

#include "sources/musicxml/MusicXmlKeys.h"

namespace tavrion {
namespace {

double seconds1970(const char* text) {
    return musicXmlDate(text).value().timeIntervalSince1970();
}

TEST(MusicXmlValues, readsDates) {
    EXPECT_EQ(seconds1970("1970-01-01T00:00:00Z"), 0);
    EXPECT_EQ(seconds1970("2001-01-01T00:00:00Z"), 978307200);
    EXPECT_EQ(seconds1970("2021-12-19T08:15:01Z"), 1639901701);
    EXPECT_EQ(seconds1970("2000-02-29T23:59:59Z"), 951868799);
    EXPECT_EQ(seconds1970("2024-03-01T00:00:00Z"), 1709251200);
    EXPECT_EQ(seconds1970("1900-03-01T00:00:00Z"), -2203891200);
    EXPECT_EQ(seconds1970("0001-01-01T00:00:00Z"), -62135596800);
}

TEST(MusicXmlValues, refusesWhatIsNotADate) {
    for (const char* text : {"",
                             "2021-12-19",
                             "2021-12-19T08:15:01",
                             "2021-12-19T08:15:01+",
                             "2021-12-19 08:15:01Z",
                             "2021-13-19T08:15:01Z",
                             "2021-00-19T08:15:01Z",
                             "2021-02-29T08:15:01Z",
                             "1900-02-29T00:00:00Z",
                             "2021-12-32T08:15:01Z",
                             "2021-04-31T08:15:01Z",
                             "2021-02-30T08:15:01Z",
                             "2021-12-00T08:15:01Z",
                             "2021-12-19T24:00:00Z",
                             "2021-12-19T08:60:01Z",
                             "2021-12-19T08:15:60Z",
                             "0000-12-19T08:15:01Z",
                             "2021-12-19T08:15:01Z ",
                             "-021-12-19T08:15:01Z",
                             "2021-1x-19T08:15:01Z"}) {
        EXPECT_EQ(musicXmlDate(text), std::nullopt) << text;
    }
}

TEST(MusicXmlValues, knowsNever) {
    for (const char* text :
         {"2040-02-06T06:28:15Z", "2040-02-05T00:00:00Z", "2040-02-07T23:59:59Z",
          "1904-01-01T00:00:00Z", "1903-12-31T16:00:00Z", "1904-01-02T12:00:00Z"}) {
        EXPECT_TRUE(isNeverInMusicXml(musicXmlDate(text).value())) << text;
    }
    for (const char* text : {"2040-02-04T23:59:59Z", "2040-02-08T00:00:00Z", "1903-12-30T23:59:59Z",
                             "1904-01-03T00:00:00Z", "2021-12-19T08:15:01Z"}) {
        EXPECT_FALSE(isNeverInMusicXml(musicXmlDate(text).value())) << text;
    }
}

TEST(MusicXmlValues, readsIntegers) {
    EXPECT_EQ(musicXmlInteger("0"), 0);
    EXPECT_EQ(musicXmlInteger("+12"), 12);
    EXPECT_EQ(musicXmlInteger("-12"), -12);
    EXPECT_EQ(musicXmlInteger("9223372036854775807"), 9223372036854775807);
    for (const char* text :
         {"", "+", "-", "+-1", "1.5", "1e3", "0x10", " 1", "1 ", "nan", "9223372036854775808"}) {
        EXPECT_EQ(musicXmlInteger(text), std::nullopt) << text;
    }
}

TEST(MusicXmlValues, readsPersistentIDs) {
    EXPECT_EQ(musicXmlPersistentID("1ABA8417E4946A32"), 0x1ABA8417E4946A32U);
    EXPECT_EQ(musicXmlPersistentID("ffffffffffffffff"), 0xFFFFFFFFFFFFFFFFU);
    for (const char* text : {"", "1ABA8417E4946A321", "0x12", "12 34", "-1", "xyz"}) {
        EXPECT_EQ(musicXmlPersistentID(text), std::nullopt) << text;
    }
}

TEST(MusicXmlKeys, knowsEachKeyByItsName) {
    for (std::uint8_t i = 0; i < static_cast<std::uint8_t>(MusicXmlKey::unknown); ++i) {
        const auto key = static_cast<MusicXmlKey>(i);
        EXPECT_EQ(musicXmlKeyNamed(nameOfMusicXmlKey(key)), key) << nameOfMusicXmlKey(key);
    }
    for (const char* name : {"", "name", "Nam", "Name ", "Play Date", "Rating",
                             "A key that is longer than any of them"}) {
        EXPECT_EQ(musicXmlKeyNamed(name), MusicXmlKey::unknown) << name;
    }
}

}  // namespace
}  // namespace tavrion
