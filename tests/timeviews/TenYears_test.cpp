// Ten years of one person's plays: every year's ranking beside a plain count of the lines of the
// file.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "tests/support/RealData.h"
#include "tests/support/RecordingEnvironment.h"
#include "timeviews/TrendingRanking.h"

namespace tavrion {
namespace {

struct FilePlay {
    double seconds = 0;
    std::string artist;
    std::string title;
};

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields(1);
    bool isQuoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"' && isQuoted && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += line[i++];
        } else if (line[i] == '"') {
            isQuoted = !isQuoted;
        } else if (line[i] == ',' && !isQuoted) {
            fields.emplace_back();
        } else {
            fields.back() += line[i];
        }
    }
    return fields;
}

/// The plays whose second is theirs alone.
std::vector<FilePlay> playsOfFile() {
    const std::filesystem::path file =
        *realDataDirectory() / "histories" / "ten-years-104571-plays.csv.gz";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(
        ::popen(("gzip -dc '" + file.string() + "'").c_str(), "r"), ::pclose);
    std::multimap<double, FilePlay> bySecond;
    std::string line;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        const std::vector<std::string> fields = fieldsOf(line);
        line.clear();
        const double unixTime = fields.size() == 4 ? std::atof(fields[0].c_str()) : 0;
        if (unixTime > 0) {
            const double seconds =
                NSDate::dateWithTimeIntervalSince1970(unixTime).timeIntervalSinceReferenceDate();
            bySecond.emplace(seconds, FilePlay{seconds, fields[1], fields[1] + " / " + fields[3]});
        }
    }
    std::vector<FilePlay> plays;
    for (const auto& [second, play] : bySecond) {
        if (bySecond.count(second) == 1) {
            plays.push_back(play);
        }
    }
    return plays;
}

class TenYearsTest : public testing::Test {
  protected:
    void record(const std::vector<FilePlay>& plays) {
        std::map<std::string, PlaybackHistory> histories;
        std::vector<TestSong> songs;
        for (const FilePlay& play : plays) {
            auto found = histories.find(play.title);
            if (found == histories.end()) {
                PlaybackHistory history = environment.makeHistory(play.title, 100);
                history.setArtist(play.artist);
                found = histories.emplace(play.title, history).first;
                songs.push_back({.title = play.title,
                                 .artist = play.artist,
                                 .albumArtist = play.artist,
                                 .duration = 100});
            }
            environment.makePlay(found->second, play.seconds);
        }
        environment.library.publish(songs);
    }
    TrendingSnapshot rankingBetween(double start, double end) {
        return TrendingRanking::rank(
            environment.main(), {{RecordingEnvironment::at(start), RecordingEnvironment::at(end)},
                                 false,
                                 [] { return TrendingGrouping::artists; },
                                 nullptr});
    }
    /// The rows are the best of the counts: where equal ones stand at the end of the list, any of
    /// them.
    static void expectBest(const std::vector<TrendingRow>& rows,
                           const std::map<std::string, std::uint64_t>& counts, std::size_t most) {
        std::vector<std::uint64_t> best;
        best.reserve(counts.size());
        for (const auto& [name, count] : counts) {
            best.push_back(count);
        }
        std::sort(best.rbegin(), best.rend());
        best.resize(std::min(best.size(), most));
        ASSERT_EQ(rows.size(), best.size());
        std::map<std::string, int> seen;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const MPMediaItem* item = rows[i]->entity.item();
            const std::string name(
                item != nullptr
                    ? *item->title()
                    : *rows[i]->entity.collection()->representativeItem()->albumArtist());
            EXPECT_EQ(rows[i]->playCount, best[i]) << i;
            EXPECT_EQ(rows[i]->playCount, counts.at(name)) << name;
            EXPECT_EQ(++seen[name], 1) << name;
        }
    }

    RecordingEnvironment environment;
};

TEST_F(TenYearsTest, everyYearsRankingIsTheCountOfTheFile) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    const std::vector<FilePlay> plays = playsOfFile();
    ASSERT_GT(plays.size(), 100000U);
    record(plays);
    std::size_t years = 0;
    for (int year = 2000; year < 2030; ++year) {
        const auto startOf = [](int number) {
            return dateFromIsoText(std::to_string(number) + "-01-01T00:00:00Z")
                ->timeIntervalSinceReferenceDate();
        };
        const double start = startOf(year);
        const double end = startOf(year + 1) - 1;
        std::map<std::string, std::uint64_t> songs;
        std::map<std::string, std::uint64_t> artists;
        for (const FilePlay& play : plays) {
            if (play.seconds > start && play.seconds < end) {
                ++songs[play.title];
                ++artists[play.artist];
            }
        }
        years += songs.empty() ? 0 : 1;
        const TrendingSnapshot ranking = rankingBetween(start, end);
        expectBest(ranking.songs, songs, TrendingRanking::mostSongs);
        expectBest(ranking.collections, artists, TrendingRanking::mostCollections);
    }
    EXPECT_GE(years, 10U);
}

}  // namespace
}  // namespace tavrion
