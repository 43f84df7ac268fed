// The true tavrionctl on a disk that is full or broken, whichever file it writes: it says so in one
// line, the data stays whole, and a later scan records the rest.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "platform/sqlite/SQLiteDatabase.h"
#include "tests/support/Environment.h"
#include "tests/support/ScanHome.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

class TroubledDiskTest : public testing::Test {
  protected:
    static std::vector<std::string> linesOf(const std::string& text) {
        std::vector<std::string> lines;
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            lines.push_back(text.substr(begin, end - begin));
            begin = end + 1;
        }
        return lines;
    }
    std::vector<std::string> course(bool isNew) {
        beginRound(isNew);
        const fs::path copy = home->copyOfData("undisturbed");
        const fs::path report = home->outputFolder() / "report";
        fs::remove(report);
        const ProgramEnd end =
            home->start(home->scanCommand(), home->troubled(copy, report), copy)->wait();
        EXPECT_TRUE(end.isDone()) << end.told();
        return linesOf(contentOfFile(report));
    }
    void beginRound(bool isNew) {
        if (isNew || !home) {
            home = std::make_unique<ScanHome>(120, random);
            before.clear();
        }
        if (!isNew) {
            scanToTheEnd();
            home->truth.playOn();
            home->publish();
        }
    }
    void scanToTheEnd() {
        home->truth.pass(10);
        const ProgramEnd scan = home->start(home->scanCommand())->wait();
        ASSERT_TRUE(scan.isDone()) << scan.told();
        home->truth.noteScan();
        home->isNew = false;
        const ToldRecords told = home->ask(home->data());
        EXPECT_EQ(told.doubled, std::vector<std::string>());
        EXPECT_EQ(told.playsOfTitles, home->truth.playsOfTitles());
        before = told.playsOfTitles;
    }
    void scanWith(const std::string& trouble);

    std::mt19937 random{static_cast<unsigned>(numberFromEnvironment("TAVRION_SEED", 1))};
    std::unique_ptr<ScanHome> home;
    std::map<std::string, std::size_t> before;
    std::set<std::string> linesTold;
};

void TroubledDiskTest::scanWith(const std::string& trouble) {
    ProgramRun::Environment environment =
        home->troubled(home->data(), home->outputFolder() / "report", trouble);
    environment["TAVRION_LOG"] = "";
    const ProgramEnd end = home->start(home->scanCommand(), environment)->wait();
    ASSERT_TRUE(end.status == 0 || end.status == 1) << end.told();
    EXPECT_EQ(end.errorLines(), end.isDone() ? 0U : 1U) << end.told();
    if (!end.isDone()) {
        EXPECT_EQ(end.out, "");
        EXPECT_TRUE(end.err.starts_with("tavrionctl: ")) << end.err;
        EXPECT_NE(end.err.find(home->data().string()), std::string::npos)
            << "not where: " << end.err;
        EXPECT_TRUE(end.err.find("check ") != std::string::npos ||
                    end.err.find("See that ") != std::string::npos)
            << "not what to do: " << end.err;
        std::string line = end.err;
        const std::string folder = home->data().string() + "/";
        for (std::size_t at = line.find(folder); at != std::string::npos; at = line.find(folder)) {
            line.erase(at, folder.size());
        }
        linesTold.insert(line);
    }
    const fs::path copy = home->copyOfData("left");
    if (fs::exists(copy / "Nerinda.sqlite")) {
        const auto database =
            SQLiteDatabase::open(copy / "Nerinda.sqlite", SQLiteDatabase::Mode::readWrite);
        const auto found = database.value()->quickCheck();
        ASSERT_TRUE(found) << found.error().localizedDescription;
        EXPECT_EQ(found.value(), std::nullopt);
    }
    const ToldRecords left = home->ask(copy);
    EXPECT_EQ(left.doubled, std::vector<std::string>());
    const bool holdsAll = left.playsOfTitles == home->truth.playsOfTitles();
    EXPECT_TRUE(holdsAll || (!end.isDone() && left.playsOfTitles == before))
        << "neither all of the scan nor nothing, or reported as done without being saved";
}

TEST_F(TroubledDiskTest, everyTroubleIsReportedInOneLineAndNothingIsLost) {
    const std::size_t wanted = numberFromEnvironment("TAVRION_TROUBLES", 24);
    for (const bool isNew : {true, false}) {
        const std::size_t places = course(isNew).size();
        const std::size_t step = std::max<std::size_t>(1, 4 * places * 2 / wanted);
        for (std::size_t i = 0; i < 4 * places; i += step) {
            const char* const kinds[] = {"enospc:{}", "eio:{}", "enospc:{}:stays", "eio:{}:stays"};
            const std::size_t kind = (i + i / step) % 4;
            const std::string trouble = fmt::format(fmt::runtime(kinds[kind]), 1 + i / 4);
            SCOPED_TRACE(fmt::format("{} in a {} scan", trouble, isNew ? "first" : "later"));
            beginRound(isNew);
            scanWith(trouble);
            scanToTheEnd();
            ASSERT_FALSE(HasFailure());
        }
    }
    for (const std::string& line : linesTold) {
        std::printf("told: %s", line.c_str());
    }
    EXPECT_GT(linesTold.size(), 1U);
}

}  // namespace
}  // namespace tavrion
