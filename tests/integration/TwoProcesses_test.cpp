// Two scans of one data directory at once, and readers beside them: the second scan is informed who
// is at work, the readers see what was saved before or after, and nothing is lost.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "tests/support/Environment.h"
#include "tests/support/ScanHome.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

using Plays = std::map<std::string, std::size_t>;

class TwoProcessesTest : public testing::Test {
  protected:
    TwoProcessesTest() : random(static_cast<unsigned>(numberFromEnvironment("TAVRION_SEED", 1))) {
        home = std::make_unique<ScanHome>(200, random);
    }

    void scanToTheEnd() {
        const ProgramEnd scan = home->start(home->scanCommand())->wait();
        ASSERT_TRUE(scan.isDone()) << scan.told();
        noteScan();
    }
    void noteScan() {
        home->truth.noteScan();
        home->isNew = false;
        const ToldRecords told = home->ask(home->data());
        EXPECT_EQ(told.doubled, std::vector<std::string>());
        EXPECT_EQ(told.playsOfTitles, home->truth.playsOfTitles());
        before = told.playsOfTitles;
    }
    void playOn() {
        home->truth.playOn();
        home->publish();
    }
    std::unique_ptr<ProgramRun> startReader() const { return home->start({"--json", "plays"}); }
    /// A reader saw the store as it was before the scan or as it is after it.
    void expectReaderSawAState(const ProgramEnd& reader) const {
        ASSERT_TRUE(reader.isDone()) << reader.told();
        EXPECT_EQ(reader.err, "");
        Plays seen;
        for (const nlohmann::json& play : nlohmann::json::parse(reader.out)) {
            ++seen[play["title"].is_string() ? play["title"] : "(no song)"];
        }
        EXPECT_TRUE(seen == before || seen == home->truth.playsOfTitles());
    }
    static void expectToldWhoIsAtWork(const ProgramEnd& scan, pid_t worker) {
        EXPECT_EQ(scan.status, 3) << scan.told();
        EXPECT_EQ(scan.out, "");
        EXPECT_EQ(scan.errorLines(), 1U) << scan.told();
        const bool names = scan.err.find(fmt::format("process {};", worker)) != std::string::npos;
        // Between taking the lock and writing its id into it a process is nameless.
        const bool isNameless = scan.err.find("another process;") != std::string::npos;
        EXPECT_TRUE(names || isNameless) << scan.err;
        EXPECT_NE(scan.err.find("try again"), std::string::npos) << scan.err;
    }
    std::size_t lengthOfCourse() const {
        const fs::path copy = home->copyOfData("undisturbed");
        const fs::path report = home->outputFolder() / "report";
        fs::remove(report);
        const ProgramEnd end =
            home->start(home->scanCommand(), home->troubled(copy, report), copy)->wait();
        EXPECT_TRUE(end.isDone()) << end.told();
        const std::string lines = contentOfFile(report);
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
    }
    void expectAllBearAScanThatHaltsBefore(std::size_t change);

    std::mt19937 random;
    std::unique_ptr<ScanHome> home;
    Plays before;
};

void TwoProcessesTest::expectAllBearAScanThatHaltsBefore(std::size_t change) {
    const auto first = home->start(home->scanCommand(),
                                   home->troubled(home->data(), home->outputFolder() / "report",
                                                  fmt::format("stop:{}", change)));
    ASSERT_TRUE(first->waitUntilStopped()) << first->wait().told();
    expectToldWhoIsAtWork(home->start(home->scanCommand())->wait(), first->process());
    const ProgramEnd defaults = home->start({"--json", "defaults", "read"})->wait();
    EXPECT_TRUE(defaults.isDone()) << defaults.told();
    const auto reader = startReader();
    // While a closing writer has the file for itself, a reader waits; then the writer must go on.
    constexpr double seconds = 0.5;
    reader->endsWithin(seconds);
    first->sendSignal(SIGCONT);
    const ProgramEnd end = first->wait();
    EXPECT_TRUE(end.isDone()) << end.told();
    expectReaderSawAState(reader->wait());
}

TEST_F(TwoProcessesTest, aHaltedScanAnywhereKeepsOthersOutAndReadersGoing) {
    const std::size_t places = numberFromEnvironment("TAVRION_HALTS", 15);
    double share = 0.5;
    for (std::size_t i = 0; i < places; ++i) {
        // The first halts are in a first scan, which makes the store.
        if (i % 5 == 0) {
            home = std::make_unique<ScanHome>(200, random);
            before.clear();
        } else {
            playOn();
        }
        constexpr double goldenSection = 0.6180339887498949;
        share = share + goldenSection - (share + goldenSection < 1 ? 0 : 1);
        const auto change =
            1 + static_cast<std::size_t>(share * static_cast<double>(lengthOfCourse()));
        SCOPED_TRACE(fmt::format("halt {}, before change {} of the disk", i, change));
        expectAllBearAScanThatHaltsBefore(change);
        noteScan();
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(TwoProcessesTest, twoScansAtOnceAndAReaderBesideThemLoseNothing) {
    const std::size_t rounds = numberFromEnvironment("TAVRION_DOUBLE_SCANS", 6);
    std::size_t refusals = 0;
    std::size_t readings = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        SCOPED_TRACE(fmt::format("round {}", round));
        const auto first = home->start(home->scanCommand());
        const auto second = home->start(home->scanCommand());
        do {
            expectReaderSawAState(startReader()->wait());
            ++readings;
        } while (!first->endsWithin(0) || !second->endsWithin(0));
        const ProgramEnd ends[] = {first->wait(), second->wait()};
        const pid_t processes[] = {first->process(), second->process()};
        EXPECT_TRUE(ends[0].isDone() || ends[1].isDone());
        for (std::size_t i = 0; i < 2; ++i) {
            if (!ends[i].isDone()) {
                ++refusals;
                expectToldWhoIsAtWork(ends[i], processes[1 - i]);
            }
        }
        noteScan();
        ASSERT_FALSE(HasFailure());
        playOn();
    }
    std::printf("%zu rounds, %zu refusals, %zu readings\n", rounds, refusals, readings);
}

}  // namespace
}  // namespace tavrion
