// A History screen over records that a test makes up, and a window that notes what it hears.
//
// Queue: the test's thread is the main queue.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/foundation/NSKeyedArchiver.h"
#include "tests/support/RecordingEnvironment.h"
#include "timeviews/RVDateRangeSelectorViewController.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {

/// Builds the first row of every list that has one, as a window does that stands at the top.
class RecordingHistoryScreen final : public ScreenPort<HistoryPage> {
  public:
    using Controller = RVHistoryTableViewViewController;

    void stateDidChange(std::shared_ptr<const HistoryPage> state, StateChange how) override {
        const auto before = std::exchange(page, std::move(state));
        if (page->list != before->list) {
            applied.push_back(*page->list);
            animations.push_back(how == StateChange::animated);
            reportFirstRow();
        }
        const RVHistoryStatCell& cell = page->statCell;
        const std::string text = cell.playsLabel + " / " + cell.durationLabel;
        if (text != before->statCell.playsLabel + " / " + before->statCell.durationLabel) {
            totals.push_back(text);
        }
        if (page->chartRisings != before->chartRisings) {
            ++charts;
        } else if (cell.chart != before->statCell.chart) {
            colors.push_back(cell.chart->colors);
        }
        if (page->dateRangeTitle != before->dateRangeTitle) {
            ++rangeTitles;
        }
        if (page->showsProgress != before->showsProgress) {
            progress.push_back(page->showsProgress);
        }
        if (whenChanged) {
            whenChanged();
        }
    }
    void emit(ScreenEvent event) override {
        if (const auto* signal = std::get_if<ScreenSignal>(&event)) {
            signals.push_back(*signal);
        } else if (auto* tooltip = std::get_if<Tooltip>(&event)) {
            tooltips.push_back(*tooltip);
            if (showsTooltips) {
                tooltip->presented();
            }
        } else if (auto* alert = std::get_if<Alert>(&event)) {
            alerts.push_back(*alert);
        } else if (auto* route = std::get_if<Route>(&event)) {
            routes.push_back(*route);
        } else if (auto* request = std::get_if<PlaylistRequest>(&event)) {
            playlist = *request;
        }
    }
    void reportFirstRow() const {
        if (showsFirstRow && page->list->numberOfItemsInSection(0) > 0) {
            controller->statCellDidAppear();
        } else {
            controller->statCellDidDisappear();
        }
    }
    /// The answer that deletes.
    void confirm() const { alerts.back().actions.front().handler(); }

    Controller* controller = nullptr;
    std::shared_ptr<const HistoryPage> page = std::make_shared<HistoryPage>();
    bool showsFirstRow = true;
    bool showsTooltips = true;
    std::vector<NSDiffableDataSourceSnapshot> applied;
    std::vector<bool> animations;
    std::vector<std::string> totals;
    int charts = 0;
    std::vector<HistoryBarColors> colors;
    int rangeTitles = 0;
    std::vector<bool> progress;
    std::vector<ScreenSignal> signals;
    std::vector<Tooltip> tooltips;
    std::vector<Alert> alerts;
    std::vector<Route> routes;
    std::optional<PlaylistRequest> playlist;
    std::function<void()> whenChanged;
};

class HistoryFixture : public testing::Test {
  protected:
    explicit HistoryFixture(const char* now = "2026-03-15T12:00:00Z",
                            const std::string& zone = "UTC")
        : environment(instant(now), zone) {
        window.controller = screen.get();
    }

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
    const HistoryChart& chart() const { return *screen->state()->statCell.chart; }
    void choose(std::size_t x) {
        screen->chartValueSelected(HistoryBar(chart().bars.at(x)));
        environment.runUntilIdle();
    }
    std::string totals() const {
        const RVHistoryStatCell& cell = screen->state()->statCell;
        return cell.playsLabel + " / " + cell.durationLabel;
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
        RVHistoryTableViewViewController::make();
    ScreenAttachment attachment = screen->attach(window);
    /// What a window finds when it attaches itself.
    const bool isFilled = (window.page = screen->state()) != nullptr;
};

}  // namespace tavrion
