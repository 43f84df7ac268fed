// tavrionctl browse, as a user has it.

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
using Names = std::vector<std::string>;

struct CommandRun {
    int status = -1;
    std::string out;
    std::string err;
    json value() const { return json::parse(out); }
};

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

Names linesOf(const std::string& text) {
    Names lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

struct Track {
    std::string name;
    std::string artist;
    std::string album;
    int plays = 0;
    int year = 0;
    bool isExplicit = false;
};

std::string key(const std::string& name, const std::string& kind, const std::string& value) {
    return value.empty() ? "" : "<key>" + name + "</key><" + kind + ">" + value + "</" + kind + ">";
}

class BrowseCommandTest : public testing::Test {
  protected:
    BrowseCommandTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrionctl-XXXXXX").string();
        directory = ::mkdtemp(pattern.data());
    }
    ~BrowseCommandTest() override { std::filesystem::remove_all(directory); }

    CommandRun run(const std::string& arguments, const std::string& locale = "C.UTF-8") const {
        const std::string out = (directory / "out").string();
        const std::string err = (directory / "err").string();
        const std::string command =
            "env TZ=UTC TERM=xterm LC_ALL=" + locale + " XDG_CACHE_HOME='" +
            (directory / "cache").string() + "' '" TAVRIONCTL "' --data-dir '" +
            (directory / "data").string() + "' --now 2026-03-31T12:00:00Z " + arguments + " >'" +
            out + "' 2>'" + err + "' </dev/null";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(err)};
    }
    void use(const std::filesystem::path& file) const {
        const CommandRun used = run("--quiet library use music-xml '" + file.string() + "'");
        ASSERT_EQ(used.status, 0) << used.err;
    }
    void use(const std::vector<Track>& tracks, int playlists = 0) const {
        std::ofstream file(directory / "Library.xml");
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
                "version=\"1.0\"><dict><key>Tracks</key><dict>\n";
        for (std::size_t index = 0; index < tracks.size(); ++index) {
            const Track& track = tracks[index];
            const std::string id = std::to_string(index + 1);
            file << "<key>" << id << "</key><dict>" << key("Track ID", "integer", id)
                 << key("Name", "string", track.name) << key("Artist", "string", track.artist)
                 << key("Album", "string", track.album) << key("Total Time", "integer", "60000")
                 << key("Year", "integer", track.year == 0 ? "" : std::to_string(track.year))
                 << key("Play Count", "integer", std::to_string(track.plays))
                 << (track.isExplicit ? "<key>Explicit</key><true/>" : "") << "</dict>\n";
        }
        file << "</dict><key>Playlists</key><array>\n";
        for (int number = 1; number <= playlists; ++number) {
            file << "<dict>" << key("Name", "string", "List " + std::to_string(number))
                 << key("Playlist ID", "integer", std::to_string(number))
                 << key("Playlist Persistent ID", "string", std::to_string(1000000 + number))
                 << "<key>Playlist Items</key><array><dict>" << key("Track ID", "integer", "1")
                 << "</dict></array></dict>\n";
        }
        file << "</array></dict></plist>\n";
        file.close();
        use(directory / "Library.xml");
    }
    Names titles(const std::string& arguments) const {
        const CommandRun result = run("--json browse " + arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        Names found;
        const json list = result.value();
        for (const json& item : list.at("items")) {
            found.push_back(item["title"]);
        }
        return found;
    }

    std::filesystem::path directory;
};

const std::vector<Track> fourTracks{{"Été", "Zoé", "Ça va", 3, 1999, false},
                                    {"", "!!!", "", 7, 0, true},
                                    {"日本の歌", "Ärzte", "日本", 3, 2001, false},
                                    {"Apple", "10cc", "Ça va", 0, 0, false}};

TEST_F(BrowseCommandTest, listsSongsWithRanksAndValues) {
    use(fourTracks);
    const json list = run("--json browse --sort play-count").value();
    ASSERT_EQ(list["items"].size(), 4U);
    const json& first = list["items"][0];
    EXPECT_EQ(first["rank"], 1);
    EXPECT_EQ(first["title"], "Untitled");
    EXPECT_EQ(first["subtitle"], "!!!");
    EXPECT_EQ(first["property"], "7x");
    EXPECT_EQ(first["songs"], 1);
    EXPECT_TRUE(first["persistentID"].is_number_unsigned());
    EXPECT_EQ(list["items"][3]["rank"], 4);
    const json plain = run("--json browse --sort date-added").value();
    EXPECT_TRUE(plain["items"][0]["rank"].is_null());
}

TEST_F(BrowseCommandTest, artistsOfPunctuationAndDigitsComeLast) {
    use(fourTracks);
    EXPECT_EQ(titles("--group artists"), (Names{"Ärzte", "Zoé", "!!!", "10cc"}));
    EXPECT_EQ(titles("--group artists --reverse"), (Names{"10cc", "!!!", "Zoé", "Ärzte"}));
}

TEST_F(BrowseCommandTest, yearsStandForMissingReleaseDates) {
    use(fourTracks);
    const json items = run("--json browse --sort release-date").value()["items"];
    Names values;
    for (const json& item : items) {
        values.push_back(item["property"]);
    }
    EXPECT_EQ(values, (Names{"2001", "1999", "0", "0"}));
}

TEST_F(BrowseCommandTest, aThousandPlaylistsAreListedByName) {
    use(fourTracks, 1000);
    const Names found = titles("--group playlists");
    ASSERT_EQ(found.size(), 1000U);
    EXPECT_EQ(found[1], "List 2");
    EXPECT_EQ(found[999], "List 1000");
}

TEST_F(BrowseCommandTest, textIsAlignedByTheColumnsThatItTakes) {
    use(fourTracks);
    const Names lines = linesOf(run("browse --sort play-count").out);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0], "⊟ Songs   △ Play Count");
    EXPECT_EQ(lines[1], "1  Untitled\u2004Ⓔ  !!!    ▶ 7x");
    for (std::size_t line = 2; line < lines.size(); ++line) {
        EXPECT_EQ(displayWidth(lines[line]), displayWidth(lines[1])) << lines[line];
        EXPECT_TRUE(lines[line].ends_with("x")) << lines[line];
    }
}

TEST_F(BrowseCommandTest, whereNoSymbolsCanBeShownThereAreNone) {
    use(fourTracks);
    const Names lines = linesOf(run("browse --sort time-listened --reverse", "C").out);
    EXPECT_EQ(lines.at(0), "Songs   Time Listened");
    EXPECT_EQ(lines.at(1), "1  Apple       10cc   0 min");
}

TEST_F(BrowseCommandTest, aLineBreakInANameBreaksNoLine) {
    use({{"A\nB", "C\nD", "E\nF"}});
    EXPECT_EQ(linesOf(run("browse").out), (Names{"⊟ Songs   △ Alphabetical", "A B  C D  E F"}));
}

TEST_F(BrowseCommandTest, aLongTitleIsCut) {
    use({{std::string(100, 'x'), "A", "B"}});
    const Names lines = linesOf(run("browse").out);
    EXPECT_EQ(lines.at(1), std::string(39, 'x') + "…  A  B");
}

TEST_F(BrowseCommandTest, takesTheStoredChoicesAndStoresNone) {
    use(fourTracks);
    const std::string preferences = "com.oskelvane.Nerinda.sortPreferences";
    ASSERT_EQ(run("defaults write " + preferences +
                  R"( -dict '{"browse.groupType": 3, "browse.sortType": 1, "browse.reverse": 1}')")
                  .status,
              0);
    const json before = run("--json defaults read").value();
    const json items = run("--json browse").value()["items"];
    ASSERT_EQ(items.size(), 4U);
    EXPECT_EQ(items[0]["title"], "10cc");
    EXPECT_EQ(items[3]["title"], "!!!");
    EXPECT_EQ(titles("--sort play-count").front(), "!!!");
    EXPECT_EQ(titles("--group songs --sort alphabetical --reverse").size(), 4U);
    EXPECT_EQ(run("--json defaults read").value(), before);
}

TEST_F(BrowseCommandTest, theTilesAreEight) {
    use(fourTracks);
    const json tiles = run("--json browse --tiles").value();
    ASSERT_EQ(tiles.size(), 8U);
    EXPECT_EQ(tiles[0], (json{{"icon", "music.note.list"}, {"value", "4"}, {"caption", "Songs"}}));
    EXPECT_EQ(tiles[3],
              (json{{"icon", "stopwatch"}, {"value", "13"}, {"caption", "Minutes Listened"}}));
    EXPECT_EQ(tiles[7],
              (json{{"icon", "e.square.fill"}, {"value", "25%"}, {"caption", "Explicit"}}));
    const Names lines = linesOf(run("browse --tiles").out);
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[0], "♫     4  Songs");
    EXPECT_EQ(lines[6], "⤓  100%  Downloaded");
}

TEST_F(BrowseCommandTest, anUnknownGroupOrSortSaysWhichThereAre) {
    use(fourTracks);
    const CommandRun group = run("browse --group composers");
    EXPECT_EQ(group.status, 2);
    EXPECT_EQ(group.err,
              "tavrionctl: there is no group 'composers'; there are songs, albums, artists, "
              "genres, playlists\n");
    const CommandRun sort = run("browse --sort ''");
    EXPECT_EQ(sort.status, 2);
    EXPECT_EQ(sort.err,
              "tavrionctl: there is no sort ''; there are alphabetical, play-count, last-played, "
              "time-listened, date-added, release-date\n");
    EXPECT_EQ(run("browse --tiles --group songs").status, 2);
}

TEST_F(BrowseCommandTest, withoutALibraryItSaysHowToChooseOne) {
    const CommandRun result = run("browse");
    EXPECT_NE(result.status, 0);
    EXPECT_NE(result.err.find("library use"), std::string::npos) << result.err;
    EXPECT_EQ(linesOf(result.err).size(), 1U);
}

TEST_F(BrowseCommandTest, anEmptyLibraryIsAnEmptyList) {
    use(std::vector<Track>());
    EXPECT_EQ(run("--json browse").value(), (json{{"items", json::array()}}));
    const CommandRun text = run("browse --group genres");
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out, "⊟ Genres   △ Alphabetical\n");
    EXPECT_EQ(text.err, "The library has none.\n");
}

TEST_F(BrowseCommandTest, everyRealLibraryGivesEveryList) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    for (const auto& file :
         std::filesystem::directory_iterator(*realDataDirectory() / "music-xml")) {
        use(file.path());
        EXPECT_EQ(run("--json browse --tiles").value().size(), 8U);
        for (const char* group : {"songs", "albums", "artists", "genres", "playlists"}) {
            std::size_t size = 0;
            for (const char* sort : {"alphabetical", "play-count", "last-played", "time-listened",
                                     "date-added", "release-date"}) {
                const Names found =
                    titles("--group " + std::string(group) + " --sort " + std::string(sort));
                EXPECT_TRUE(size == 0 || found.size() == size) << file.path() << group << sort;
                size = found.size();
            }
            const CommandRun text = run("browse --group " + std::string(group));
            EXPECT_EQ(text.status, 0) << text.err;
            EXPECT_EQ(linesOf(text.out).size(), size + 1);
        }
    }
}

}  // namespace
}  // namespace tavrion
