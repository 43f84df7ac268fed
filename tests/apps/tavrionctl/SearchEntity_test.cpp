// Searching and looking at one page from the command line: the true executable, what it prints and
// what it answers to bad input.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "platform/foundation/DisplayWidth.h"
#include "tests/support/RealData.h"

namespace tavrion {
namespace {

using nlohmann::json;

struct CommandRun {
    int status = -1;
    std::string out;
    std::string err;
    json value() const { return json::parse(out); }
};

struct Track {
    std::string name;
    std::string artist = "Band";
    std::string album = "Album";
    std::string genre = "Rock";
    int number = 0;
    int plays = 0;
    std::string lastPlayed = {};
    std::string albumArtist = {};
    bool isOnCompilation = false;
};

class SearchEntityTest : public testing::Test {
  protected:
    SearchEntityTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrionctl-XXXXXX").string();
        directory = ::mkdtemp(pattern.data());
    }
    ~SearchEntityTest() override { std::filesystem::remove_all(directory); }

    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    CommandRun run(const std::string& arguments,
                   const std::string& environment = "TZ=UTC LC_ALL=en_US.UTF-8") const {
        const std::string out = (directory / "out").string();
        const std::string err = (directory / "err").string();
        const std::string command = "env XDG_CACHE_HOME='" + (directory / "cache").string() + "' " +
                                    environment +
                                    " '" TAVRIONCTL "' --now 2026-03-01T12:00:00Z --data-dir '" +
                                    (directory / "data").string() + "' " + arguments + " >'" + out +
                                    "' 2>'" + err + "' </dev/null";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(err)};
    }
    static void writeText(std::ostream& file, const char* key, const std::string& value) {
        if (!value.empty()) {
            file << "<key>" << key << "</key><string>" << value << "</string>";
        }
    }
    void use(const std::vector<Track>& tracks) const {
        std::ofstream file(directory / "Library.xml");
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
                "version=\"1.0\"><dict><key>Tracks</key><dict>\n";
        int id = 0;
        for (const Track& track : tracks) {
            ++id;
            file << "<key>" << id << "</key><dict><key>Track ID</key><integer>" << id
                 << "</integer>";
            writeText(file, "Name", track.name);
            writeText(file, "Artist", track.artist);
            writeText(file, "Album Artist", track.albumArtist);
            writeText(file, "Album", track.album);
            writeText(file, "Genre", track.genre);
            file << "<key>Total Time</key><integer>180000</integer><key>Track Number</key><integer>"
                 << track.number << "</integer><key>Play Count</key><integer>" << track.plays
                 << "</integer>";
            if (track.isOnCompilation) {
                file << "<key>Compilation</key><true/>";
            }
            if (!track.lastPlayed.empty()) {
                file << "<key>Play Date UTC</key><date>" << track.lastPlayed << "</date>";
            }
            const std::string hex = std::to_string(1000 + id);
            file << "<key>Persistent ID</key><string>" << std::string(12, '0') << hex
                 << "</string></dict>\n";
        }
        file << "</dict><key>Playlists</key><array/></dict></plist>\n";
        file.close();
        const CommandRun used =
            run("--quiet library use music-xml '" + (directory / "Library.xml").string() + "'");
        ASSERT_EQ(used.status, 0) << used.err;
    }
    static std::vector<std::string> titles(const json& rows) {
        std::vector<std::string> found;
        for (const json& row : rows) {
            found.push_back(row["title"].is_null() ? "(none)" : row["title"].get<std::string>());
        }
        return found;
    }
    static void expectFailure(const CommandRun& result, int status, const std::string& text) {
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_TRUE(result.out.empty()) << result.out;
        EXPECT_EQ(result.err, "tavrionctl: " + text + "\n");
    }
    /// Where the text starts on its line, in columns.
    static std::size_t columnOf(const std::string& screen, const std::string& text) {
        const std::size_t at = screen.find(text);
        EXPECT_NE(at, std::string::npos) << text << " in\n" << screen;
        const std::size_t start = at == 0 ? 0 : screen.rfind('\n', at - 1) + 1;
        return displayWidth(std::string_view(screen).substr(start, at - start));
    }

    std::filesystem::path directory;
};

using Titles = std::vector<std::string>;

TEST_F(SearchEntityTest, aSearchListsAllHitsRanked) {
    use({{"Blue Sky", "Ann", "Green"}, {"Sky", "Blue Band", "Red"}, {"Other", "Ann", "So Blue"}});
    const json found = run("--json search Blue").value();
    EXPECT_EQ(titles(found["artists"]), (Titles{"Blue Band"}));
    EXPECT_EQ(titles(found["albums"]), (Titles{"So Blue", "Red"}));
    EXPECT_EQ(titles(found["songs"]), (Titles{"Blue Sky", "Other", "Sky"}));
    EXPECT_EQ(found["playlists"], json::array());
    EXPECT_EQ(found["songs"][0], (json{{"rank", nullptr},
                                       {"title", "Blue Sky"},
                                       {"subtitle", "Ann"},
                                       {"property", "Green"},
                                       {"persistentID", found["songs"][0]["persistentID"]},
                                       {"songs", 1}}));
    EXPECT_EQ(found["artists"][0]["property"], "1 album");
}

TEST_F(SearchEntityTest, aSearchPrintsFiveRowsOfASectionAndHowToSeeAll) {
    std::vector<Track> tracks;
    for (int i = 1; i <= 6; ++i) {
        tracks.push_back({"Wave " + std::to_string(i)});
    }
    use(tracks);
    const CommandRun five = run("search Wave");
    EXPECT_NE(five.out.find("Wave 5"), std::string::npos);
    EXPECT_EQ(five.out.find("Wave 6"), std::string::npos);
    EXPECT_NE(five.out.find("See All (6)"), std::string::npos);
    const CommandRun all = run("search --all Wave");
    EXPECT_NE(all.out.find("Wave 6"), std::string::npos);
    EXPECT_EQ(all.out.find("See All"), std::string::npos);
}

TEST_F(SearchEntityTest, rowsAreAlignedByWhatATerminalShows) {
    use({{"Sky 日本語の歌", "Bjo\u0308rk", "A1"}, {"Sky", "Ann", "B2"}});
    const CommandRun found = run("search sky");
    EXPECT_EQ(columnOf(found.out, "A1"), columnOf(found.out, "B2"));
    EXPECT_EQ(columnOf(found.out, "Bjo\u0308rk"), columnOf(found.out, "Ann"));
}

TEST_F(SearchEntityTest, aSearchWithoutATermOrHitsSaysSo) {
    use({{"Sky"}});
    expectFailure(run("search '  '"), 2,
                  "the term to search for is empty; write one, as in search blue");
    const CommandRun none = run("search nowhere");
    EXPECT_EQ(none.status, 0);
    EXPECT_TRUE(none.out.empty());
    EXPECT_EQ(none.err, "Nothing in the library matches 'nowhere'.\n");
}

TEST_F(SearchEntityTest, anAlbumsPageShowsItsTracks) {
    use({{"Zebra", "Band", "Album", "Rock", 1, 2}, {"Apple", "Band", "Album", "Rock", 2, 7}});
    const json page = run("--json entity album Album").value();
    EXPECT_EQ(page["title"], "Album");
    EXPECT_EQ(page["subtitle"], "Band");
    EXPECT_EQ(page["duration"], "6:00");
    EXPECT_EQ(page["activity"], json(std::vector<int>(30, 0)));
    EXPECT_EQ(page["lastPlayed"], "—");
    EXPECT_EQ(page["statistics"][0],
              (json{{"icon", "play.fill"}, {"value", "9"}, {"caption", "Plays"}}));
    ASSERT_EQ(page["sections"].size(), 1U);
    EXPECT_EQ(page["sections"][0]["title"], "Songs");
    EXPECT_EQ(titles(page["sections"][0]["items"]), (Titles{"Zebra", "Apple"}));
    EXPECT_EQ(page["sections"][0]["items"][1]["rank"], 2);
}

TEST_F(SearchEntityTest, aSortOfTheCommandIsNotKept) {
    use({{"Zebra", "Band", "Album", "Rock", 1, 2}, {"Apple", "Band", "Album", "Rock", 2, 7}});
    const json sorted = run("--json entity album Album --sort songs:play-count").value();
    EXPECT_EQ(titles(sorted["sections"][0]["items"]), (Titles{"Apple", "Zebra"}));
    EXPECT_EQ(sorted["sections"][0]["items"][0]["rank"], 1);
    EXPECT_EQ(sorted["sections"][0]["items"][0]["property"], "7x");
    const json reversed = run("--json entity album Album --sort songs:play-count:reverse").value();
    EXPECT_EQ(titles(reversed["sections"][0]["items"]), (Titles{"Zebra", "Apple"}));
    const json after = run("--json entity album Album").value();
    EXPECT_EQ(titles(after["sections"][0]["items"]), (Titles{"Zebra", "Apple"}));
    EXPECT_EQ(run("--json defaults read").out.find("sortPreferences"), std::string::npos);
}

TEST_F(SearchEntityTest, recordedPlaysMakeTheActivity) {
    use({{"Sky", "Band", "Album", "Rock", 1, 1, "2026-02-28T10:00:00Z"}});
    ASSERT_EQ(run("--quiet scan --since all").status, 0);
    const json page = run("--json entity song sky").value();
    std::vector<int> expected(30, 0);
    expected[28] = 180;
    EXPECT_EQ(page["activity"], json(expected));
    EXPECT_EQ(page["lastPlayed"], "Yesterday at 10:00\u202FAM");
    EXPECT_EQ(page["sections"], json::array());
    EXPECT_EQ(page["statistics"].size(), 5U);
    const CommandRun text = run("entity song Sky");
    EXPECT_NE(text.out.find("█"), std::string::npos) << text.out;
}

TEST_F(SearchEntityTest, pagesOfEveryKindCanBeShown) {
    use({{"Sky", "Ann", "Green", "Rock", 1, 1}, {"Sea", "Bob", "Red", "Rock", 1, 2}});
    const json genre = run("--json entity genre Rock").value();
    EXPECT_EQ(genre["sections"][0]["title"], "Artists");
    EXPECT_EQ(titles(genre["sections"][0]["items"]), (Titles{"Ann", "Bob"}));
    EXPECT_EQ(genre["sections"][1]["title"], "Songs");
    const json artist = run("--json entity artist Ann").value();
    EXPECT_EQ(artist["sections"][0]["title"], "Albums");
    EXPECT_EQ(artist["subtitle"], "1 song");
    for (const char* arguments : {"genre Rock", "artist Bob", "album Red", "song Sea"}) {
        const CommandRun text = run(std::string("entity ") + arguments);
        EXPECT_EQ(text.status, 0) << text.err;
        EXPECT_FALSE(text.out.empty());
    }
}

TEST_F(SearchEntityTest, badInputIsAnsweredWithWhatThereIs) {
    use({{"Sky", "Ann", "Green Day"}, {"Sea", "Bob", "Greener"}, {"Sun", "Bob", "Blue"}});
    expectFailure(run("entity thing Sky"), 2,
                  "there is no kind 'thing'; kinds are song, album, artist, genre and playlist");
    expectFailure(
        run("entity album Gren"), 1,
        "no album is called 'Gren'; the nearest names are 'Greener', 'Blue', 'Green Day'");
    expectFailure(run("entity album Green"), 1,
                  "no album is called 'Green'; the nearest names are 'Greener', 'Green Day', "
                  "'Blue'");
    expectFailure(run("entity playlist x"), 1,
                  "no playlist is called 'x'; the library has no playlists");
    expectFailure(run("entity genre Rock --artist Ann"), 2,
                  "--artist tells songs and albums apart; leave it out");
    expectFailure(run("entity song Sky --sort songs:play-count"), 2, "a song has no list of songs");
    for (const char* sort : {"songs", "tiles:play-count", "songs:plays", "songs:play-count:up"}) {
        const CommandRun result = run(std::string("entity album Blue --sort ") + sort);
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(result.err.starts_with("tavrionctl: '" + std::string(sort) +
                                           "' is not a sort; write it as SECTION:TYPE"))
            << result.err;
        EXPECT_NE(result.err.find("play-count, last-played"), std::string::npos);
    }
}

TEST_F(SearchEntityTest, twoOfOneNameAreListedWithWhatTellsThemApart) {
    use({{"Sky", "Ann", "Green"}, {"Sky", "Bob", "Red"}, {"sky", "Cid", "Blue"}});
    const CommandRun both = run("entity song Sky");
    EXPECT_EQ(both.status, 1);
    EXPECT_TRUE(
        both.err.starts_with("tavrionctl: there are 2 songs called 'Sky'; name one with "
                             "--id\n"))
        << both.err;
    EXPECT_NE(both.err.find("Ann"), std::string::npos);
    EXPECT_NE(both.err.find("Red"), std::string::npos);
    EXPECT_EQ(run("--json entity song Sky --artist ann").value()["subtitle"], "Ann");
    EXPECT_EQ(run("--json entity song sky").value()["subtitle"], "Cid");
    const std::string id = run("--json search Red").value()["songs"][0]["persistentID"].dump();
    EXPECT_EQ(run("--json entity song Sky --id " + id).value()["subtitle"], "Bob");
    EXPECT_EQ(run("entity song Sky --id none").status, 2);
}

TEST_F(SearchEntityTest, aSongIsFoundByItsOwnArtistAndByThatOfItsAlbum) {
    use({{.name = "Sky", .artist = "Guest", .album = "Live", .albumArtist = "Band"},
         {.name = "Sky", .artist = "Band", .album = "Other", .albumArtist = "Band"},
         {.name = "Sky", .artist = "Stranger", .album = "Far"}});
    EXPECT_EQ(run("--json entity song Sky --artist guest").value()["subtitle"], "Band");
    EXPECT_EQ(run("--json entity song Sky --artist stranger").value()["subtitle"], "Stranger");
    const CommandRun both = run("entity song Sky --artist Band");
    EXPECT_EQ(both.status, 1);
    EXPECT_NE(both.err.find("there are 2 songs called 'Sky'"), std::string::npos) << both.err;
    EXPECT_EQ(run("entity song Sky --artist Nobody").status, 1);
}

TEST_F(SearchEntityTest, onACompilationTheTrackArtistTellsSongsApartAndTheAlbumArtistAlbums) {
    use({{.name = "Sky",
          .artist = "Ann",
          .album = "Hits",
          .albumArtist = "Various",
          .isOnCompilation = true},
         {.name = "Sky",
          .artist = "Bob",
          .album = "Hits",
          .albumArtist = "Various",
          .isOnCompilation = true},
         {.name = "Sea", .artist = "Ann", .album = "Loose", .isOnCompilation = true},
         {.name = "Sun", .artist = "Cid", .album = "Hits"}});
    EXPECT_EQ(run("--json entity song Sky --artist ann").value()["subtitle"], "Various");
    EXPECT_EQ(run("--json entity song Sea --artist Ann").value()["title"], "Sea")
        << "also without an album artist";
    EXPECT_EQ(run("entity song Sky --artist Various").status, 1) << "both are Various's";
    const json hits = run("--json entity album Hits --artist Various").value();
    EXPECT_EQ(titles(hits["sections"][0]["items"]), (std::vector<std::string>{"Sky", "Sky"}));
    const json other = run("--json entity album Hits --artist Cid").value();
    EXPECT_EQ(titles(other["sections"][0]["items"]), (std::vector<std::string>{"Sun"}));
    EXPECT_EQ(run("entity album Hits --artist Ann").status, 1)
        << "an album is its album artist's, whoever is on it";
}

TEST_F(SearchEntityTest, realLibrariesAreSearchedAndShown) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    int files = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(*realDataDirectory() / "music-xml")) {
        if (entry.path().extension() != ".xml") {
            continue;
        }
        SCOPED_TRACE(entry.path().filename().string());
        const CommandRun used =
            run("--quiet library use music-xml '" + entry.path().string() + "'");
        if (used.status != 0) {
            continue;  // some are broken on purpose, and that is reported elsewhere
        }
        ++files;
        const CommandRun found = run("--json search a");
        ASSERT_EQ(found.status, 0) << found.err;
        EXPECT_EQ(run("search a").status, 0);
        for (const auto& [list, kind] :
             {std::pair{"artists", "artist"}, std::pair{"albums", "album"},
              std::pair{"songs", "song"}, std::pair{"playlists", "playlist"}}) {
            const json rows = found.value()[list];
            if (rows.empty() ||
                rows[0]["title"].get<std::string>().find('\'') != std::string::npos) {
                continue;
            }
            const CommandRun page = run("--json entity " + std::string(kind) + " -- '" +
                                        rows[0]["title"].get<std::string>() + "'");
            EXPECT_TRUE(page.status == 0 || page.err.find("--id") != std::string::npos) << page.err;
        }
    }
    EXPECT_GT(files, 0);
}

}  // namespace
}  // namespace tavrion
