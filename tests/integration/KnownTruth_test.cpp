// A year of one person's dated plays, shown to the scan as a library would show it and compared
// with what was recorded.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>

#include "tests/support/RealData.h"
#include "tests/support/RecordingEnvironment.h"
#include "tests/support/TenYearHistory.h"

namespace tavrion {
namespace {

/// Of the year that begins at `from`, in Unix time.
std::vector<TruePlay> truePlaysOfYear(double from, double length) {
    return truePlays(*realDataDirectory() / "histories" / "ten-years-104571-plays.csv.gz", from,
                     from + length);
}

/// What the library and the scan know of one song.
struct SongTruth {
    double duration = 0;
    std::uint64_t count = 0;
    double lastPlayed = 0;
    bool seen = false;
    std::uint64_t sinceLastScan = 0;
    /// How many plays must be recorded.
    std::size_t expected = 0;
    /// True plays that were alone between two scans after the first sight, and first sights.
    std::vector<double> exact;
};

class KnownTruthTest : public testing::Test {
  protected:
    static constexpr double day = 86400;

    void replay(const std::string& year);
    void play(const TruePlay& play) {
        SongTruth& song = songs[play.song];
        if (song.count == 0) {
            song.duration = 100 + 0.001 * static_cast<double>(songs.size());
        }
        ++song.count;
        ++song.sinceLastScan;
        song.lastPlayed = play.seconds;
    }
    void noteScan() {
        for (auto& [title, song] : songs) {
            if (song.sinceLastScan == 0) {
                continue;
            }
            song.expected += song.seen ? song.sinceLastScan : 1;
            song.exact.push_back(song.lastPlayed);
            song.seen = true;
            song.sinceLastScan = 0;
        }
    }
    void scanAt(double seconds) {
        std::vector<TestSong> library;
        for (const auto& [title, song] : songs) {
            library.push_back({.title = title,
                               .duration = song.duration,
                               .playCount = song.count,
                               .lastPlayed = RecordingEnvironment::at(song.lastPlayed)});
        }
        environment->library.publish(library);
        environment->clock.set(RecordingEnvironment::at(seconds));
        ASSERT_TRUE(environment->scanByRule());
        noteScan();
    }

    std::map<std::string, SongTruth> songs;
    std::unique_ptr<RecordingEnvironment> environment;
};

void KnownTruthTest::replay(const std::string& year) {
    songs.clear();
    // What one environment plugs must be out before the next one plugs its own.
    environment.reset();
    const double start =
        dateFromIsoText(year + "-01-01T00:00:00Z")->timeIntervalSinceReferenceDate();
    const double unixStart =
        NSDate::dateWithTimeIntervalSinceReferenceDate(start).timeIntervalSince1970();
    const std::vector<TruePlay> truth = truePlaysOfYear(unixStart, 365 * day);
    ASSERT_FALSE(truth.empty()) << year;
    environment = std::make_unique<RecordingEnvironment>(RecordingEnvironment::at(start));
    scanAt(start);
    auto next = truth.begin();
    for (int scans = 1; scans <= 365; ++scans) {
        for (; next != truth.end() && next->seconds < start + scans * day; ++next) {
            play(*next);
        }
        scanAt(start + scans * day);
    }

    std::map<std::string, std::size_t> recorded;
    std::map<double, const RecordedPlay*> byInstant;
    const std::vector<RecordedPlay> plays = environment->plays();
    for (const RecordedPlay& play : plays) {
        ++recorded[play.title];
        EXPECT_TRUE(byInstant.emplace(play.seconds, &play).second)
            << "no two events share an instant";
    }
    std::size_t doubled = 0;
    for (const auto& [title, song] : songs) {
        ASSERT_LE(recorded[title], song.expected) << title;
        const std::size_t missing = song.expected - recorded[title];
        doubled += missing;
        if (missing > 0) {
            std::printf("%zu of %zu plays of '%s' stood on an instant that another event holds\n",
                        missing, song.expected, title.c_str());
        }
        for (const double second : song.exact) {
            const auto found = byInstant.find(second);
            ASSERT_NE(found, byInstant.end()) << title;
            EXPECT_TRUE((found->second->title == title && !found->second->isInterpolated) ||
                        missing > 0)
                << title;
        }
    }
    EXPECT_EQ(doubled, environment->log.countBeginning("deleted duplicate play event: "));
    std::printf("%s: %zu true plays, %zu songs, %zu recorded, %zu doubled\n", year.c_str(),
                truth.size(), songs.size(), plays.size(), doubled);
}

/// The years to replay: 2010, or those that TAVRION_TRUTH_YEARS names ("2005 2006").
std::vector<std::string> yearsToReplay() {
    const char* named = std::getenv("TAVRION_TRUTH_YEARS");
    std::istringstream stream(named != nullptr ? named : "2010");
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST_F(KnownTruthTest, aYearOfDailyScansRecordsEveryPlayAfterASongsFirstSight) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    for (const std::string& year : yearsToReplay()) {
        replay(year);
    }
}

}  // namespace
}  // namespace tavrion
