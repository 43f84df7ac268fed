// tavrionctl history: the page of a range as JSON and for people.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "platform/foundation/DisplayWidth.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Two songs were played on the first of March, one of them twice more by the evening of the
/// second.
class HistoryCommandTest : public testing::Test {
  protected:
    HistoryCommandTest() {
        publish(1, "2026-03-01T10:00:00Z");
        run({"library", "use", "music-xml", file().string()});
        run({"--now", "2026-03-01T12:00:00Z", "scan", "--since", "all"});
        publish(3, "2026-03-02T10:00:00Z");
        run({"--now", "2026-03-02T12:00:00Z", "scan"});
    }
    std::filesystem::path file() const { return folder.path() / "Library.xml"; }
    void publish(int shortPlays, const std::string& shortDate, bool hasLong = true) const {
        std::ofstream out(file());
        out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
               "version=\"1.0\"><dict><key>Tracks</key><dict>\n";
        writeTrack(out, 1, "Short", 100000, shortPlays, shortDate);
        if (hasLong) {
            writeTrack(out, 2, "長い歌", 1000000, 1, "2026-03-01T11:00:00Z");
        }
        writeTrack(out, 3, "Never", 5000, 0, "2026-03-01T11:30:00Z");
        out << "</dict><key>Playlists</key><array/></dict></plist>\n";
    }
    static void writeTrack(std::ofstream& out, int id, const std::string& name, int milliseconds,
                           int plays, const std::string& date) {
        out << "<key>" << id << "</key><dict><key>Track ID</key><integer>" << id
            << "</integer><key>Name</key><string>" << name << "</string><key>Artist</key><string>"
            << name << " Band</string><key>Album</key><string>" << name
            << " Album</string><key>Genre</key><string>Pop</string><key>Total Time</key><integer>"
            << milliseconds << "</integer><key>Play Count</key><integer>" << plays
            << "</integer><key>Play Date UTC</key><date>" << date
            << "</date><key>Persistent ID</key><string>" << std::string(15, '0') << id
            << "</string></dict>\n";
    }
    ProgramEnd run(std::vector<std::string> command, const std::string& locale = "C") const {
        command.insert(command.begin(), {"--data-dir", (folder.path() / "data").string()});
        return ProgramRun(
                   TAVRIONCTL, command, folder.path(),
                   {{"XDG_CACHE_HOME", (folder.path() / "cache").string()}, {"LC_ALL", locale}})
            .wait();
    }
    ProgramEnd runHistory(std::vector<std::string> options, const std::string& locale = "C") const {
        options.insert(options.begin(), {"--now", "2026-03-02T20:00:00Z", "history"});
        return run(std::move(options), locale);
    }
    json history(std::vector<std::string> options) const {
        options.emplace_back("--json");
        const ProgramEnd end = runHistory(std::move(options));
        EXPECT_TRUE(end.isDone()) << end.told();
        return end.isDone() ? json::parse(end.out) : json();
    }
    /// The bars that are not empty.
    static json barsOf(const json& page) {
        json bars = json::object();
        for (const json& bar : page["bars"]) {
            if (bar["seconds"] != 0) {
                bars[std::to_string(bar["x"].get<int>())] = bar["seconds"];
            }
        }
        return bars;
    }

    const TestFolder folder;
};

TEST_F(HistoryCommandTest, aDayHasItsHoursAndItsPlays) {
    const json page = history({});
    EXPECT_EQ(page["interval"]["start"]["iso"], "2026-03-02T00:00:00.000Z");
    EXPECT_EQ(page["interval"]["end"]["iso"], "2026-03-02T23:59:59.000Z");
    EXPECT_EQ(page["songs"], 1);
    EXPECT_EQ(page["songsText"], "1");
    EXPECT_EQ(page["caption"], "Minutes Listened");
    EXPECT_EQ(page["form"], "hours");
    ASSERT_EQ(page["bars"].size(), 24U);
    EXPECT_EQ(page["bars"][0], json::parse(R"({"x":0,"label":"","seconds":0,"date":null})"));
    EXPECT_EQ(page["bars"][10]["label"], "10 AM");
    ASSERT_EQ(page["sections"].size(), 1U);
    EXPECT_EQ(page["sections"][0]["title"], "Today");
    EXPECT_EQ(page["sections"][0]["date"]["iso"], "2026-03-02T23:59:59.000Z");
    const json newest = page["sections"][0]["plays"][0];
    EXPECT_EQ(newest["eventDate"]["iso"], "2026-03-02T10:00:00.000Z");
    EXPECT_EQ(newest["isInterpolated"], false);
    EXPECT_EQ(newest["title"], "Short");
    EXPECT_EQ(newest["artist"], "Short Band");
    EXPECT_EQ(newest["duration"], 100);
    EXPECT_EQ(newest["property"], "Today at 10:00\u202fAM");
    double seconds = 0;
    for (const json& bar : page["bars"]) {
        seconds += bar["seconds"].get<double>();
    }
    EXPECT_EQ(page["seconds"], seconds);
    EXPECT_EQ(seconds, 100.0 * static_cast<double>(page["sections"][0]["plays"].size()));
}

TEST_F(HistoryCommandTest, lifetimeHasItsDaysTheNewestFirst) {
    const json page = history({"--range", "lifetime"});
    EXPECT_EQ(page["form"], "days");
    ASSERT_EQ(page["bars"].size(), 2U);
    EXPECT_EQ(page["bars"][0]["label"], "Yesterday");
    EXPECT_EQ(page["bars"][0]["date"]["iso"], "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(page["songs"], 2);
    EXPECT_EQ(page["seconds"], 1300);
    EXPECT_EQ(page["secondsText"], "21");
    ASSERT_EQ(page["sections"].size(), 2U);
    EXPECT_EQ(page["sections"][0]["title"], "Today");
    EXPECT_EQ(page["sections"][1]["title"], "Yesterday");
    std::size_t estimates = 0;
    for (const json& section : page["sections"]) {
        for (const json& play : section["plays"]) {
            const bool isEstimate = play["isInterpolated"];
            EXPECT_EQ(play["property"].get<std::string>().ends_with("*"), isEstimate) << play;
            estimates += isEstimate ? 1 : 0;
        }
    }
    EXPECT_EQ(estimates, 1U);
}

TEST_F(HistoryCommandTest, theYearHasItsMonthsAndABarListsItsMonth) {
    const json whole = history({"--range", "year"});
    EXPECT_EQ(whole["form"], "months");
    ASSERT_EQ(whole["bars"].size(), 12U);
    EXPECT_EQ(whole["bars"][11]["label"], "Dec");
    EXPECT_EQ(barsOf(whole)["2"], 1300);
    EXPECT_TRUE(barsOf(whole).contains("1")) << "the first of March counts for February, too";
    const json march = history({"--range", "year", "--bar", "2"});
    EXPECT_EQ(march["bars"], whole["bars"]);
    ASSERT_EQ(march["sections"].size(), 1U);
    EXPECT_EQ(march["sections"][0]["title"], "March 2026");
    EXPECT_EQ(march["sections"][0]["date"]["iso"], "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(march["sections"][0]["plays"].size(), 4U);
    EXPECT_EQ(march["seconds"], 1300);
    const json february = history({"--range", "year", "--bar", "1"});
    EXPECT_EQ(february["sections"], json::array()) << "it has only the shared day";
    EXPECT_EQ(february["songs"], 0);
}

TEST_F(HistoryCommandTest, aBarOfADayListsTheDay) {
    const json day = history({"--range", "2026-02-20..2026-03-02", "--bar", "9"});
    ASSERT_EQ(day["sections"].size(), 1U);
    EXPECT_EQ(day["sections"][0]["title"], "Yesterday");
    EXPECT_EQ(day["sections"][0]["date"]["iso"], "2026-03-01T00:00:00.000Z");
    for (const json& play : day["sections"][0]["plays"]) {
        EXPECT_THAT(play["eventDate"]["iso"].get<std::string>(), StartsWith("2026-03-01"));
    }
    EXPECT_EQ(day["seconds"], day["bars"][9]["seconds"]);
}

TEST_F(HistoryCommandTest, aBarThatCannotBeChosenIsReportedAndChangesNothing) {
    const std::vector<std::string> range{"--range", "past-week"};
    runHistory(range);
    const ProgramEnd empty = runHistory({"--range", "past-week", "--bar", "0"});
    EXPECT_TRUE(empty.isDone());
    EXPECT_EQ(empty.out, runHistory(range).out);
    EXPECT_EQ(empty.err, "bar 0 is empty, so that it can't be chosen\n");
    const ProgramEnd hour = runHistory({"--bar", "10"});
    EXPECT_EQ(hour.out, runHistory({}).out);
    EXPECT_EQ(hour.err, "the hours of a day can't be chosen\n");
    const ProgramEnd nothing = runHistory({"--range", "2020-01-01..2020-01-09", "--bar", "3"});
    EXPECT_TRUE(nothing.isDone());
    EXPECT_EQ(nothing.errorLines(), 1U) << nothing.told();
}

TEST_F(HistoryCommandTest, withoutARangeTheStoredOneHoldsAndOptionsAreNotStored) {
    history({"--range", "lifetime"});
    EXPECT_EQ(history({})["form"], "hours");
    run({"defaults", "write", "HistoryDateRangeObject", "-int", "3"});
    EXPECT_EQ(history({})["form"], "months");
    EXPECT_EQ(history({"--range", "2026-01-01..2026-12-31"})["form"], "days");
    EXPECT_EQ(history({})["form"], "months");
}

TEST_F(HistoryCommandTest, theHintAboutRangesIsGivenOnce) {
    const ProgramEnd first = runHistory({"--json"});
    EXPECT_THAT(first.err, StartsWith("Date Range: Tavrion begins recording"));
    EXPECT_EQ(first.errorLines(), 1U);
    EXPECT_TRUE(json::parse(first.out).is_object()) << "nothing else is on standard output";
    EXPECT_EQ(run({"--json", "defaults", "read", "OnboardingDateRange"}).out, "true\n");
    EXPECT_EQ(runHistory({}).err, "");
}

TEST_F(HistoryCommandTest, anEmptyRangeHasNoChartAndSaysWhatToDo) {
    const json page = history({"--range", "2020-01-01..2020-01-09"});
    EXPECT_EQ(page["sections"], json::array());
    EXPECT_EQ(page["bars"], json::array());
    EXPECT_EQ(page["songs"], 0);
    EXPECT_EQ(page["seconds"], 0);
    const ProgramEnd text = runHistory({"--range", "2020-01-01..2020-01-09"});
    EXPECT_EQ(text.out,
              "Jan 1, 2020 – Jan 9, 2020\n\nNothing was played in this time.\nChoose another with "
              "--range, or record plays with tavrionctl scan.\n");
}

TEST_F(HistoryCommandTest, peopleGetTotalsAChartAndTheDays) {
    const ProgramEnd end = runHistory({"--range", "lifetime"}, "C.UTF-8");
    ASSERT_TRUE(end.isDone()) << end.told();
    EXPECT_THAT(end.out, StartsWith("Lifetime\n2 Songs   21 Minutes Listened\n\n"));
    EXPECT_THAT(end.out, HasSubstr("█"));
    EXPECT_THAT(end.out, HasSubstr("\n        Yesterday     Today\n\nToday · "));
    EXPECT_THAT(end.out, HasSubstr("\n\nYesterday · "));
    EXPECT_THAT(end.out, HasSubstr("\n  11:00\u202fAM   長い歌 "));
    EXPECT_THAT(end.out, HasSubstr("M*  Short "));
    EXPECT_THAT(end.out, HasSubstr("\n\n* The time of this play is an estimate.\n"));
    EXPECT_THAT(end.out, Not(HasSubstr(" \n")));
    EXPECT_THAT(end.out, Not(HasSubstr("\033")));
}

TEST_F(HistoryCommandTest, columnsAreAlignedByTheWidthOfTheirLetters) {
    const ProgramEnd end = runHistory({"--range", "lifetime"}, "C.UTF-8");
    std::istringstream lines(end.out);
    std::size_t found = 0;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(displayWidth(line), 80U) << line;
        for (const char* artist : {"Short Band", "長い歌 Band"}) {
            if (const std::size_t place = line.find(artist); place != std::string::npos) {
                EXPECT_EQ(displayWidth(line.substr(0, place)), 54U) << line;
                ++found;
            }
        }
    }
    EXPECT_EQ(found, 4U);
}

TEST_F(HistoryCommandTest, aSongThatLeftTheLibraryShowsNoTime) {
    publish(3, "2026-03-02T10:00:00Z", false);
    EXPECT_THAT(runHistory({"--range", "lifetime"}).out, HasSubstr("\n             長い歌 "));
    const json page = history({"--range", "2026-03-01..2026-03-01"});
    EXPECT_EQ(page["sections"][0]["plays"][1]["title"], "長い歌");
    EXPECT_EQ(page["sections"][0]["plays"][1]["property"], nullptr);
}

TEST_F(HistoryCommandTest, withoutALibraryWhatIsRecordedIsStillShown) {
    runHistory({});
    run({"library", "forget"});
    const ProgramEnd end = runHistory({"--json", "--range", "lifetime"});
    ASSERT_TRUE(end.isDone()) << end.told();
    EXPECT_THAT(end.err, StartsWith("no music library is chosen"));
    EXPECT_EQ(end.errorLines(), 1U);
    const json page = json::parse(end.out);
    EXPECT_EQ(page["songs"], 2);
    EXPECT_EQ(page["seconds"], 1300);
    EXPECT_EQ(page["sections"][0]["plays"][0]["title"], "Short");
    EXPECT_EQ(page["sections"][0]["plays"][0]["property"], nullptr);
}

TEST_F(HistoryCommandTest, wrongOptionsAreOneLine) {
    for (const std::vector<std::string>& options : {std::vector<std::string>{"--range", "soon"},
                                                    {"--bar", "24"},
                                                    {"--bar", "-1"},
                                                    {"--bar", "last"}}) {
        const ProgramEnd end = runHistory(options);
        EXPECT_EQ(end.status, 2) << end.told();
        EXPECT_EQ(end.errorLines(), 1U) << end.told();
        EXPECT_TRUE(end.out.empty()) << end.told();
    }
}

TEST_F(HistoryCommandTest, itSavesNoRecords) {
    const auto before = contentOfFile(folder.path() / "data" / "Nerinda.sqlite");
    const std::string plays = run({"--json", "plays"}).out;
    history({"--range", "lifetime"});
    EXPECT_EQ(run({"--json", "plays"}).out, plays);
    EXPECT_EQ(contentOfFile(folder.path() / "data" / "Nerinda.sqlite"), before);
}

}  // namespace
}  // namespace tavrion
