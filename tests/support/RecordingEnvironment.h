// Everything that recording stands on, plugged for one test: a clock, a zone, defaults in memory, a
// library that the test makes up, a store in a directory of its own, and presenters that note what
// they hear.
//
// Queue: the test's thread is the main queue.
#pragma once

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "persistence/FailurePresenter.h"
#include "persistence/RVCoreDataManager.h"
#include "platform/cloudkit/NSPersistentCloudKitContainer.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "recording/Achievement.h"
#include "recording/AwardSink.h"
#include "recording/PlayEvent.h"
#include "recording/PlaybackHistory.h"
#include "recording/ScanPresenter.h"
#include "session/Wiring.h"

namespace tavrion {

/// Earns an award once, as the awards do.
class RecordingAwards final : public AwardSink {
  public:
    bool earnAchievementWithIdentifier(const std::string& identifier, int tier,
                                       std::optional<NSDate> date,
                                       NSManagedObjectContext& context) override;
    void updateAchievements() override;

    std::set<std::string> earned;
    /// Answers that every call raised the tier.
    bool earnsAgain = false;
    std::vector<std::string> asked;
    std::atomic<int> updates{0};
    /// The scan date that stood in the defaults when the pass was started.
    std::optional<NSDate> scanDateAtUpdate;
    std::function<void()> whenUpdating;
};

class RecordingScanPresenter final : public ScanPresenter {
  public:
    void presentProgress() override { ++progressPopups; }
    void ask(const SuspectQuestion& question, std::function<void(SuspectAnswer)> answer) override;

    int progressPopups = 0;
    std::vector<SuspectQuestion> questions;
    /// Given at once; without one the test answers by itself.
    std::optional<SuspectAnswer> answerAtOnce = SuspectAnswer::keepAll;
    std::function<void(SuspectAnswer)> pendingAnswer;
};

class RecordingFailurePresenter final : public FailurePresenter {
  public:
    void presentDataFailure(const NSError& error) override { dataFailures.push_back(error); }
    void endProcess(const NSError& error) override {
        if (endings.empty() && whenEnding) {
            whenEnding();
        }
        endings.push_back(error);
    }

    std::vector<NSError> dataFailures;
    std::vector<NSError> endings;
    /// Called at the moment when a program would have ended.
    std::function<void()> whenEnding;
};

class RecordingLogSink final : public LogSink {
  public:
    void line(std::string_view text) override {
        MutexLock lock(mutex_);
        lines_.emplace_back(text);
    }
    std::size_t count(const std::string& text) const {
        MutexLock lock(mutex_);
        return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), text));
    }

    std::size_t countBeginning(const std::string& text) const {
        MutexLock lock(mutex_);
        return static_cast<std::size_t>(
            std::count_if(lines_.begin(), lines_.end(),
                          [&](const std::string& line) { return line.starts_with(text); }));
    }

  private:
    mutable Mutex mutex_;
    std::vector<std::string> lines_ TAVRION_GUARDED_BY(mutex_);
};

/// A play as tests compare it.
struct RecordedPlay {
    double seconds = 0;
    bool isInterpolated = false;
    std::string title;
    auto operator<=>(const RecordedPlay&) const = default;
};

class RecordingEnvironment {
  public:
    explicit RecordingEnvironment(
        NSDate now = NSDate::dateWithTimeIntervalSinceReferenceDate(794059200),
        const std::string& zone = "UTC");
    ~RecordingEnvironment();

    std::filesystem::path storeFile() const { return directory_ / "Nerinda.sqlite"; }
    NSManagedObjectContext& main() { return *data->mainContext(); }
    void runUntilIdle() { mainQueue->runUntilIdle(); }
    /// A scan from `since`, with everything that follows it; tells whether its completion was
    /// called.
    bool scan(NSDate since = NSDate::distantPast(), bool popup = false);
    /// The same by the rule of the ordinary entry point.
    bool scanByRule(bool popup = false);

    /// In the order of their dates.
    std::vector<RecordedPlay> plays();
    std::vector<PlaybackHistory> histories();
    PlaybackHistory history(const std::string& title);
    /// Makes a record in the main context.
    PlaybackHistory makeHistory(const std::string& title, double duration,
                                const std::string& storeID = "", const std::string& libraryID = "");
    PlayEvent makePlay(PlaybackHistory& history, double seconds, bool isInterpolated = false);
    /// Saves the main context and lets the clean-up run.
    void saveMain();

    static NSDate at(double seconds) {
        return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
    }

    std::filesystem::path directory_;
    ManualClock clock;
    Regional region;
    Port<Regional>::Plug regionPlug{region};
    std::unique_ptr<NSUserDefaults> defaults = NSUserDefaults::inMemory();
    NSNotificationCenter centre;
    std::shared_ptr<MainQueue> mainQueue = MainQueue::make();
    TimerService timers{true};
    MediaLibraryFixture library;
    RecordingAwards awards;
    LocalOnlyMirroring mirroring;
    RecordingScanPresenter presenter;
    RecordingFailurePresenter failures;
    RecordingLogSink log;
    /// As a program is wired, with the parts above.
    Wiring wiring;
    RVCoreDataManager* data;
};

}  // namespace tavrion
