// tavrionctl trending: the ranking as JSON and as a list for people.

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/ProgramRun.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

using nlohmann::json;

class TrendingCommandTest : public testing::Test {
  protected:
    TrendingCommandTest() {
        publish(1, "2026-03-01T10:00:00Z", 1, "2026-03-01T11:00:00Z");
        run({"library", "use", "music-xml", file().string()});
        run({"--now", "2026-03-01T12:00:00Z", "scan", "--since", "all"});
        publish(3, "2026-03-02T10:00:00Z", 1, "2026-03-01T11:00:00Z");
        run({"--now", "2026-03-02T12:00:00Z", "scan"});
    }
    std::filesystem::path file() const { return folder.path() / "Library.xml"; }
    void publish(int shortPlays, const std::string& shortDate, int longPlays,
                 const std::string& longDate) const {
        std::ofstream out(file());
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
               "version=\"1.0\"><dict><key>Tracks</key><dict>\n";
        writeTrack(out, 1, "Short", "Rock", 100000, shortPlays, shortDate);
        writeTrack(out, 2, "Long", "Jazz", 1000000, longPlays, longDate);
        out << "</dict><key>Playlists</key><array/></dict></plist>\n";
    }
    static void writeTrack(std::ofstream& out, int id, const std::string& name,
                           const std::string& genre, int milliseconds, int plays,
                           const std::string& date) {
        out << "<key>" << id << "</key><dict><key>Track ID</key><integer>" << id
            << "</integer><key>Name</key><string>" << name << "</string><key>Artist</key><string>"
            << name << " Band</string><key>Album</key>"
            << "<string>" << name << " Album</string><key>Genre</key><string>" << genre
            << "</string><key>Total Time</key><integer>" << milliseconds
            << "</integer><key>Play Count</key><integer>" << plays
            << "</integer><key>Play Date UTC</key><date>" << date
            << "</date><key>Persistent ID</key><string>" << std::string(15, '0') << id
            << "</string></dict>\n";
    }
    ProgramEnd run(std::vector<std::string> command) const {
        command.insert(command.begin(), {"--data-dir", (folder.path() / "data").string()});
        return ProgramRun(TAVRIONCTL, command, folder.path(),
                          {{"XDG_CACHE_HOME", (folder.path() / "cache").string()}})
            .wait();
    }
    json trending(std::vector<std::string> options) const {
        options.insert(options.begin(), {"--json", "--now", "2026-03-02T20:00:00Z", "trending"});
        const ProgramEnd end = run(std::move(options));
        EXPECT_TRUE(end.isDone()) << end.told();
        return end.isDone() ? json::parse(end.out) : json();
    }

    const TestFolder folder;
};

TEST_F(TrendingCommandTest, ranksSongsAndArtistsByPlays) {
    const json lifetime = trending({"--range", "lifetime"});
    EXPECT_EQ(lifetime["interval"]["start"]["iso"], "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(lifetime["interval"]["end"]["iso"], "2026-03-02T23:59:59.000Z");
    EXPECT_EQ(lifetime["songs"], json::parse(R"([
        {"rank": 1, "title": "Short", "artist": "Short Band", "playCount": 3, "playDuration": 0},
        {"rank": 2, "title": "Long", "artist": "Long Band", "playCount": 1, "playDuration": 0}])"));
    EXPECT_EQ(lifetime["collections"], json::parse(R"([
        {"rank": 1, "title": "Short Band", "groupType": 3, "playCount": 3, "playDuration": 0},
        {"rank": 2, "title": "Long Band", "groupType": 3, "playCount": 1, "playDuration": 0}])"));
}

TEST_F(TrendingCommandTest, ranksByTimeAndByOtherGroups) {
    const json byTime = trending({"--range", "lifetime", "--by", "time", "--group", "genres"});
    EXPECT_EQ(byTime["songs"][0]["title"], "Long");
    EXPECT_EQ(byTime["songs"][0]["playDuration"], 1000);
    EXPECT_EQ(byTime["songs"][0]["playCount"], 0);
    EXPECT_EQ(byTime["collections"][0]["title"], "Jazz");
    EXPECT_EQ(byTime["collections"][0]["groupType"], 5);
    const json albums = trending({"--range", "lifetime", "--group", "albums"});
    EXPECT_EQ(albums["collections"][0]["title"], "Short Album");
    EXPECT_EQ(albums["collections"][0]["groupType"], 1);
}

TEST_F(TrendingCommandTest, withoutOptionsTheStoredChoicesHold) {
    EXPECT_EQ(trending({})["interval"]["start"]["iso"], "2026-03-02T00:00:00.000Z");
    run({"defaults", "write", "TrendingDateRangeObject", "-int", "4"});
    run({"defaults", "write", "TrendingWeightedRankFormat", "-int", "2"});
    run({"defaults", "write", "TrendingGroupingType", "-int", "2"});
    const json stored = trending({});
    EXPECT_EQ(stored["interval"]["start"]["iso"], "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(stored["songs"][0]["title"], "Long");
    EXPECT_EQ(stored["collections"][0]["title"], "Jazz");
    EXPECT_EQ(trending({"--by", "plays"})["songs"][0]["title"], "Short");
    EXPECT_EQ(trending({})["songs"][0]["title"], "Long") << "options are not stored";
}

TEST_F(TrendingCommandTest, printsARankedList) {
    const ProgramEnd end =
        run({"--now", "2026-03-02T20:00:00Z", "trending", "--range", "lifetime"});
    ASSERT_TRUE(end.isDone()) << end.told();
    EXPECT_TRUE(end.out.starts_with("  1  Short Band ")) << end.out;
    EXPECT_NE(end.out.find("\n\n  1  Short "), std::string::npos) << end.out;
    EXPECT_NE(end.out.find("       3x  Short Band\n  2  Long "), std::string::npos) << end.out;
}

TEST_F(TrendingCommandTest, emptyRangesHaveEmptyLists) {
    const json empty = trending({"--range", "2020-01-01..2020-01-02"});
    EXPECT_EQ(empty["songs"], json::array());
    EXPECT_EQ(empty["collections"], json::array());
}

TEST_F(TrendingCommandTest, wrongOptionsAreOneLine) {
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--range", "soon"}, {"--group", "songs"}, {"--by", "skips"}}) {
        std::vector<std::string> command{"trending"};
        command.insert(command.end(), options.begin(), options.end());
        const ProgramEnd end = run(command);
        EXPECT_EQ(end.status, 2) << end.told();
        EXPECT_EQ(end.errorLines(), 1U) << end.told();
        EXPECT_TRUE(end.out.empty()) << end.told();
    }
}

}  // namespace
}  // namespace tavrion
