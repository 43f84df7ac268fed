// The History screen beside its peer, over all plays and over one day of them; and how long its
// updates take while a scan of a whole library runs and saves.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>

#include "bench/Fixtures.h"
#include "platform/foundation/NSKeyedArchiver.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "timeviews/RVDateRangeSelectorViewController.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion::bench {
namespace {

constexpr double lifetimeStart = endOfYears - tenYears - 1;
constexpr double lifetimeEnd = endOfYears + 1;
constexpr double dayStart = endOfYears - tenYears / 2;
constexpr double dayEnd = dayStart + 86400;

void chooseRange(double start, double end) {
    NSUserDefaults::standardUserDefaults().setObject(
        DateRangeKey::history, NSKeyedArchiver::archivedDataWithRootObject(NSDateInterval(
                                   NSDate::dateWithTimeIntervalSinceReferenceDate(start),
                                   NSDate::dateWithTimeIntervalSinceReferenceDate(end))));
}

/// Lists every play, and the bars come to the time of all of them.
bool agrees(const RVHistoryTableViewViewController& screen, const peer_totals& peers) {
    std::size_t listed = 0;
    for (std::size_t section = 1; section < screen.snapshot().numberOfSections(); ++section) {
        listed += screen.snapshot().numberOfItemsInSection(section);
    }
    double seconds = 0;
    for (const HistoryBar& bar : screen.state()->statCell.chart->bars) {
        seconds += bar.y;
    }
    return static_cast<std::int64_t>(listed) == peers.plays &&
           std::abs(seconds - peers.seconds) <= 1e-6 * peers.seconds;
}

void showTavrion(benchmark::State& state, double start, double end) {
    BenchEnvironment environment(fixtures().store(), endOfYears);
    environment.publish(fixtures().snapshot);
    chooseRange(start, end);
    demand(!environment.main().hasChanges(), "the store is open before the time counts");
    const auto screen = RVHistoryTableViewViewController::make();
    for (auto _ : state) {
        screen->updateDataSource();
        environment.mainQueue->runUntilIdle();
    }
    demand(agrees(*screen, peer_history(fixtures().indexedStore().c_str(), start, end)),
           "both show the same plays");
    noteTurn(state, environment);
}

void showPeer(benchmark::State& state, double start, double end) {
    const std::string file = fixtures().indexedStore();
    for (auto _ : state) {
        demand(peer_history(file.c_str(), start, end).plays > 0, "there are plays to show");
    }
}

// A reader beside a scan

/// Starts the next update when the one before is shown, and notes how long each took.
class UpdatingScreen final : public ScreenPort<HistoryPage> {
  public:
    void updateUntilStopped() {
        controller_ = RVHistoryTableViewViewController::make();
        attachment_ = controller_->attach(*this);
        update();
    }
    void stop() { isStopped_ = true; }
    std::size_t updates() const { return updates_; }
    /// In milliseconds.
    double longest() const { return longest_; }

    void stateDidChange(std::shared_ptr<const HistoryPage> state, StateChange) override {
        const auto before = std::exchange(page_, std::move(state));
        if (page_->list != before->list) {
            if (page_->list->numberOfSections() == 0) {
                finish();
            } else {
                controller_->statCellDidAppear();
            }
        }
        if (page_->chartRisings != before->chartRisings) {
            finish();
        }
    }
    void emit(ScreenEvent) override {}

  private:
    void update() {
        begin_ = std::chrono::steady_clock::now();
        controller_->updateDataSource();
    }
    void finish() {
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - begin_;
        longest_ = std::max(longest_, took.count());
        ++updates_;
        if (!isStopped_) {
            // Not from within: what an update still does after this is a part of it.
            Port<MainQueue>::current().async([this] { update(); });
        }
    }

    std::shared_ptr<const HistoryPage> page_ = std::make_shared<HistoryPage>();
    std::shared_ptr<RVHistoryTableViewViewController> controller_;
    ScreenAttachment attachment_;
    std::chrono::steady_clock::time_point begin_;
    double longest_ = 0;
    std::size_t updates_ = 0;
    bool isStopped_ = false;
};

void updateDuringScan(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        BenchEnvironment environment(freshFile(), endOfYears);
        environment.publish(fixtures().snapshot);
        chooseRange(lifetimeStart, lifetimeEnd);
        environment.main();
        UpdatingScreen screen;
        state.ResumeTiming();
        RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false,
                                                                 [&screen] { screen.stop(); });
        screen.updateUntilStopped();
        environment.mainQueue->runUntilIdle();
        state.PauseTiming();
        demand(environment.songsMatched() == songCount && !environment.main().hasChanges(),
               "the scan matched every song and is on the disk");
        state.counters["updates"] = static_cast<double>(screen.updates());
        state.counters["longestUpdate"] =
            std::max(static_cast<double>(state.counters["longestUpdate"]), screen.longest());
        state.ResumeTiming();
    }
}

void lifetimeTavrion(benchmark::State& state) {
    showTavrion(state, lifetimeStart, lifetimeEnd);
}
void lifetimePeer(benchmark::State& state) {
    showPeer(state, lifetimeStart, lifetimeEnd);
}
void dayTavrion(benchmark::State& state) {
    showTavrion(state, dayStart, dayEnd);
}
void dayPeer(benchmark::State& state) {
    showPeer(state, dayStart, dayEnd);
}

[[maybe_unused]] const bool isRegistered = [] {
    constexpr int often = 10;
    measure("history/tavrion", lifetimeTavrion, often);
    measure("history/peer", lifetimePeer);
    measure("history-day/tavrion", dayTavrion, often);
    measure("history-day/peer", dayPeer, often);
    measure("history-during-scan/tavrion", updateDuringScan);
    return true;
}();

}  // namespace
}  // namespace tavrion::bench
