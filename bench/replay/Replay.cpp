#include "bench/replay/Replay.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "bench/BenchEnvironment.h"
#include "platform/foundation/NSLog.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "recording/NerindaModel.h"

namespace tavrion::bench {
namespace {

constexpr double day = 86400;
/// A scan by the rule looks back two days of the calendar; songs played before that play no part
/// in it.
constexpr double windowOfRule = 3 * day;

/// Counts the clean-up's removals by what it logs.
class RemovalCounter final : public LogSink {
  public:
    void line(std::string_view text) override {
        removals += text.starts_with("deleted duplicate play event: ") ? 1 : 0;
    }
    std::atomic<std::size_t> removals{0};
};

struct LibrarySong {
    std::string title;
    double duration = 0;
    std::uint64_t persistentID = 0;
    std::uint64_t count = 0;
    double lastPlayed = 0;
    bool seen = false;
    /// Since the last scan.
    std::vector<double> unseen;
};

class Replay {
  public:
    Replay(const std::vector<TruePlay>& plays, const ReplayOptions& options)
        : plays_(plays),
          options_(options),
          environment_(directory_.file("Nerinda.sqlite"), plays.front().seconds - day) {}

    ReplayResult run() {
        result_.truePlays = plays_.size();
        scanAt(plays_.front().seconds - day);
        auto next = plays_.begin();
        for (double now = plays_.front().seconds - day + options_.interval; next != plays_.end();
             now += options_.interval) {
            for (; next != plays_.end() && next->seconds < now; ++next) {
                play(*next);
            }
            scanAt(now);
        }
        result_.songs = songs_.size();
        compare();
        result_.removedAsDouble = removals_.removals;
        return std::move(result_);
    }

  private:
    void play(const TruePlay& play) {
        const auto [found, isNew] = numbers_.try_emplace(play.song, songs_.size());
        if (isNew) {
            const std::size_t number = songs_.size();
            // Twins: every two songs that are heard of one after the other.
            const std::size_t name = options_.twins ? number / 2 : number;
            songs_.push_back({fmt::format("Song {}", name),
                              100 + 0.001 * static_cast<double>(name),
                              number + 1,
                              0,
                              0,
                              false,
                              {}});
        }
        LibrarySong& song = songs_[found->second];
        ++song.count;
        song.lastPlayed = play.seconds;
        song.unseen.push_back(play.seconds);
        touched_.insert(found->second);
    }

    void scanAt(double now) {
        ++result_.scans;
        std::vector<TestSong> library;
        const double from = options_.interval < 2 * day ? now - windowOfRule : -1e18;
        for (const LibrarySong& song : songs_) {
            if (song.lastPlayed > from) {
                library.push_back(
                    {.title = song.title,
                     .duration = song.duration,
                     .playCount = song.count,
                     .lastPlayed = NSDate::dateWithTimeIntervalSinceReferenceDate(song.lastPlayed),
                     .persistentID = song.persistentID,
                     .libraryID = fmt::format("{:016X}", song.persistentID)});
            }
        }
        environment_.publish(snapshotOf(library));
        environment_.scanByRule(now);
        for (const std::size_t number : touched_) {
            LibrarySong& song = songs_[number];
            std::vector<double>& expected = expected_[song.title];
            if (song.seen) {
                expected.insert(expected.end(), song.unseen.begin(), song.unseen.end());
            } else {
                expected.push_back(song.unseen.back());
                result_.lostBeforeFirstSight += song.unseen.size() - 1;
            }
            song.seen = true;
            song.unseen.clear();
        }
        touched_.clear();
    }

    struct Event {
        double seconds = 0;
        bool isEstimate = false;
        bool operator<(const Event& other) const { return seconds < other.seconds; }
    };

    std::map<std::string, std::vector<Event>> recordedEvents() {
        const auto records = environment_.main().snapshot();
        std::map<std::string, std::vector<Event>> events;
        for (const auto& leaf : records->table(NerindaEntity::PlayEvent).leaves()) {
            const auto dates = leaf->columns[PlayEventKey::eventDate]->reals();
            const auto estimates = leaf->columns[PlayEventKey::isInterpolated]->booleans();
            const auto parents = leaf->columns[PlayEventKey::parentHistory]->references();
            for (std::size_t row = 0; row < leaf->size(); ++row) {
                const auto song = records->find({NerindaEntity::PlaybackHistory, parents[row]});
                const FieldView title = song ? song->at(PlaybackHistoryKey::title) : FieldView();
                const auto* text = std::get_if<std::string_view>(&title);
                events[text != nullptr ? std::string(*text) : std::string()].push_back(
                    {dates[row], estimates[row] != 0});
            }
        }
        return events;
    }

    void compare() {
        std::map<std::string, std::vector<Event>> recorded = recordedEvents();
        for (auto& [title, events] : recorded) {
            std::vector<double>& expected = expected_[title];
            std::sort(events.begin(), events.end());
            std::sort(expected.begin(), expected.end());
            result_.recorded += events.size();
            for (const Event& event : events) {
                result_.estimated += event.isEstimate ? 1 : 0;
                result_.exact +=
                    !event.isEstimate &&
                            std::binary_search(expected.begin(), expected.end(), event.seconds)
                        ? 1
                        : 0;
            }
            result_.surplus +=
                events.size() > expected.size() ? events.size() - expected.size() : 0;
            for (std::size_t i = 0; i < events.size() && events.size() == expected.size(); ++i) {
                if (events[i].isEstimate) {
                    result_.errors.push_back(std::abs(events[i].seconds - expected[i]));
                }
            }
        }
        for (const auto& [title, expected] : expected_) {
            const std::size_t found = recorded[title].size();
            result_.lostLater += expected.size() > found ? expected.size() - found : 0;
        }
        std::sort(result_.errors.begin(), result_.errors.end());
    }

    const std::vector<TruePlay>& plays_;
    const ReplayOptions options_;
    ScratchDirectory directory_;
    RemovalCounter removals_;
    Port<LogSink>::Plug logPlug_{removals_};
    BenchEnvironment environment_;
    std::vector<LibrarySong> songs_;
    std::map<std::string, std::size_t> numbers_;
    std::set<std::size_t> touched_;
    /// By title, the plays that can be recorded.
    std::map<std::string, std::vector<double>> expected_;
    ReplayResult result_;
};

}  // namespace

ReplayResult replay(const std::vector<TruePlay>& plays, const ReplayOptions& options) {
    return Replay(plays, options).run();
}

}  // namespace tavrion::bench
