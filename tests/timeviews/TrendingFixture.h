// A Trending screen over songs and plays that a test makes up, and a window and a player that note
// what they hear.
//
// Queue: the test's thread is the main queue.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "platform/foundation/NSKeyedArchiver.h"
#include "platform/mediaplayer/MPMusicPlayerController.h"
#include "tests/support/RecordingEnvironment.h"
#include "timeviews/RVDateRangeSelectorViewController.h"
#include "timeviews/RVTrendingCollectionViewController.h"

namespace tavrion {

class RecordingMusicPlayer final : public MPMusicPlayerController {
  public:
    void setQueueWithDescriptor(const MPMusicPlayerMediaItemQueueDescriptor& descriptor) override {
        told.push_back("queue");
        for (const MPMediaItem& item : descriptor.itemCollection().items()) {
            queue.emplace_back(*item.title());
        }
    }
    void setShuffleMode(MPMusicShuffleMode mode) override {
        told.push_back("shuffle " + std::to_string(static_cast<int>(mode)));
        shuffleMode = mode;
    }
    void prepareToPlay() override { told.push_back("prepare"); }
    void play() override { told.push_back("play"); }

    std::vector<std::string> told;
    std::vector<std::string> queue;
    MPMusicShuffleMode shuffleMode = MPMusicShuffleMode::songs;
};

/// Builds the buttons above every section that it shows, as a window does that is tall enough.
class RecordingTrendingScreen final : public ScreenPort<TrendingPage> {
  public:
    void stateDidChange(std::shared_ptr<const TrendingPage> state, StateChange how) override {
        const auto before = std::exchange(page, std::move(state));
        const auto tell = [&](bool isOther, const char* text) {
            if (isOther) {
                told.emplace_back(text);
            }
        };
        tell(page->dateRangeTitle != before->dateRangeTitle, "range title");
        tell(page->groupingTitle != before->groupingTitle, "grouping title");
        if (page->showsProgress != before->showsProgress) {
            told.emplace_back(page->showsProgress ? "progress" : "no progress");
        }
        if (page->ranking.songs != before->ranking.songs ||
            page->ranking.collections != before->ranking.collections) {
            told.emplace_back(page->showsBackgroundView ? "background" : "background hidden");
            told.emplace_back(how == StateChange::animated ? "snapshot, animated" : "snapshot");
            buildControls();
        }
        if (whenChanged) {
            whenChanged();
        }
    }
    void emit(ScreenEvent event) override {
        if (const auto* signal = std::get_if<ScreenSignal>(&event)) {
            told.emplace_back(nameOf(*signal));
        } else if (auto* tooltip = std::get_if<Tooltip>(&event)) {
            hints.push_back(*tooltip);
            if (showsTooltips) {
                tooltip->presented();
            }
        } else if (auto* route = std::get_if<Route>(&event)) {
            routes.push_back(*route);
        } else if (auto* request = std::get_if<PlaylistRequest>(&event)) {
            playlist = *request;
        }
    }
    void buildControls() {
        for (const int section : page->ranking.sectionIdentifiers()) {
            if (showsControls) {
                controls[section] = controller->controlsForSection(section);
                controller->controlsDidAppear(section);
            }
        }
    }
    static const char* nameOf(ScreenSignal signal) {
        switch (signal) {
            case ScreenSignal::scrollToTop:
                return "top";
            case ScreenSignal::endRefreshing:
                return "refreshed";
            case ScreenSignal::lightImpact:
                return "impact";
            case ScreenSignal::becomeTabBarDelegate:
                return "delegate";
            default:
                return "something that this page has no use for";
        }
    }

    RVTrendingCollectionViewController* controller = nullptr;
    std::shared_ptr<const TrendingPage> page = std::make_shared<TrendingPage>();
    bool showsControls = true;
    bool showsTooltips = true;
    std::vector<std::string> told;
    std::map<int, std::optional<TrendingControls>> controls;
    std::vector<Tooltip> hints;
    std::vector<Route> routes;
    std::optional<PlaylistRequest> playlist;
    std::function<void()> whenChanged;
};

class TrendingFixture : public testing::Test {
  protected:
    TrendingFixture() {
        window.controller = screen.get();
        store(0, 1000);
        for (const char* const name :
             {TrendingNotification::didBegin, TrendingNotification::didChange,
              TrendingNotification::didEnd}) {
            observations.push_back(environment.centre.addObserver(
                name, nullptr, nullptr, [this](const NSNotification& notification) {
                    if (const float* progress = notification.info<float>("progress")) {
                        noted.push_back(*progress);
                        if (whenProgressing) {
                            whenProgressing();
                        }
                    } else {
                        told.push_back(notification.name);
                    }
                }));
        }
    }

    void store(double start, double end) {
        environment.defaults->setObject(
            DateRangeKey::trending,
            NSKeyedArchiver::archivedDataWithRootObject(
                NSDateInterval(RecordingEnvironment::at(start), RecordingEnvironment::at(end))));
    }
    void group(int grouping) {
        environment.defaults->setObject(TrendingDefaults::groupingType, grouping);
    }
    void rankByTime() { environment.defaults->setObject(TrendingDefaults::weightedRankFormat, 2); }
    /// A record whose song is in the library from the next publish() on.
    PlaybackHistory song(const std::string& title, int plays, const std::string& artist = "Artist",
                         const std::string& album = "Album", const std::string& genre = "Genre",
                         double duration = 100) {
        songs.push_back({.title = title,
                         .artist = artist,
                         .albumArtist = artist,
                         .albumTitle = album,
                         .genre = genre,
                         .duration = duration});
        PlaybackHistory history = environment.makeHistory(title, duration);
        history.setArtist(artist);
        history.setAlbumID(artist + "——" + album);
        history.setGenre(genre);
        for (int i = 0; i < plays; ++i) {
            environment.makePlay(history, 1 + 0.001 * ++playsMade);
        }
        return history;
    }
    const TrendingSnapshot& update() {
        environment.library.publish(songs);
        noted.clear();
        told.clear();
        screen->updateDataSource();
        environment.runUntilIdle();
        return screen->snapshot();
    }
    static std::string rowText(const RVTrendingEntity& row) {
        const std::string numbers = " " + std::to_string(row.playCount) + " " +
                                    std::to_string(static_cast<int>(row.playDuration));
        if (const MPMediaItem* item = row.entity.item()) {
            return std::string(item->title().value_or("?")) + numbers;
        }
        const MPMediaItem item = *row.entity.collection()->representativeItem();
        switch (row.entity.collection()->groupingType()) {
            case MPMediaGrouping::album:
                return std::string(*item.albumTitle()) + numbers;
            case MPMediaGrouping::genre:
                return std::string(*item.genre()) + numbers;
            default:
                return std::string(*item.albumArtist()) + numbers;
        }
    }
    static std::vector<std::string> texts(const std::vector<TrendingRow>& rows) {
        std::vector<std::string> texts;
        for (const TrendingRow& row : rows) {
            texts.push_back(rowText(*row));
        }
        return texts;
    }

    RecordingEnvironment environment;
    std::vector<TestSong> songs;
    int playsMade = 0;
    std::vector<float> noted;
    std::vector<std::string> told;
    std::function<void()> whenProgressing;
    std::vector<NSNotificationCenter::Observation> observations;
    RecordingMusicPlayer player;
    Port<MPMusicPlayerController>::Plug playerPlug{player};
    RecordingTrendingScreen window;
    std::shared_ptr<RVTrendingCollectionViewController> screen =
        RVTrendingCollectionViewController::make();
    ScreenAttachment attachment = screen->attach(window);
};

}  // namespace tavrion
