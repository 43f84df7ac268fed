// A running core for one measurement: every port plugged as the programs plug it, a clock that
// stands still, and a library that the measurement publishes.
//
// Queue: the thread that makes it is the main queue. Who owns: the directory goes with it.
#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>

#include "persistence/FailurePresenter.h"
#include "persistence/RVCoreDataManager.h"
#include "platform/cloudkit/NSPersistentCloudKitContainer.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/testing/ManualClock.h"
#include "recording/AwardSink.h"
#include "recording/ScanPresenter.h"
#include "session/Wiring.h"

namespace tavrion::bench {

/// Ends the process at the first failure, so that no failed work is measured.
class EndingPresenter final : public FailurePresenter {
  public:
    void presentDataFailure(const NSError& error) override { endProcess(error); }
    void endProcess(const NSError& error) override;
};

class SilentScanPresenter final : public ScanPresenter {
  public:
    void presentProgress() override {}
    void ask(const SuspectQuestion& question, std::function<void(SuspectAnswer)> answer) override {
        static_cast<void>(question);
        answer(SuspectAnswer::keepAll);
    }
};

/// A directory that goes with its owner.
class ScratchDirectory {
  public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::string file(const std::string& name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

/// The tables of a new store, as SQL; also for the peer's file.
std::string storeSchema();

class BenchEnvironment {
  public:
    /// Over the store `file`, which is made when it is missing.
    BenchEnvironment(const std::filesystem::path& file, double now);
    ~BenchEnvironment();

    void publish(std::shared_ptr<const MediaSnapshot> snapshot);
    /// A scan of everything and all that follows it, the main save included.
    void scan();
    /// The same as the ordinary entry point looks, at that instant.
    void scanByRule(double now);
    NSManagedObjectContext& main() { return *data->mainContext(); }
    /// The longest single turn of the main queue so far, in seconds.
    double longestTurn() const { return mainQueue->longestTurn(); }
    /// How many songs the scans matched.
    std::size_t songsMatched() const { return songsMatched_; }

  private:
    ManualClock clock_;
    Regional region_{*NSTimeZone::timeZoneWithName("Europe/Berlin"), "en_US"};
    Port<Regional>::Plug regionPlug_{region_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    NSNotificationCenter centre_;
    TimerService timers_{true};
    MPMediaLibrary library_;
    NoAwards awards_;
    LocalOnlyMirroring mirroring_;
    SilentScanPresenter presenter_;
    EndingPresenter failures_;
    std::atomic<std::size_t> songsMatched_{0};
    NSNotificationCenter::Observation updates_;

  public:
    std::shared_ptr<MainQueue> mainQueue = MainQueue::make();

  private:
    Wiring wiring_;

  public:
    RVCoreDataManager* data;
};

}  // namespace tavrion::bench
