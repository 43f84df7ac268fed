// Broken files: each gets one line that names the file, the line, what is wrong and what to do.
#include <gtest/gtest.h>

#include "platform/testing/MediaLibraryFixture.h"
#include "tests/sources/musicxml/LibraryText.h"

namespace tavrion {
namespace {

class MusicXmlErrors : public testing::Test {
  protected:
    static std::string again(const std::string& start) {
        return start + "; export the library again";
    }
    static std::string ofTrack(const std::string& values) {
        return problemOf(library(track(1, values)));
    }

    MediaLibraryFixture region_;
};

TEST_F(MusicXmlErrors, nameTheFileTheLineAndWhatToDo) {
    EXPECT_EQ(ofTrack(integer("Play Count", "-1")),
              again("Library.xml, line 11: \"-1\" of the key \"Play Count\" is not a number that "
                    "it can be"));
}

TEST_F(MusicXmlErrors, ofNumbersOutOfTheirRange) {
    for (const char* key : {"Total Time", "Year", "Disc Number", "Track Number", "Track Count"}) {
        EXPECT_EQ(ofTrack(integer(key, "2147483648")), "") << key;
        for (const char* value :
             {"-1", "2147483649", "99999999999999999999", "x", "", "1.5", " 1"}) {
            const std::string problem = ofTrack(integer(key, value));
            EXPECT_NE(problem.find(std::string("line 11: \"") + value + "\" of the key \"" + key),
                      std::string::npos)
                << problem;
        }
    }
    for (const char* key : {"Play Count", "Skip Count"}) {
        EXPECT_EQ(ofTrack(integer(key, "10000000")), "") << key;
        for (const char* value : {"-1", "10000001", "4294967295", "x"}) {
            EXPECT_NE(ofTrack(integer(key, value)), "") << key;
        }
    }
    EXPECT_EQ(ofTrack(integer("Size", "9007199254740992")), "");
    EXPECT_NE(ofTrack(integer("Size", "9007199254740993")), "");
    EXPECT_NE(ofTrack(integer("Size", "-5")), "");
}

TEST_F(MusicXmlErrors, ofDates) {
    for (const char* key : {"Play Date UTC", "Skip Date", "Date Added", "Release Date"}) {
        EXPECT_EQ(ofTrack(date(key, "yesterday")),
                  again("Library.xml, line 11: \"yesterday\" of the key \"" + std::string(key) +
                        "\" is not a date like 2021-12-19T08:15:00Z"));
    }
}

TEST_F(MusicXmlErrors, ofIdentifiers) {
    EXPECT_EQ(ofTrack(text("Persistent ID", "one two")),
              again("Library.xml, line 11: \"one two\" of the key \"Persistent ID\" is not up to "
                    "16 hexadecimal digits"));
    EXPECT_NE(problemOf(library("", "<dict>" + text("Playlist Persistent ID", "?") + "</dict>")),
              "");
    EXPECT_NE(problemOf(library("", "<dict><key>Playlist Items</key><array><dict>" +
                                        integer("Track ID", "-2") + "</dict></array></dict>")),
              "");
}

TEST_F(MusicXmlErrors, ofValuesOfTheWrongKind) {
    EXPECT_EQ(ofTrack("<key>Name</key><true/>\n"),
              again("Library.xml, line 11: the key \"Name\" has <true/> for a value"));
    EXPECT_EQ(ofTrack(text("Loved", "yes")), again("Library.xml, line 11: the value of the key "
                                                   "\"Loved\" is neither <true/> nor <false/>"));
    EXPECT_EQ(ofTrack("<key>Name</key><array/>\n"),
              again("Library.xml, line 11: the value of the key \"Name\" is not a single one"));
    EXPECT_NE(problemOf(plist("<dict><key>Tracks</key><array/></dict>")), "");
    EXPECT_NE(problemOf(plist("<dict><key>Tracks</key><string>no</string></dict>")), "");
    EXPECT_NE(problemOf(library("<key>1</key><string>no</string>")), "");
    EXPECT_NE(problemOf(library("", "<string>no</string>")), "");
    EXPECT_NE(problemOf(library("", "<dict><key>Playlist Items</key><true/></dict>")), "");
}

TEST_F(MusicXmlErrors, ofKeysAndValuesThatDoNotPair) {
    EXPECT_EQ(ofTrack("<key>Name</key>\n<key>Artist</key><string>x</string>\n"),
              again("Library.xml, line 12: the key \"Name\" has no value"));
    EXPECT_EQ(ofTrack("<key>Name</key>\n"),
              again("Library.xml, line 12: the key \"Name\" has no value"));
    EXPECT_EQ(ofTrack("<string>x</string>\n"),
              again("Library.xml, line 11: <string> has no <key> before it"));
    EXPECT_EQ(ofTrack("<key>A</key><array><key>x</key></array>\n"),
              again("Library.xml, line 11: a <key> stands in an <array>"));
    EXPECT_EQ(ofTrack("stray\n"),
              again("Library.xml, line 11: the text \"stray\" stands outside of any value"));
    EXPECT_EQ(ofTrack("<key>Name</key><string>a<integer>1</integer></string>\n"),
              again("Library.xml, line 11: <integer> stands inside of another value"));
    EXPECT_EQ(ofTrack("<key>Name</key><b>x</b>\n"),
              again("Library.xml, line 11: <b> does not belong into a property list"));
}

TEST_F(MusicXmlErrors, ofFilesThatAreNotWholeXml) {
    const std::string whole = library(track(1, text("Name", "x")));
    EXPECT_EQ(problemOf(""), again("Library.xml, line 1: the file is empty"));
    EXPECT_EQ(problemOf("\n\n"), again("Library.xml, line 3: the file ends too early"));
    EXPECT_EQ(problemOf("hello"), again("Library.xml, line 1: this is not XML"));
    EXPECT_EQ(problemOf("<dict>\n<key>Tracks</dict>"),
              again("Library.xml, line 2: an end tag does not match its start tag"));
    for (std::size_t length = 1; length + 1 < whole.size(); ++length) {
        const std::string problem = problemOf(whole.substr(0, length));
        EXPECT_TRUE(problem.starts_with("Library.xml, line ")) << length << ": " << problem;
        EXPECT_EQ(problem.find('\n'), std::string::npos);
    }
}

TEST_F(MusicXmlErrors, ofOtherDocuments) {
    const std::string other = "; choose the Library.xml that the player exports";
    EXPECT_EQ(
        problemOf("<html></html>"),
        "Library.xml, line 1: <html> stands where the <dict> of a music library belongs" + other);
    EXPECT_NE(problemOf(plist("<array/>")), "");
    EXPECT_NE(problemOf(plist("")), "");
    EXPECT_NE(problemOf(plist("<dict/><dict/>")), "");
    EXPECT_NE(problemOf("<string/>"), "");
    EXPECT_EQ(problemOf("<plist><dict><key>Album</key><string>x</string></dict></plist>"),
              "Library.xml, line 1: the property list has no \"Tracks\"" + other);
}

TEST_F(MusicXmlErrors, ofDeclarationsOfEntities) {
    const std::string bomb =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [\n<!ENTITY a \"aaaaaaaaaa\">\n<!ENTITY b "
        "\"&a;&a;&a;\">\n]>\n"
        "<plist><dict><key>Tracks</key><dict/><key>&b;</key><true/></dict></plist>";
    EXPECT_EQ(problemOf(bomb),
              again("Library.xml, line 2: the file declares elements or entities of its own"));
    EXPECT_NE(problemOf("<!DOCTYPE plist []><plist><dict><key>Tracks</key><dict/></dict></plist>"),
              "");
    EXPECT_NE(problemOf("<!DOCTYPE plist SYSTEM \"x\" [<!ENTITY % p SYSTEM \"file:///etc/passwd\"> "
                        "%p;]><plist/>"),
              "");
}

TEST_F(MusicXmlErrors, ofUnknownEntities) {
    EXPECT_EQ(ofTrack(text("Name", "a&nbsp;b")),
              again("Library.xml, line 11: the entity &nbsp; is not known"));
}

TEST_F(MusicXmlErrors, ofDepth) {
    std::string deep = "<dict><key>Tracks</key><dict/><key>x</key>";
    std::string end = "</dict>";
    const auto nested = [&](int levels) {
        std::string inner;
        for (int i = 0; i < levels; ++i) {
            inner += "<array>";
        }
        for (int i = 0; i < levels; ++i) {
            inner += "</array>";
        }
        return problemOf(deep + inner + end);
    };
    EXPECT_EQ(nested(62), "");
    EXPECT_EQ(nested(63), again("Library.xml, line 1: the elements are nested more than 63 deep"));
    EXPECT_EQ(nested(100000),
              again("Library.xml, line 1: the elements are nested more than 63 deep"));
}

TEST_F(MusicXmlErrors, shortenLongTextsBetweenCharacters) {
    std::string name;
    for (int i = 0; i < 100000; ++i) {
        name += "é";
    }
    const std::string problem = ofTrack(integer("Play Count", "a" + name));
    EXPECT_LT(problem.size(), 200U);
    EXPECT_NE(problem.find("éé...\" of"), std::string::npos) << problem;
}

TEST_F(MusicXmlErrors, stayOnOneLine) {
    EXPECT_EQ(
        ofTrack(date("Skip Date", "2021\n12-18T20:00:00Z")),
        again("Library.xml, line 12: \"2021 12-18T20:00:00Z\" of the key \"Skip Date\" is not a "
              "date like 2021-12-19T08:15:00Z"));
    const std::string longName(1000, 'n');
    for (const std::string& problem :
         {ofTrack("<" + longName + "/>"), ofTrack("<key>x</key><" + longName + "/>"),
          ofTrack(text("Name", "&" + longName + ";")), problemOf("<" + longName + "/>"),
          ofTrack("<key>" + longName + "</key>"),
          ofTrack("<key>x</key><string><" + longName + "/></string>")}) {
        EXPECT_LT(problem.size(), 200U) << problem;
        EXPECT_NE(problem, "");
    }
}

TEST_F(MusicXmlErrors, keepSayingTheFirstProblem) {
    MusicXmlParser parser("F", 0);
    const std::string bytes = "<dict>\n<string>";
    std::copy(bytes.begin(), bytes.end(), parser.buffer().begin());
    EXPECT_FALSE(parser.parseBuffer(bytes.size()));
    EXPECT_TRUE(parser.buffer().empty());
    EXPECT_FALSE(parser.parseBuffer(0));
    EXPECT_EQ(parser.finish().error().localizedDescription,
              again("F, line 2: <string> has no <key> before it"));
}

}  // namespace
}  // namespace tavrion
