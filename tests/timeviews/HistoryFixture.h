// A History screen over records that a test makes up, and a window that notes what it is told.
//
// Queue: the test's thread is the main queue.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/foundation/NSKeyedArchiver.h"
#include "tests/support/RecordingEnvironment.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {

class RecordingHistoryScreen final : public HistoryScreen {
  public:
    void applySnapshot(const NSDiffableDataSourceSnapshot& snapshot, bool animated) override {
        applied.push_back(snapshot);
        animations.push_back(animated);
    }
    void setBackgroundViewHidden(bool hidden) override { isBackgroundViewHidden = hidden; }
    bool isStatCellOnHand() const override { return showsFirstRow; }
    void totalsDidChange(const RVHistoryStatCell& cell) override {
        totals.push_back(cell.playsLabel + " / " + cell.durationLabel);
    }
    void chartDidChange(const HistoryChart&) override { ++charts; }
    void chartColorsDidChange(const HistoryChart& chart) override {
        colors.push_back(chart.colors);
    }
    void dateRangeTitleDidChange() override { ++rangeTitles; }
    void setShowsProgress(bool shows) override { progress.push_back(shows); }
    void endRefreshing() override { ++endedRefreshings; }
    void scrollToTop() override { ++scrolls; }
    void presentDateRangeSelector(
        std::unique_ptr<RVDateRangeSelectorViewController> presented) override {
        selector = std::move(presented);
    }
    void presentTooltip(const std::string& title, const std::string& description,
                        std::function<void()> presented) override {
        tooltips.push_back(title + ": " + description);
        if (showsTooltips) {
            presented();
        }
    }
    void presentQuestion(const HistoryDeletionQuestion& asked,
                         std::function<void()> confirmed) override {
        questions.push_back(asked);
        confirm = std::move(confirmed);
    }
    void presentCreatePlaylist(HistoryPlaylist made) override { playlist = std::move(made); }
    void pushEntity(const MPMediaEntity& entity) override { pushed.push_back(entity); }

    bool showsFirstRow = true;
    bool showsTooltips = true;
    std::vector<NSDiffableDataSourceSnapshot> applied;
    std::vector<bool> animations;
    std::optional<bool> isBackgroundViewHidden;
    std::vector<std::string> totals;
    int charts = 0;
    std::vector<HistoryBarColors> colors;
    int rangeTitles = 0;
    std::vector<bool> progress;
    int endedRefreshings = 0;
    int scrolls = 0;
    std::unique_ptr<RVDateRangeSelectorViewController> selector;
    std::vector<std::string> tooltips;
    std::vector<HistoryDeletionQuestion> questions;
    std::function<void()> confirm;
    std::optional<HistoryPlaylist> playlist;
    std::vector<MPMediaEntity> pushed;
};

class HistoryFixture : public testing::Test {
  protected:
    explicit HistoryFixture(const char* now = "2026-03-15T12:00:00Z",
                            const std::string& zone = "UTC")
        : environment(instant(now), zone) {}

    static NSDate instant(const std::string& text) { return *dateFromIsoText(text); }
    void choosePreset(DateRangePreset preset) {
        environment.defaults->setObject(DateRangeKey::history, static_cast<std::int64_t>(preset));
    }
    void chooseInterval(const std::string& start, const std::string& end) {
        environment.defaults->setObject(DateRangeKey::history,
                                        NSKeyedArchiver::archivedDataWithRootObject(
                                            NSDateInterval(instant(start), instant(end))));
    }
    PlaybackHistory song(const std::string& title, double duration = 100) {
        PlaybackHistory history = environment.makeHistory(title, duration);
        history.setArtist("Artist");
        return history;
    }
    PlayEvent play(PlaybackHistory& history, const std::string& date, bool isEstimate = false) {
        return environment.makePlay(history, instant(date).timeIntervalSinceReferenceDate(),
                                    isEstimate);
    }
    const NSDiffableDataSourceSnapshot& update() {
        screen->updateDataSource();
        environment.runUntilIdle();
        return screen->snapshot();
    }
    const HistoryChart& chart() const { return *screen->statCell().chart; }
    void choose(std::size_t x) {
        screen->chartValueSelected(HistoryBar(chart().bars.at(x)));
        environment.runUntilIdle();
    }
    std::string totals() const {
        return screen->statCell().playsLabel + " / " + screen->statCell().durationLabel;
    }
    /// The bars that are not empty, as "x: seconds".
    std::vector<std::string> bars() const {
        std::vector<std::string> texts;
        for (const HistoryBar& bar : chart().bars) {
            if (bar.y != 0) {
                texts.push_back(std::to_string(bar.x) + ": " +
                                std::to_string(static_cast<int>(bar.y)));
            }
        }
        return texts;
    }
    /// The dates of the listed plays, day by day, as the calendar's zone shows them.
    std::vector<std::vector<std::string>> listed() {
        std::vector<std::vector<std::string>> days;
        for (std::size_t section = 1; section < screen->snapshot().numberOfSections(); ++section) {
            std::vector<std::string> dates;
            for (const Value& item : screen->snapshot().itemIdentifiersInSection(section)) {
                dates.push_back(isoTextOfDate(*event(item).eventDate()));
            }
            days.push_back(dates);
        }
        return days;
    }
    PlayEvent event(const Value& item) {
        return PlayEvent(NSManagedObject(environment.main(),
                                         NSManagedObjectID::of(*item.get<ObjectReference>())));
    }

    RecordingEnvironment environment;
    RecordingHistoryScreen window;
    std::shared_ptr<RVHistoryTableViewViewController> screen =
        RVHistoryTableViewViewController::make(&window);
};

}  // namespace tavrion
