// The composition root of the command line: makes the platform's services and the data manager,
// plugs every port, and ends a command the way a scene resigns active.
//
// Queue: the main thread. Who owns: one session for the life of a command; a test may make one
// after the other.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "apps/tavrionctl/DataDirectory.h"
#include "apps/tavrionctl/LibraryChoice.h"
#include "apps/tavrionctl/Options.h"
#include "apps/tavrionctl/Presenters.h"
#include "persistence/RVCoreDataManager.h"
#include "platform/cloudkit/NSPersistentCloudKitContainer.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/MediaSnapshotCache.h"
#include "platform/mediaplayer/SourceRegistry.h"
#include "recording/AwardSink.h"

namespace tavrion::ctl {

class Session {
  public:
    /// Opens the data directory and the defaults, and plugs every port.
    static Result<std::unique_ptr<Session>> open(const Options& options);
    ~Session();

    const Options& options() const { return options_; }
    const DataDirectory& directory() const { return directory_; }
    const SourceRegistry& sources() const { return sources_; }
    const MediaSnapshotCache& snapshots() const { return snapshots_; }
    MainQueue& mainQueue() { return *mainQueue_; }
    NSUserDefaults& defaults() { return *defaults_; }
    TerminalScanPresenter& scanPresenter() { return scanPresenter_; }

    /// For commands that write records: one at a time in a data directory.
    Outcome becomeWriter();
    /// Opens the store. A store that can't be used is told and left as it is.
    Outcome openStore();
    /// Reads the chosen library and publishes it. With none chosen it says how to choose one.
    Outcome openLibrary();
    Result<std::optional<LibraryChoice>> libraryChoice() const;
    /// Takes over a source that was read.
    void publish(std::unique_ptr<Source> source, std::shared_ptr<const MediaSnapshot> snapshot);
    /// The store's records as they are saved.
    std::shared_ptr<const StoreVersion> records();
    RVCoreDataManager& data() { return *data_; }
    /// Copies the store into the safety copies and gives the copy's name.
    Result<std::string> makeSafetyCopy(const std::string& reason);

    /// Lets all queues run empty, saves the main context, and lets that finish.
    Outcome resignActive();
    /// A line for people on standard error, unless --quiet.
    void say(const std::string& line) const;

  private:
    Session(Options options, DataDirectory directory, std::unique_ptr<NSUserDefaults> defaults);
    static std::unique_ptr<Clock> clockFor(const Options& options);

    const Options options_;
    const DataDirectory directory_;
    WriterLock lock_;
    const std::unique_ptr<Clock> clock_;
    Regional region_;
    const std::unique_ptr<NSUserDefaults> defaults_;
    NSNotificationCenter notifications_;
    const std::shared_ptr<MainQueue> mainQueue_;
    TimerService timers_;
    MPMediaLibrary library_;
    SourceRegistry sources_;
    const MediaSnapshotCache snapshots_{cacheDirectory()};
    std::shared_ptr<Source> source_;
    NoAwards awards_;
    LocalOnlyMirroring mirroring_;
    TerminalScanPresenter scanPresenter_;
    TerminalFailurePresenter failurePresenter_;
    StandardErrorLogSink logSink_;

    const Port<Clock>::Plug clockPlug_;
    const Port<Regional>::Plug regionPlug_;
    const Port<NSUserDefaults>::Plug defaultsPlug_;
    const Port<NSNotificationCenter>::Plug notificationsPlug_;
    const Port<MainQueue>::Plug mainQueuePlug_;
    const Port<TimerService>::Plug timersPlug_;
    const Port<MPMediaLibrary>::Plug libraryPlug_;
    const Port<AwardSink>::Plug awardsPlug_;
    const Port<MirroringService>::Plug mirroringPlug_;
    const Port<ScanPresenter>::Plug scanPresenterPlug_;
    const Port<FailurePresenter>::Plug failurePresenterPlug_;
    std::optional<Port<LogSink>::Plug> logPlug_;
    /// After the ports that it uses while it is made.
    const std::unique_ptr<RVCoreDataManager> data_;
    const Port<RVCoreDataManager>::Plug dataPlug_;
    const Port<RecordStore>::Plug recordStorePlug_;
};

}  // namespace tavrion::ctl
