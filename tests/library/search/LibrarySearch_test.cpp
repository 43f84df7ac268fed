// The search that users wait for finds what the plain one finds, in its order.
#include "library/search/LibrarySearch.h"

#include <gtest/gtest.h>

#include <random>

#include "library/RVQueryManager+Results.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "tests/library/search/PlainSearch.h"

namespace tavrion {
namespace {

/// Words, signs and letters of which names and terms are put together. Many come in several cases
/// and forms, so that names meet that are almost the same.
const std::vector<std::string> pieces{
    "love",   "Love",     "LOVE",       "in",
    "the",    "Étude",    "etude",      "e\u0301tude",
    "ß",      "ss",       "SS",         "ﬁ",
    "fi",     "Ø",        "o",          "i",
    "I",      "İ",        "ı",          "i\u0307",
    "日本",   "日",       "한국",       "سلام",
    "سَلام",   "ש\u05B8ל", "Ελλάς",      "ς",
    "Привет", "ё",        "\U0001F3B5", "\U0001F468\u200D\U0001F467",
    "\u00AD", "1",        "01",         "١",
    "１",     "10",       "!!!",        "...",
    "(",      ")",        "\"",         "-",
    "a",      "A",        "z\u0328",    "ǅ",
    "\u0301", "~",        "_",          "%",
    "\u3000", "Ａｉｒ"};

class RandomLibrary {
  public:
    explicit RandomLibrary(unsigned seed) : random_(seed) {}

    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    /// Empty now and then.
    std::string name() {
        std::string text;
        for (unsigned left = below(5); left > 0; --left) {
            text += pieces[below(static_cast<unsigned>(pieces.size()))];
            text += below(2) == 0 ? " " : "";
        }
        return text;
    }
    /// As a user's fingers leave it: never empty, no blanks around it.
    std::string term() {
        for (;;) {
            const std::string typed =
                below(3) == 0 ? name() : pieces[below(static_cast<unsigned>(pieces.size()))];
            if (const auto trimmed = trimmedTerm(typed); !trimmed.empty()) {
                return std::string(trimmed);
            }
        }
    }
    std::vector<TestSong> songs(unsigned count) {
        std::vector<std::string> names(count / 8);
        for (std::string& each : names) {
            each = name();
        }
        const auto any = [&] { return names[below(static_cast<unsigned>(names.size()))]; };
        std::vector<TestSong> made;
        for (unsigned number = 0; number < count; ++number) {
            made.push_back({.title = below(3) == 0 ? any() : name(),
                            .artist = any(),
                            .albumArtist = below(2) == 0 ? any() : std::string(),
                            .albumTitle = any(),
                            .sortTitle = below(9) == 0 ? name() : std::string(),
                            .track = below(4),
                            .disc = below(3),
                            .mediaType = below(9) == 0 ? MediaType::podcast : MediaType::music,
                            .compilation = below(5) == 0,
                            .inLibrary = below(9) != 0});
        }
        return made;
    }
    std::vector<TestPlaylist> playlists(unsigned count) {
        std::vector<TestPlaylist> made;
        for (unsigned number = 0; number < count; ++number) {
            made.push_back({.name = name(), .persistentID = 1000 + number, .songs = {1, 2, 3}});
        }
        return made;
    }

  private:
    std::mt19937 random_;
};

void expectSame(const FoundEntities& found, const std::vector<MPMediaEntity>& expected,
                std::string_view key) {
    ASSERT_EQ(found.size(), expected.size()) << key;
    for (std::size_t place = 0; place < expected.size(); ++place) {
        ASSERT_EQ(found[place], expected[place])
            << key << " at " << place << ": '" << stringOfEntity(found[place], key)
            << "' instead of '" << stringOfEntity(expected[place], key) << "'";
    }
}

class LibrarySearchTest : public testing::Test {
  protected:
    static void compare(LibrarySearch& search, const std::string& term) {
        SCOPED_TRACE("term '" + term + "'");
        const SearchResults found = search.results(term);
        const PlainResults expected = plainSearch(term);
        expectSame(found.artists, expected.artists, "artistSearchKey");
        expectSame(found.albums, expected.albums, "albumTitle");
        expectSame(found.songs, expected.songs, "title");
        expectSame(found.playlists, expected.playlists, "name");
    }

    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
};

class LibrarySearchInLocale : public LibrarySearchTest,
                              public testing::WithParamInterface<const char*> {};

TEST_P(LibrarySearchInLocale, findsWhatThePlainSearchFindsInItsOrder) {
    Regional region{*NSTimeZone::timeZoneWithName("UTC"), GetParam()};
    const Port<Regional>::Plug regionPlug{region};
    MediaLibraryFixture library;
    LibrarySearch search;
    for (unsigned seed = 1; seed <= 8; ++seed) {
        RandomLibrary random(seed);
        library.publish(random.songs(160), random.playlists(12));
        defaults_->setObject(RVQueryManager::splitCompilationsKey, seed % 2 == 0);
        for (int i = 0; i < 25; ++i) {
            ASSERT_NO_FATAL_FAILURE(compare(search, random.term())) << "seed " << seed;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Locales, LibrarySearchInLocale,
                         testing::Values("en_US", "de_DE", "tr_TR", "ja_JP", "ar_EG", "da_DK",
                                         "sv_SE"));

TEST_F(LibrarySearchTest, aListLongEnoughForEverySortIsInOrder) {
    RandomLibrary random(5);
    std::vector<TestSong> songs;
    for (unsigned number = 0; number < 3000; ++number) {
        // Few artists, so that one term finds a great part of the library.
        songs.push_back({.title = random.name(), .artist = number % 3 == 0 ? "love" : "x"});
    }
    MediaLibraryFixture library(songs);
    LibrarySearch search;
    for (const char* term : {"love", "l", "LOVE", "nowhere"}) {
        ASSERT_NO_FATAL_FAILURE(compare(search, term));
    }
}

TEST_F(LibrarySearchTest, anotherLibraryIsFoundInWithoutBeingReported) {
    MediaLibraryFixture library({{.title = "wave"}});
    LibrarySearch search;
    EXPECT_EQ(search.results("wave").songs.size(), 1U);
    library.publish({{.title = "wave one"}, {.title = "wave two"}});
    EXPECT_EQ(search.results("wave").songs.size(), 2U);
}

TEST_F(LibrarySearchTest, hitsOutliveTheirLibrary) {
    MediaLibraryFixture library({{.title = "wave", .artist = "Sea", .albumTitle = "Water"}});
    LibrarySearch search;
    const SearchResults found = search.results("wave");
    const SearchResults artists = search.results("sea");
    library.publish({});
    EXPECT_EQ(stringOfEntity(found.songs[0], "title"), "wave");
    EXPECT_EQ(artists.artists[0].collection()->count(), 1U);
}

TEST_F(LibrarySearchTest, aFoundAlbumKnowsTheQueryThatFoundIt) {
    MediaLibraryFixture library({{.title = "a", .artist = "Wave", .albumTitle = "Sea"},
                                 {.title = "b", .artist = "Wave", .albumTitle = "Wave"}});
    const FoundEntities albums = LibrarySearch().results("wave").albums;
    const std::vector<MPMediaEntity> expected = plainSearch("wave").albums;
    ASSERT_EQ(albums.size(), 2U);
    for (std::size_t place = 0; place < 2; ++place) {
        EXPECT_EQ(albums[place].collection()->itemsQuery().filterPredicates(),
                  expected[place].collection()->itemsQuery().filterPredicates());
    }
}

// Numbers of one value in several scripts, with zeros in front of some: their names are put in
// order by zeros where both have these in plain digits and by width elsewhere, and that goes in
// circles.
TEST_F(LibrarySearchTest, namesThatTheAlphabetPutsInNoOrderAreMergedAsTheyCome) {
    const std::vector<std::string> numbers{"1", "01", "001", "１", "０１", "١", "٠١"};
    RandomLibrary random(2);
    std::vector<TestSong> songs;
    for (int count = 0; count < 400; ++count) {
        const auto any = [&] { return numbers[random.below(7)]; };
        songs.push_back({.title = any() + " x " + any() + " x " + any()});
    }
    MediaLibraryFixture library(songs);
    LibrarySearch search;
    for (const char* term : {"x", "1", "01 x"}) {
        ASSERT_NO_FATAL_FAILURE(compare(search, term));
    }
}

}  // namespace
}  // namespace tavrion
