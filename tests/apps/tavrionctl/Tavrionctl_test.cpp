// The command line as a user has it: the true executable, its output, its messages and its exit
// status.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

using nlohmann::json;

struct CommandRun {
    int status = -1;
    std::string out;
    std::string err;
    json value() const { return json::parse(out); }
};

class TavrionctlTest : public testing::Test {
  protected:
    TavrionctlTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrionctl-XXXXXX").string();
        directory = ::mkdtemp(pattern.data());
    }
    ~TavrionctlTest() override { std::filesystem::remove_all(directory); }

    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::filesystem::path data() const { return directory / "data"; }
    std::filesystem::path exportFile() const { return directory / "Library.xml"; }

    CommandRun run(const std::string& arguments,
                   const std::string& environment = "TZ=UTC LC_ALL=C") const {
        const std::string out = (directory / "out").string();
        const std::string err = (directory / "err").string();
        const std::string command = "env XDG_CACHE_HOME='" + (directory / "cache").string() + "' " +
                                    environment + " '" TAVRIONCTL "' --data-dir '" +
                                    data().string() + "' " + arguments + " >'" + out + "' 2>'" +
                                    err + "' </dev/null";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(err)};
    }
    struct Track {
        int id = 1;
        std::string name;
        int plays = 0;
        std::string lastPlayed;
        int milliseconds = 180000;
    };
    void writeExport(const std::vector<Track>& tracks) const {
        std::ofstream file(exportFile());
        file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
                "version=\"1.0\"><dict><key>Tracks</key><dict>\n";
        for (const Track& track : tracks) {
            file << "<key>" << track.id << "</key><dict><key>Track ID</key><integer>" << track.id
                 << "</integer><key>Name</key><string>" << track.name
                 << "</string><key>Artist</key><string>Band</string>"
                 << "<key>Album</key><string>Album</string><key>Total Time</key><integer>"
                 << track.milliseconds << "</integer><key>Play Count</key><integer>" << track.plays
                 << "</integer>";
            if (!track.lastPlayed.empty()) {
                file << "<key>Play Date UTC</key><date>" << track.lastPlayed << "</date>";
            }
            file << "<key>Persistent ID</key><string>" << std::string(15, '0') << track.id
                 << "</string></dict>\n";
        }
        file << "</dict><key>Playlists</key><array/></dict></plist>\n";
    }
    void useExport() const {
        const CommandRun used =
            run("--quiet library use music-xml '" + exportFile().string() + "'");
        ASSERT_EQ(used.status, 0) << used.err;
    }
    std::size_t safetyCopies() const {
        std::size_t copies = 0;
        for (const auto& entry : std::filesystem::directory_iterator(data() / "backups")) {
            copies += entry.path().extension() == ".sqlite" ? 1 : 0;
        }
        return copies;
    }
    /// As the program itself makes it.
    void makeDataDirectory() const {
        std::filesystem::create_directories(data());
        std::filesystem::permissions(data(), std::filesystem::perms::owner_all);
    }
    /// A file of the data directory that only its user may look at.
    void writeData(const char* name, const std::string& content) const {
        std::ofstream(data() / name) << content;
        std::filesystem::permissions(data() / name, std::filesystem::perms::owner_read |
                                                        std::filesystem::perms::owner_write);
    }
    static void expectOneLine(const CommandRun& result) {
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_TRUE(result.err.starts_with("tavrionctl: ")) << result.err;
        EXPECT_TRUE(result.out.empty()) << result.out;
    }

    std::filesystem::path directory;
};

TEST_F(TavrionctlTest, theRoundFromTheLibraryToThePlays) {
    writeExport({{1, "One", 3, "2026-02-28T10:00:00Z"},
                 {2, "Two", 1, "2026-02-28T11:00:00Z"},
                 {3, "Never", 0, ""}});
    const CommandRun used = run("--json library use music-xml '" + exportFile().string() + "'");
    ASSERT_EQ(used.status, 0) << used.err;
    EXPECT_EQ(used.value(), (json{{"kind", "music-xml"},
                                  {"location", exportFile().string()},
                                  {"songs", 3},
                                  {"playlists", 0},
                                  {"canWriteLikes", false},
                                  {"canWritePlaylists", false},
                                  {"canPlay", false},
                                  {"duplicateIdentifiers", json::array()}}));
    EXPECT_EQ(run("--json library status").value(), used.value());
    const json first = run("--json --now 2026-03-01T12:00:00Z scan --since all").value();
    EXPECT_EQ(first["songsMatched"], 2);
    EXPECT_EQ(first["historiesCreated"], 2);
    EXPECT_EQ(first["eventsCreated"], 2);
    EXPECT_EQ(first["scanDate"],
              (json{{"iso", "2026-03-01T12:00:00.000Z"}, {"reference", 794059200}}));
    EXPECT_EQ(first["since"]["iso"], "0001-01-01T00:00:00.000Z");
    writeExport({{1, "One", 5, "2026-03-01T14:00:00Z"},
                 {2, "Two", 1, "2026-02-28T11:00:00Z"},
                 {3, "Never", 0, ""}});
    const json second = run("--json --now 2026-03-01T15:00:00.25Z scan").value();
    EXPECT_EQ(second["eventsCreated"], 2);
    EXPECT_EQ(second["historiesCreated"], 0);
    EXPECT_EQ(second["since"]["iso"], "2026-03-01T00:00:00.000Z")
        << "never before the day of the installation";
    const json plays = run("--json plays").value();
    ASSERT_EQ(plays.size(), 4U);
    EXPECT_EQ(plays[0]["eventDate"]["iso"], "2026-03-01T14:00:00.000Z");
    EXPECT_EQ(plays[0]["isInterpolated"], false);
    EXPECT_EQ(plays[1]["eventDate"]["iso"], "2026-03-01T13:00:00.000Z");
    EXPECT_EQ(plays[1]["isInterpolated"], true);
    EXPECT_EQ(plays[3], (json{{"id", plays[3]["id"]},
                              {"eventDate", plays[3]["eventDate"]},
                              {"isInterpolated", false},
                              {"historyID", plays[0]["historyID"]},
                              {"title", "One"},
                              {"artist", "Band"},
                              {"albumID", "Band\u2014\u2014Album"},
                              {"genre", nullptr},
                              {"duration", 180.0}}));
    const std::string song = plays[0]["historyID"];
    EXPECT_EQ(run("--json plays --song " + song).value().size(), 3U);
    EXPECT_EQ(run("--json plays --range 2026-02-28..2026-02-28").value().size(), 2U);
    EXPECT_EQ(run("--json --now 2026-03-01T20:00:00Z plays --range today").value().size(), 2U);
    const json histories = run("--json histories").value();
    ASSERT_EQ(histories.size(), 2U);
    EXPECT_EQ(histories[0]["id"], song);
    EXPECT_EQ(histories[0]["plays"], 3);
    EXPECT_EQ(histories[0]["playCount"], 5);
    EXPECT_EQ(histories[0]["songPersistentID"], 1);
    EXPECT_EQ(histories[0]["libraryID"], "0000000000000001");
    EXPECT_EQ(histories[0]["lastEventDate"]["reference"], 794066400);
    EXPECT_EQ(histories[0]["excludeFromTrends"], false);
}

TEST_F(TavrionctlTest, textIsForPeople) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    const CommandRun scan = run("--now 2026-03-01T12:00:00Z scan --since all");
    EXPECT_NE(scan.out.find("1 new plays"), std::string::npos) << scan.out;
    const CommandRun plays = run("plays", "TZ=America/New_York LC_ALL=C");
    EXPECT_TRUE(plays.out.starts_with("2026-02-28 05:00:00")) << plays.out;
    EXPECT_NE(run("histories").out.find("One"), std::string::npos);
    EXPECT_NE(run("library songs").out.find("One"), std::string::npos);
    EXPECT_NE(run("library status").out.find("1 songs"), std::string::npos);
}

TEST_F(TavrionctlTest, aScanThatMatchedNothingNamesSinceAll) {
    writeExport({{1, "One", 1, "2020-01-01T10:00:00Z"}});
    useExport();
    const CommandRun scan = run("--now 2026-03-01T12:00:00Z --json scan");
    EXPECT_EQ(scan.status, 0);
    EXPECT_EQ(scan.value()["songsMatched"], 0);
    EXPECT_NE(scan.err.find("--since all"), std::string::npos) << scan.err;
    EXPECT_NE(scan.err.find("2026-03-01 00:00:00"), std::string::npos) << scan.err;
}

TEST_F(TavrionctlTest, suspectPlaysAreKeptOrReducedAsAsked) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    writeExport({{1, "One", 9, "2026-03-01T13:00:00Z"}});
    const json scan =
        run("--json --now 2026-03-01T14:00:00Z scan --suspects keep-most-recent").value();
    EXPECT_EQ(scan["suspectTitles"], json::array({"One"}));
    EXPECT_EQ(scan["eventsCreated"], 1);
    EXPECT_EQ(run("--json plays").value().size(), 2U);
    writeExport({{1, "One", 19, "2026-03-01T15:00:00Z"}});
    EXPECT_EQ(run("--json --now 2026-03-01T16:00:00Z scan").value()["eventsCreated"], 10)
        << "off a terminal all are kept";
}

TEST_F(TavrionctlTest, restoreMovesTheInstallationToTheStartOfTheYear) {
    writeExport({{1, "One", 1, "2020-01-01T10:00:00Z"}});
    useExport();
    EXPECT_EQ(run("--json --now 2026-03-01T12:00:00Z scan --restore").value()["eventsCreated"], 1);
    for (const char* const key :
         {"com.oskelvane.Nerinda.installationDate", "com.oskelvane.Nerinda.awardsScanDate"}) {
        EXPECT_EQ(run(std::string("--json defaults read ") + key).value()["iso"],
                  "2026-01-01T00:00:00.000Z")
            << key;
    }
}

TEST_F(TavrionctlTest, songsShowEveryPropertyUnderItsName) {
    writeExport({{1, "One \xE2\x80\x9C&amp;\xE2\x80\x9D", 7, "2026-02-28T10:00:00Z"}});
    useExport();
    const json songs = run("--json library songs").value();
    ASSERT_EQ(songs.size(), 1U);
    EXPECT_EQ(songs[0]["title"], "One \xE2\x80\x9C&\xE2\x80\x9D");
    EXPECT_EQ(songs[0]["albumArtist"], "Band");
    EXPECT_EQ(songs[0]["playCount"], 7);
    EXPECT_EQ(songs[0]["playbackDuration"], 180.0);
    EXPECT_EQ(songs[0]["lastPlayedDate"]["iso"], "2026-02-28T10:00:00.000Z");
    EXPECT_EQ(songs[0]["dateAdded"], nullptr);
    EXPECT_EQ(songs[0]["persistentID"], 1);
    EXPECT_EQ(songs[0]["existsInLibrary"], true);
}

TEST_F(TavrionctlTest, withoutALibraryAScanSaysHowToChooseOne) {
    const CommandRun scan = run("scan");
    EXPECT_EQ(scan.status, 1);
    expectOneLine(scan);
    EXPECT_NE(scan.err.find("library use"), std::string::npos);
    EXPECT_EQ(run("--json library status").value()["kind"], nullptr);
    EXPECT_EQ(run("--json plays").value(), json::array());
    EXPECT_EQ(run("--json histories").value(), json::array());
}

TEST_F(TavrionctlTest, aBrokenExportIsReportedWithItsLineAndTheChosenLibraryStays) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    const std::filesystem::path broken = directory / "broken.xml";
    std::ofstream(broken) << "<?xml version=\"1.0\"?>\n<plist><dict>\n<key>Tracks</key></array>\n";
    const CommandRun used = run("library use music-xml '" + broken.string() + "'");
    EXPECT_EQ(used.status, 1);
    expectOneLine(used);
    EXPECT_NE(used.err.find("broken.xml"), std::string::npos) << used.err;
    EXPECT_NE(used.err.find("line 3"), std::string::npos) << used.err;
    EXPECT_EQ(run("--json library status").value()["location"], exportFile().string());
    const CommandRun unknown = run("library use nothing x");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.err.find("music-xml"), std::string::npos)
        << "an unknown kind says which there are";
}

TEST_F(TavrionctlTest, anotherLibraryOverExistingRecordsWarnsAndMakesASafetyCopy) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}, {2, "One", 1, "2026-02-28T11:00:00Z"}});
    const CommandRun first = run("library use music-xml '" + exportFile().string() + "'");
    EXPECT_NE(first.err.find("2 songs share title and duration"), std::string::npos) << first.err;
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    const std::filesystem::path other = directory / "Other.xml";
    std::filesystem::copy_file(exportFile(), other);
    const CommandRun second =
        run("--now 2026-03-02T12:00:00Z library use music-xml '" + other.string() + "'");
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_NE(second.err.find("Safety copy"), std::string::npos) << second.err;
    EXPECT_EQ(safetyCopies(), 1U);
    EXPECT_FALSE(std::filesystem::exists(data() / "library.json.new"));
    const CommandRun again = run("library use music-xml '" + other.string() + "'");
    EXPECT_EQ(again.err.find("Safety copy"), std::string::npos) << again.err;
    EXPECT_EQ(safetyCopies(), 1U) << "the same library again is no change";
    run("--quiet library use music-xml '" + exportFile().string() + "'");
    EXPECT_EQ(safetyCopies(), 2U);
}

TEST_F(TavrionctlTest, forgettingTheLibraryKeepsTheRecords) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    EXPECT_EQ(run("--json library forget").value(), json::object());
    EXPECT_EQ(run("--json library status").value()["kind"], nullptr);
    EXPECT_EQ(run("--json plays").value().size(), 1U);
}

TEST_F(TavrionctlTest, aStoreThatIsNotOursIsReportedInOneLineAndStaysAsItIs) {
    makeDataDirectory();
    const std::filesystem::path store = data() / "Nerinda.sqlite";
    writeData("Nerinda.sqlite", std::string(3000, 'x'));
    for (const char* const command : {"plays", "histories", "--json plays"}) {
        const CommandRun result = run(command);
        EXPECT_EQ(result.status, 1) << command;
        expectOneLine(result);
        EXPECT_NE(result.err.find(store.string()), std::string::npos);
    }
    EXPECT_EQ(contentOf(store), std::string(3000, 'x'));
}

TEST_F(TavrionctlTest, aNewerOrTruncatedStoreIsReportedInOneLineAndStaysAsItIs) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    const std::filesystem::path store = data() / "Nerinda.sqlite";
    const std::string whole = contentOf(store);
    std::string newer = whole;
    constexpr std::size_t userVersionOffset = 60;
    newer.replace(userVersionOffset, 4, std::string("\0\0\0\x63", 4));
    for (const std::string& content :
         {newer, whole.substr(0, whole.size() - 5000), std::string()}) {
        std::ofstream(store, std::ios::binary) << content;
        for (const char* const command : {"plays", "scan"}) {
            const CommandRun result = run(command);
            EXPECT_EQ(result.status, 1) << command;
            expectOneLine(result);
        }
        EXPECT_EQ(contentOf(store), content);
    }
}

TEST_F(TavrionctlTest, aStoreInUseByAnotherProcessEndsWithThree) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    std::FILE* lock = std::fopen((data() / "lock").c_str(), "r+");
    ASSERT_NE(lock, nullptr);
    ASSERT_EQ(::flock(::fileno(lock), LOCK_EX | LOCK_NB), 0);
    const CommandRun scan = run("scan");
    EXPECT_EQ(scan.status, 3);
    expectOneLine(scan);
    EXPECT_EQ(run("--json plays").status, 0) << "readers work beside a writer";
    std::fclose(lock);
    EXPECT_EQ(run("scan --since all").status, 0);
}

TEST_F(TavrionctlTest, defaultsOfEveryTypeAreWrittenAndRead) {
    const auto written = [&](const std::string& arguments) {
        EXPECT_EQ(run("defaults write key " + arguments).status, 0) << arguments;
        return run("--json defaults read key").value();
    };
    EXPECT_EQ(written("-bool true"), json(true));
    EXPECT_EQ(written("-int -5"), json(-5));
    EXPECT_EQ(written("-string 'a text'"), json("a text"));
    EXPECT_EQ(written("-date 2026-03-01T13:00:00.25+01:00")["reference"], 794059200.25);
    EXPECT_EQ(written("-array one two"), json::array({"one", "two"}));
    EXPECT_EQ(written("-array '[1,true]'"), json::array({1, true}));
    EXPECT_EQ(written("-data AP8B"), json("AP8B"));
    EXPECT_EQ(written("-dict '{\"browse.sortType\": 3}'"), (json{{"browse.sortType", 3}}));
    EXPECT_TRUE(run("--json defaults read").value().contains("key"));
    EXPECT_EQ(run("defaults delete key").status, 0);
    EXPECT_EQ(run("--json defaults read key").value(), json());
    EXPECT_EQ(run("defaults read key").status, 1);
    for (const char* const wrong :
         {"key -int x", "key -int 12abc", "key -bool maybe", "key -date yesterday", "key -data !",
          "key -dict []", "key -nothing x", "key", "key -array '[null]'",
          "key -dict '{\"a\": [[null]]}'"}) {
        EXPECT_EQ(run(std::string("defaults write ") + wrong).status, 2) << wrong;
    }
}

TEST_F(TavrionctlTest, valuesTooDeepForTheFileOfDefaultsAreRefused) {
    const auto nested = [](std::size_t levels) {
        return "'" + std::string(levels, '[') + std::string(levels, ']') + "'";
    };
    EXPECT_EQ(run("defaults write key -array " + nested(100)).status, 0);
    EXPECT_EQ(run("--json defaults read key").status, 0);
    for (const std::size_t levels : {101U, 300U, 50000U}) {
        const CommandRun result = run("defaults write key -array " + nested(levels));
        EXPECT_EQ(result.status, 2) << levels;
        EXPECT_LT(result.err.size(), 500U) << "the line shows a part of what was given";
    }
    EXPECT_EQ(run("--json defaults read key").status, 0);
}

TEST_F(TavrionctlTest, wrongUsageEndsWithTwo) {
    for (const char* const wrong :
         {"", "nothing", "scan --since never", "--now yesterday plays", "plays --range soon",
          "plays --range 2026-02-30..2026-03-01", "plays --range 2026-02-30..2026-03-31",
          "plays --range 2026-01-01..2026-02-29", "plays --range 2026-04-31..2026-05-31", "library",
          "plays extra"}) {
        const CommandRun result = run(wrong);
        EXPECT_EQ(result.status, 2) << wrong;
        expectOneLine(result);
    }
    EXPECT_EQ(run("plays --song PlaybackHistory/99").status, 1);
}

TEST_F(TavrionctlTest, helpAndVersionAreDone) {
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("scan --help").status, 0);
    const CommandRun version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.starts_with("tavrionctl ")) << version.out;
}

TEST_F(TavrionctlTest, outputThatCantBeWrittenIsAFailure) {
    const std::string command = "'" TAVRIONCTL "' --data-dir '" + data().string() +
                                "' --json defaults read >/dev/full 2>'" +
                                (directory / "err").string() + "'";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_NE(contentOf(directory / "err").find("output"), std::string::npos);
}

TEST_F(TavrionctlTest, theDataDirectoryIsMadeForItsUserAlone) {
    ASSERT_EQ(run("--json defaults read").status, 0);
    EXPECT_EQ(std::filesystem::status(data()).permissions(), std::filesystem::perms::owner_all);
    std::ofstream(directory / "file") << "x";
    const std::string command =
        "'" TAVRIONCTL "' --data-dir '" + (directory / "file").string() + "' plays 2>/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
}

TEST_F(TavrionctlTest, anUnchangedLibraryIsNotReadAgain) {
    writeExport({{.id = 1, .name = "One", .plays = 1, .lastPlayed = "2026-03-01T10:00:00Z"}});
    ASSERT_EQ(run("library use music-xml '" + exportFile().string() + "'").status, 0);
    // The same file with the same size and time: only a kept snapshot can still say "One".
    const auto time = std::filesystem::last_write_time(exportFile());
    std::string text = contentOf(exportFile());
    text.replace(text.find("One"), 3, "Two");
    std::fstream(exportFile(), std::ios::in | std::ios::out | std::ios::binary) << text;
    std::filesystem::last_write_time(exportFile(), time);
    EXPECT_EQ(run("--json library songs").value()[0]["title"], "One");
    std::filesystem::last_write_time(exportFile(), time + std::chrono::seconds(1));
    EXPECT_EQ(run("--json library songs").value()[0]["title"], "Two");
}

TEST_F(TavrionctlTest, awardsThatWaitedBeforeAScanAreNotItsOwn) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    run("defaults write pendingAchievementIdentifiers -array rv_award.earlier");
    const json scan = run("--json --now 2026-03-01T12:00:00Z scan --since all").value();
    EXPECT_EQ(scan["awardsEarned"], json::array());
    EXPECT_EQ(run("--json defaults read pendingAchievementIdentifiers").value(),
              json::array({"rv_award.earlier"}));
}

TEST_F(TavrionctlTest, songsOfOneIdentifierAreCountedAndNamed) {
    const auto track = [](int id, const std::string& name, const std::string& location) {
        return fmt::format(
            "<key>{0}</key><dict><key>Track ID</key><integer>{0}</integer>"
            "<key>Name</key><string>{1}</string><key>Artist</key>"
            "<string>Band</string><key>Total Time</key><integer>{0}000</integer>"
            "<key>Play Count</key><integer>1</integer><key>Play Date UTC</key>"
            "<date>2026-02-28T10:00:0{0}Z</date><key>Persistent ID</key>"
            "<string>00000000000000AA</string><key>Location</key>"
            "<string>{2}</string></dict>\n",
            id, name, location);
    };
    std::ofstream(exportFile()) << "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict>"
                                   "<key>Tracks</key><dict>\n"
                                << track(1, "First", "file:///a") << track(2, "Second", "file:///b")
                                << track(3, "Again", "file:///a")
                                << "</dict><key>Playlists</key><array/></dict></plist>\n";
    const CommandRun used = run("library use music-xml '" + exportFile().string() + "'");
    ASSERT_EQ(used.status, 0) << used.err;
    EXPECT_NE(used.out.find("2 songs came with the identifier of another song"), std::string::npos)
        << used.out;
    EXPECT_NE(used.out.find("Second by Band: known by"), std::string::npos) << used.out;
    EXPECT_NE(used.out.find("Again by Band: left out"), std::string::npos) << used.out;
    const json status = run("--json library status").value();
    EXPECT_EQ(status["songs"], 2);
    ASSERT_EQ(status["duplicateIdentifiers"].size(), 2U);
    const json second = status["duplicateIdentifiers"][0];
    EXPECT_EQ(second["persistentID"], 0xAA);
    EXPECT_EQ(second["title"], "Second");
    EXPECT_EQ(second["artist"], "Band");
    EXPECT_EQ(second["isLeftOut"], false);
    const json again = status["duplicateIdentifiers"][1];
    EXPECT_EQ(again["isLeftOut"], true);
    EXPECT_EQ(again["ownPersistentID"], nullptr);
    const json songs = run("--json library songs").value();
    EXPECT_EQ(songs[1]["title"], "Second");
    EXPECT_EQ(songs[1]["persistentID"], second["ownPersistentID"]);
    // Neither in records do the two become one.
    EXPECT_EQ(run("--json --now 2026-03-01T12:00:00Z scan --since all").value()["historiesCreated"],
              2);
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    EXPECT_EQ(run("--json histories").value().size(), 2U);
}

TEST_F(TavrionctlTest, aDirectoryThatOthersCouldLookIntoIsClosedAndTheUserIsReported) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    using std::filesystem::perms;
    std::filesystem::permissions(data(), perms::owner_all | perms::others_read);
    std::filesystem::permissions(data() / "library.json", perms::owner_read | perms::group_read);
    const CommandRun status = run("--json library status");
    EXPECT_EQ(status.status, 0);
    EXPECT_EQ(status.value()["songs"], 1);
    EXPECT_NE(status.err.find("other users could look into the data directory"), std::string::npos);
    EXPECT_NE(status.err.find("other users could read files"), std::string::npos) << status.err;
    EXPECT_EQ(std::filesystem::status(data()).permissions(), perms::owner_all);
    EXPECT_EQ(std::filesystem::status(data() / "library.json").permissions(), perms::owner_read);
    EXPECT_EQ(run("--json library status").err, "");
}

TEST_F(TavrionctlTest, eachVariableOfTheLocaleDecidesItsOwnMatter) {
    writeExport(
        {{1, "Zebra", 1, "2026-02-28T10:00:00Z"}, {2, "\xC3\x84ra", 1, "2026-02-28T11:00:00Z"}});
    useExport();
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    const auto firstSong = [&](const std::string& environment) {
        return run("--json browse --group songs --sort alphabetical", "TZ=UTC " + environment)
            .value()["items"][0]["title"];
    };
    EXPECT_EQ(firstSong("LC_ALL= LANG=de_DE.UTF-8"), "\xC3\x84ra");
    EXPECT_EQ(firstSong("LC_ALL= LANG=de_DE.UTF-8 LC_COLLATE=sv_SE.UTF-8"), "Zebra");
    EXPECT_EQ(firstSong("LC_ALL=de_DE.UTF-8 LC_COLLATE=sv_SE.UTF-8"), "\xC3\x84ra");
    EXPECT_EQ(firstSong("LC_ALL= LANG=sv_SE.UTF-8 LC_COLLATE=de_DE.UTF-8 LC_TIME=sv_SE.UTF-8"),
              "\xC3\x84ra");
    const auto day = [&](const std::string& environment) {
        return run("--json --now 2026-04-01T12:00:00Z history --range 2026-02-01..2026-03-01",
                   "TZ=UTC " + environment)
            .value()["sections"][0]["title"]
            .get<std::string>();
    };
    EXPECT_EQ(day("LC_ALL= LANG=de_DE.UTF-8"), "28.02.2026");
    EXPECT_EQ(day("LC_ALL= LANG=en_US.UTF-8 LC_TIME=de_DE.UTF-8"), "28.02.2026");
    EXPECT_EQ(day("LC_ALL= LANG=de_DE.UTF-8 LC_TIME=en_US.UTF-8"), "Feb 28, 2026");
}

/// The rows of a table and the numbers of its records part as soon as a record has gone.
TEST_F(TavrionctlTest, playsAreFoundByTheirSongAlsoAfterAnotherSongWasDeleted) {
    makeDataDirectory();
    std::string kept;
    {
        RecordingEnvironment environment;
        double instant = 1000;
        for (const char* const title : {"Gone", "Kept", "Also kept"}) {
            PlaybackHistory song = environment.makeHistory(title, 100);
            environment.makePlay(song, ++instant);
            if (std::string(title) == "Kept") {
                environment.makePlay(song, 2000);
                kept = song.objectID().text(*nerindaModel());
            }
        }
        environment.saveMain();
        environment.main().deleteObject(environment.history("Gone"));
        environment.saveMain();
        environment.wiring.closeStore();
        std::filesystem::copy_file(environment.storeFile(), data() / "Nerinda.sqlite");
    }
    const json plays = run("--json plays --song " + kept).value();
    ASSERT_EQ(plays.size(), 2U);
    for (const json& play : plays) {
        EXPECT_EQ(play["title"], "Kept");
        EXPECT_EQ(play["historyID"], kept);
    }
    std::multiset<std::string> titles;
    for (const json& play : run("--json plays").value()) {
        titles.insert(play["title"].is_null() ? "none" : play["title"].get<std::string>());
    }
    EXPECT_EQ(titles.count("Kept"), 2U);
    EXPECT_EQ(titles.count("Also kept"), 1U);
    EXPECT_EQ(titles.count("Gone"), 0U);
    const CommandRun gone = run("plays --song PlaybackHistory/1");
    EXPECT_EQ(gone.status, 1);
}

/// The superuser may write everywhere, so that the command runs as nobody.
TEST_F(TavrionctlTest, aCopyThatCanOnlyBeReadIsReadByAnotherUserToo) {
    writeExport({{1, "One", 1, "2026-02-28T10:00:00Z"}});
    useExport();
    run("--quiet --now 2026-03-01T12:00:00Z scan --since all");
    const std::string asNobody =
        "TZ=UTC LC_ALL=C setpriv --reuid=65534 --regid=65534 --clear-groups";
    std::filesystem::permissions(directory, std::filesystem::perms(0755));
    const bool isSuperuser = ::geteuid() == 0;
    if (isSuperuser &&
        std::system(("env " + asNobody + " test -x '" TAVRIONCTL "'").c_str()) != 0) {
        GTEST_SKIP() << "setpriv is missing, or nobody may not run the program";
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data())) {
        std::filesystem::permissions(entry.path(),
                                     std::filesystem::perms(entry.is_directory() ? 0555 : 0444));
    }
    std::filesystem::permissions(data(), std::filesystem::perms(0555));
    const std::string environment = isSuperuser ? asNobody : "TZ=UTC LC_ALL=C";
    const auto before = std::filesystem::last_write_time(data());
    const CommandRun plays = run("--quiet --json plays", environment);
    ASSERT_EQ(plays.status, 0) << plays.err;
    EXPECT_EQ(plays.value().size(), 1U);
    const CommandRun history =
        run("--quiet --json --now 2026-03-01T12:00:00Z history --range 2026-02-01..2026-03-01",
            environment);
    ASSERT_EQ(history.status, 0) << history.err;
    EXPECT_EQ(history.value()["songs"], 1);
    EXPECT_EQ(std::filesystem::last_write_time(data()), before);
    std::filesystem::permissions(data(), std::filesystem::perms(0755));
}

}  // namespace
}  // namespace tavrion
