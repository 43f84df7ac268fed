// The true tavrionctl, killed during scans at chosen changes of the disk and at random moments.
// After each kill the store opens and holds what was saved, nothing is there twice, and the next
// scan records the rest.
//
// TAVRION_KILLS says how many kills (20), TAVRION_SEED which ones (any).

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <sstream>
#include <thread>

#include "platform/sqlite/SQLiteDatabase.h"
#include "tests/support/Environment.h"
#include "tests/support/ScanHome.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t songCount = 280;
/// Scans of one store before the test goes on with a new one, whose first scan makes the store.
constexpr std::size_t scansOfAHome = 8;

/// What an unkilled run did: its changes of the disk in order, and how long it took.
struct Course {
    std::vector<std::string> changes;
    double seconds = 0;
};

class KillsTest : public testing::Test {
  protected:
    KillsTest() : seed(numberFromEnvironment("TAVRION_SEED", std::random_device()())) {
        random.seed(static_cast<unsigned>(seed));
    }

    double between0And1() { return std::uniform_real_distribution<double>()(random); }
    /// A new home after every few scans, and time that goes on.
    void beginRound(std::size_t round);
    Course unkilledCourse();
    /// Whether it was killed.
    bool killOnce();
    /// Where in its course the next scan is killed, from 0 to 1. However many there are, they are
    /// spread evenly, those of first scans and those of later ones.
    double nextPlace() {
        constexpr double goldenSection = 0.6180339887498949;
        double& place = places[home->isNew ? 0 : 1];
        place = std::fmod(place + goldenSection, 1.0);
        return place;
    }
    /// With trouble of a kind at a place among the changes of the disk. Whether it was killed.
    bool runUntil(const std::string& kind, std::size_t place);
    bool runFor(double seconds);
    void expectStoreHoldsWhatWasSaved(const ProgramEnd& end);
    void expectNextScanRecordsTheRest();

    std::uint64_t seed;
    std::mt19937 random;
    std::unique_ptr<ScanHome> home;
    ToldRecords before;
    double places[2] = {between0And1(), between0And1()};
    /// How many kills hit which change of the disk.
    std::map<std::string, std::size_t> hits;
};

void KillsTest::beginRound(std::size_t round) {
    if (round % scansOfAHome == 0) {
        home = std::make_unique<ScanHome>(songCount, random);
        before = {};
    } else {
        home->truth.playOn();
        home->publish();
    }
}

/// The lines of a report: "17 pwrite Nerinda.sqlite-wal" without the number, and without the
/// process that a draft is named after.
std::vector<std::string> changesIn(const fs::path& report) {
    std::istringstream lines(contentOfFile(report));
    std::vector<std::string> changes;
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find(' ') + 1);
        if (const std::size_t draft = line.find(".new-"); draft != std::string::npos) {
            line.resize(draft + 4);
        }
        changes.push_back(line);
    }
    return changes;
}

Course KillsTest::unkilledCourse() {
    const fs::path copy = home->copyOfData("unkilled");
    const fs::path report = home->outputFolder() / "report";
    fs::remove(report);
    const auto begin = std::chrono::steady_clock::now();
    const ProgramEnd end =
        home->start(home->scanCommand(), home->troubled(copy, report), copy)->wait();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    EXPECT_TRUE(end.isDone()) << end.told();
    return {changesIn(report), taken.count()};
}

bool KillsTest::runUntil(const std::string& kind, std::size_t place) {
    const std::string trouble = fmt::format("{}:{}", kind, place);
    const fs::path report = home->outputFolder() / "report";
    fs::remove(report);
    const auto run =
        home->start(home->scanCommand(), home->troubled(home->data(), report, trouble));
    const ProgramEnd end = run->wait();
    const std::vector<std::string> changes = changesIn(report);
    // Two threads save; how many changes of the disk a scan takes differs by a few, so that the
    // last ones of the unkilled run may not come. Then nobody was killed.
    if (end.isDone()) {
        EXPECT_LT(changes.size(), place) << trouble << " did not kill";
    } else {
        EXPECT_EQ(end.signal, SIGKILL) << trouble << ": " << end.told();
        ++hits[changes.empty() ? "nothing" : changes.back()];
    }
    expectStoreHoldsWhatWasSaved(end);
    return end.signal == SIGKILL;
}

bool KillsTest::runFor(double seconds) {
    const auto run = home->start(home->scanCommand());
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    run->sendSignal(SIGKILL);
    const ProgramEnd end = run->wait();
    EXPECT_TRUE(end.signal == SIGKILL || end.isDone()) << end.told();
    expectStoreHoldsWhatWasSaved(end);
    hits["some moment"] += end.signal == SIGKILL ? 1 : 0;
    return end.signal == SIGKILL;
}

bool KillsTest::killOnce() {
    const Course course = unkilledCourse();
    const auto change =
        1 + static_cast<std::size_t>(nextPlace() * static_cast<double>(course.changes.size()));
    switch (random() % 4) {
        case 0:
            return runFor(between0And1() * course.seconds);
        case 1:
            return runUntil("torn", change);
        default:
            return runUntil("kill", change);
    }
}

void KillsTest::expectStoreHoldsWhatWasSaved(const ProgramEnd& end) {
    // In a copy, so that the next scan is the first to find what the kill has left.
    const fs::path copy = home->copyOfData("left");
    const fs::path store = copy / "Nerinda.sqlite";
    if (fs::exists(store)) {
        const auto database = SQLiteDatabase::open(store, SQLiteDatabase::Mode::readWrite);
        const auto found = database.value()->quickCheck();
        ASSERT_TRUE(found) << found.error().localizedDescription;
        EXPECT_EQ(found.value(), std::nullopt);
    }
    const ProgramEnd defaults = home->start({"--json", "defaults", "read"}, {}, copy)->wait();
    EXPECT_TRUE(defaults.isDone()) << defaults.told();
    const ToldRecords left = home->ask(copy);
    EXPECT_EQ(left.doubled, std::vector<std::string>());
    EXPECT_TRUE(std::includes(left.plays.begin(), left.plays.end(), before.plays.begin(),
                              before.plays.end()))
        << "a saved play is gone";
    const bool holdsAll = left.playsOfTitles == home->truth.playsOfTitles();
    EXPECT_TRUE(holdsAll || left.plays == before.plays) << "half of a scan was saved";
    const bool saidSaved = end.err.find("successfully saved") != std::string::npos;
    EXPECT_TRUE(holdsAll || !saidSaved) << "a finished save is gone";
    // Only a library that was read to its end may move the date to which the next scan looks back.
    const bool dateMoved =
        defaults.out.find(home->truth.nowText().substr(0, 19)) != std::string::npos;
    EXPECT_TRUE(holdsAll || !dateMoved || home->isNew) << "the scan date moved before the save";
}

void KillsTest::expectNextScanRecordsTheRest() {
    home->truth.pass(10);
    const ProgramEnd scan = home->start(home->scanCommand())->wait();
    EXPECT_TRUE(scan.isDone()) << scan.told();
    home->truth.noteScan();
    home->isNew = false;
    before = home->ask(home->data());
    EXPECT_EQ(before.doubled, std::vector<std::string>());
    EXPECT_EQ(before.playsOfTitles, home->truth.playsOfTitles());
    EXPECT_EQ(before.countsOfTitles, home->truth.countsOfTitles());
    for (const auto& entry : fs::directory_iterator(home->data())) {
        static const std::set<std::string> expected{"Nerinda.sqlite", "defaults.plist",
                                                    "defaults.plist.lock", "library.json", "lock"};
        EXPECT_TRUE(expected.contains(entry.path().filename())) << entry.path() << " was left";
    }
}

TEST_F(KillsTest, nothingIsLostAndNothingDoubled) {
    const std::size_t kills = numberFromEnvironment("TAVRION_KILLS", 20);
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    std::size_t killed = 0;
    for (std::size_t round = 0; killed < kills; ++round) {
        SCOPED_TRACE(fmt::format("seed {}, round {}", seed, round));
        beginRound(round);
        killed += killOnce() ? 1 : 0;
        expectNextScanRecordsTheRest();
        ASSERT_FALSE(HasFailure());
    }
    for (const auto& [change, count] : hits) {
        std::printf("%4zu killed at: %s\n", count, change.c_str());
    }
}

/// Choosing a library over records of another one: a safety copy, then library.json.
class KilledChoiceTest : public KillsTest {
  protected:
    KilledChoiceTest() {
        home = std::make_unique<ScanHome>(songCount, random);
        expectNextScanRecordsTheRest();
        other = home->outputFolder() / "Other.xml";
        home->truth.write(other);
    }
    std::vector<std::string> choose() const {
        return {"--quiet", "--now", home->truth.nowText(), "library", "use", "music-xml", other};
    }
    std::size_t lengthOfCourse() const {
        const fs::path copy = home->copyOfData("unkilled");
        const fs::path report = home->outputFolder() / "report";
        fs::remove(report);
        const ProgramEnd end = home->start(choose(), home->troubled(copy, report), copy)->wait();
        EXPECT_TRUE(end.isDone()) << end.told();
        return changesIn(report).size();
    }
    void expectChoiceAndCopyWhole(const fs::path& data) const;

    fs::path other;
};

void KilledChoiceTest::expectChoiceAndCopyWhole(const fs::path& data) const {
    const ProgramEnd status = home->start({"--json", "library", "status"}, {}, data)->wait();
    ASSERT_TRUE(status.isDone()) << status.told();
    const bool isNew = status.out.find("Other.xml") != std::string::npos;
    std::size_t copies = 0;
    if (fs::exists(data / "backups")) {
        for (const auto& entry : fs::directory_iterator(data / "backups")) {
            if (entry.path().extension() != ".sqlite") {
                continue;
            }
            ++copies;
            const auto database =
                SQLiteDatabase::open(entry.path(), SQLiteDatabase::Mode::readWrite);
            const auto found = database.value()->quickCheck();
            ASSERT_TRUE(found) << found.error().localizedDescription;
            EXPECT_EQ(found.value(), std::nullopt);
            auto plays = database.value()->prepare("SELECT count(*) FROM PlayEvent");
            ASSERT_TRUE(plays && plays.value().step().value());
            EXPECT_EQ(plays.value().integer(0), static_cast<std::int64_t>(songCount));
        }
    }
    EXPECT_TRUE(!isNew || copies == 1) << "another library was chosen without a safety copy";
    EXPECT_EQ(home->ask(data).plays, before.plays);
}

TEST_F(KilledChoiceTest, itIsTheOldOneOrTheNewOneWithItsSafetyCopy) {
    const std::size_t length = lengthOfCourse();
    const std::size_t kills =
        std::max<std::size_t>(5, numberFromEnvironment("TAVRION_KILLS", 20) / 4);
    const std::size_t step = std::max<std::size_t>(1, 2 * length / kills);
    std::printf("%zu changes of the disk\n", length);
    for (std::size_t i = random() % step; i < 2 * length; i += step) {
        const std::string trouble = fmt::format("{}:{}", i % 2 == 0 ? "kill" : "torn", 1 + i / 2);
        SCOPED_TRACE(trouble);
        const fs::path copy = home->copyOfData("killed");
        const ProgramEnd end =
            home->start(choose(), home->troubled(copy, home->outputFolder() / "report", trouble),
                        copy)
                ->wait();
        EXPECT_EQ(end.signal, SIGKILL) << end.told();
        expectChoiceAndCopyWhole(copy);
        ASSERT_FALSE(HasFailure());
    }
}

}  // namespace
}  // namespace tavrion
