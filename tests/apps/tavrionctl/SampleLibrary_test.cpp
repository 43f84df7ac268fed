// The program on the sample library: what a scan records is what the listener has truly heard.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "platform/foundation/NSCalendar.h"
#include "platform/testing/ManualClock.h"
#include "sources/sample/SampleListener.h"
#include "sources/sample/SampleSource.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

using nlohmann::json;

constexpr const char* zoneName = "Europe/Berlin";

class SampleLibraryTest : public testing::Test {
  protected:
    ProgramEnd run(const std::string& now, std::vector<std::string> command) const {
        std::vector<std::string> arguments{"--data-dir", data().string()};
        if (!now.empty()) {
            arguments.insert(arguments.end(), {"--now", now});
        }
        arguments.insert(arguments.end(), command.begin(), command.end());
        return ProgramRun(
                   TAVRIONCTL, arguments, folder.path(),
                   {{"TZ", zoneName}, {"XDG_CACHE_HOME", (folder.path() / "cache").string()}})
            .wait();
    }
    json value(const std::string& now, std::vector<std::string> command) const {
        command.insert(command.begin(), "--json");
        const ProgramEnd end = run(now, std::move(command));
        EXPECT_TRUE(end.isDone()) << end.told();
        return end.isDone() ? json::parse(end.out) : json();
    }
    static void expectOneLine(const ProgramEnd& end, const std::string& part) {
        EXPECT_EQ(end.status, 1) << end.told();
        EXPECT_EQ(end.errorLines(), 1U) << end.told();
        EXPECT_NE(end.err.find(part), std::string::npos) << end.told();
        EXPECT_TRUE(end.out.empty()) << end.told();
    }
    std::filesystem::path data() const { return folder.path() / "data"; }
    std::filesystem::path stateFile() const { return data() / "sample-library.json"; }

    const TestFolder folder;
};

NSDate instant(const std::string& text) {
    return dateFromIsoText(text).value();
}

TEST_F(SampleLibraryTest, isChosenByItsNumberOfSongs) {
    const std::string now = "2026-03-01T12:00:00Z";
    EXPECT_EQ(value(now, {"library", "use", "sample", "200"}),
              (json{{"kind", "sample"},
                    {"location", "200"},
                    {"songs", 200},
                    {"playlists", 9},
                    {"canWriteLikes", true},
                    {"canWritePlaylists", true},
                    {"canPlay", true},
                    {"duplicateIdentifiers", json::array()}}));
    EXPECT_EQ(value(now, {"library", "status"})["songs"], 200);
    EXPECT_EQ(value("", {"library", "status"})["songs"], 200) << "at the present, whenever that is";
    EXPECT_EQ(value(now, {"library", "songs"}).size(), 200U);
    EXPECT_GT(value(now, {"library", "songs", "--non-library"}).size(), 200U);
    EXPECT_EQ(value(now, {"library", "use", "sample"})["location"], "3000");
    EXPECT_EQ(value(now, {"library", "status"})["songs"], 3000);
    const ProgramEnd text = run(now, {"library", "status"});
    EXPECT_NE(text.out.find("3000 songs"), std::string::npos) << text.told();
}

TEST_F(SampleLibraryTest, aBadNumberIsReportedAndTheChosenLibraryStays) {
    value("", {"library", "use", "sample", "20"});
    for (const char* const wrong : {"0", "many", "2000001", "1.5", "20 "}) {
        expectOneLine(run("", {"library", "use", "sample", wrong}), "1 to 2000000");
    }
    EXPECT_EQ(value("", {"library", "status"})["location"], "20");
}

TEST_F(SampleLibraryTest, aFileOfThatNameIsNotTakenForTheNumber) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::ofstream(folder.path() / "30") << "x";
    std::filesystem::current_path(folder.path());
    const json used = value("", {"library", "use", "sample", "30"});
    std::filesystem::current_path(before);
    EXPECT_EQ(used["location"], "30");
}

TEST_F(SampleLibraryTest, theClockAloneMovesTheCountsAndNothingIsKept) {
    value("", {"library", "use", "sample", "300"});
    const json first = value("2026-03-01T12:00:00Z", {"library", "songs"});
    const json later = value("2026-03-04T12:00:00Z", {"library", "songs"});
    EXPECT_EQ(value("2026-03-01T12:00:00Z", {"library", "songs"}), first);
    std::int64_t risen = 0;
    ASSERT_EQ(first.size(), later.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        ASSERT_EQ(first[i]["persistentID"], later[i]["persistentID"]);
        risen +=
            later[i]["playCount"].get<std::int64_t>() - first[i]["playCount"].get<std::int64_t>();
    }
    EXPECT_GT(risen, 20);
    EXPECT_FALSE(std::filesystem::exists(stateFile()));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "cache"));
}

/// What a scan at each of these instants can learn of the listener.
class Expectation {
  public:
    explicit Expectation(std::uint32_t songs)
        : catalogue_(SampleSource::usualSeed, songs),
          listener_(catalogue_, NSTimeZone::timeZoneWithName(zoneName).value()) {}

    struct Scan {
        std::uint64_t histories = 0;
        std::uint64_t events = 0;
    };
    /// A song seen for the first time gives one play, whatever it was played before; the others
    /// give as many as they were truly played.
    Scan scanAt(NSDate now) {
        std::map<std::uint32_t, std::uint64_t> heard;
        for (const SamplePlay& play : listener_.playsBetween(last_, now)) {
            heard[play.song] += play.isWhole ? 1 : 0;
        }
        Scan scan;
        for (const auto& [song, plays] : heard) {
            if (plays > 0 && isSeen_.emplace(song, true).second) {
                ++scan.histories;
                ++scan.events;
            } else {
                scan.events += plays;
            }
        }
        last_ = now;
        return scan;
    }

  private:
    SampleCatalogue catalogue_;
    SampleListener listener_;
    std::map<std::uint32_t, bool> isSeen_;
    NSDate last_ = NSDate::distantPast();
};

TEST_F(SampleLibraryTest, aScanRecordsWhatWasTrulyHeard) {
    Expectation expectation(500);
    std::vector<std::string> instants;
    for (int day = 14; day < 24; ++day) {
        instants.push_back("2026-03-" + std::to_string(day) + "T20:15:00Z");
    }
    instants.insert(instants.end(), {"2026-03-25T20:00:00Z", "2026-03-29T01:30:00Z"});
    value(instants.front(), {"library", "use", "sample", "500"});
    std::uint64_t events = 0;
    std::uint64_t histories = 0;
    for (const std::string& now : instants) {
        const bool isFirst = now == instants.front();
        const json scan = value(now, isFirst ? std::vector<std::string>{"scan", "--since", "all"}
                                             : std::vector<std::string>{"scan"});
        const Expectation::Scan expected = expectation.scanAt(instant(now));
        EXPECT_EQ(scan["historiesCreated"], expected.histories) << now;
        EXPECT_EQ(scan["eventsCreated"], expected.events) << now;
        events += expected.events;
        histories += expected.histories;
    }
    EXPECT_GT(events, histories + 200) << "most plays are of songs that were known";
    EXPECT_EQ(value("", {"plays"}).size(), events);
    EXPECT_EQ(value("", {"histories"}).size(), histories);
}

TEST_F(SampleLibraryTest, aSongsLatestPlayIsTheListenersOwn) {
    const std::string now = "2026-03-15T20:15:00Z";
    value(now, {"library", "use", "sample", "200"});
    value(now, {"scan", "--since", "all"});
    std::map<double, std::string> trueDates;
    const SampleCatalogue catalogue(SampleSource::usualSeed, 200);
    const SampleListener listener(catalogue, NSTimeZone::timeZoneWithName(zoneName).value());
    for (const SampleCounts& counts : listener.countsAt(instant(now))) {
        if (counts.lastPlayed) {
            trueDates[counts.lastPlayed->timeIntervalSinceReferenceDate()] = "";
        }
    }
    const json plays = value(now, {"plays"});
    EXPECT_EQ(plays.size(), trueDates.size());
    for (const json& play : plays) {
        EXPECT_TRUE(trueDates.contains(play["eventDate"]["reference"].get<double>()));
        EXPECT_EQ(play["isInterpolated"], false);
    }
}

TEST_F(SampleLibraryTest, whatTheUserChangedIsThereInTheNextProcess) {
    const std::string now = "2026-03-15T03:00:00Z";
    value(now, {"library", "use", "sample", "200"});
    const json before = value(now, {"library", "songs"})[0];
    const auto song = before["persistentID"].get<std::uint64_t>();
    ManualClock clock(instant(now));
    const Port<Clock>::Plug clockPlug(clock);
    SampleSource source(200, stateFile());
    ASSERT_TRUE(source.setLiked(song, 3));
    ASSERT_TRUE(source.createPlaylist("Mine", std::vector<std::uint64_t>{song}));
    ASSERT_TRUE(source.samplePlayer().setQueue({song}));
    ASSERT_TRUE(source.samplePlayer().play());
    const std::string later = "2026-03-15T03:30:00Z";
    const json after = value(later, {"library", "songs"})[0];
    EXPECT_EQ(after["persistentID"], song);
    EXPECT_EQ(after["likedState"], 3);
    EXPECT_EQ(after["playCount"], before["playCount"].get<int>() + 1);
    EXPECT_EQ(
        after["lastPlayedDate"]["reference"].get<double>(),
        clock.now().timeIntervalSinceReferenceDate() + before["playbackDuration"].get<double>());
    EXPECT_EQ(value(later, {"library", "status"})["playlists"], 10);
}

TEST_F(SampleLibraryTest, aBrokenFileOfTheUsersChangesIsReportedAndStays) {
    value("", {"library", "use", "sample", "20"});
    std::ofstream(stateFile()) << "{]";
    std::filesystem::permissions(stateFile(), std::filesystem::perms::owner_read);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"scan"}, {"library", "status"}, {"library", "use", "sample"}}) {
        expectOneLine(run("", command), stateFile().string());
    }
    EXPECT_EQ(contentOfFile(stateFile()), "{]");
}

}  // namespace
}  // namespace tavrion
