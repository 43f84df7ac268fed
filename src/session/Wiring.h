// Plugs every port of the core: the platform's services, who shows things to the user, and the data
// manager over a store. Both programs, the tests and the benchmarks are wired by this alone.
//
// Queue: the thread that is the main queue. Who owns: whoever makes it keeps the services, which
// outlive it. At its end all queues run empty, and then the ports are as they were before.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "persistence/FailurePresenter.h"
#include "persistence/RVCoreDataManager.h"
#include "platform/cloudkit/NSPersistentCloudKitContainer.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "recording/AwardSink.h"
#include "recording/ScanPresenter.h"
#include "session/SourcePlayer.h"

namespace tavrion {

/// What a core runs on. The region is plugged before, by who knows where it comes from.
struct Services {
    Clock& clock;
    NSUserDefaults& defaults;
    NSNotificationCenter& notifications;
    std::shared_ptr<MainQueue> mainQueue;
    TimerService& timers;
    MPMediaLibrary& library;
    AwardSink& awards;
    MirroringService& mirroring;
    ScanPresenter& scanPresenter;
    FailurePresenter& failurePresenter;
    /// Null where nobody reads the log.
    LogSink* log = nullptr;
};

class Wiring {
  public:
    /// Over the store `file`, which is opened when it is first asked for.
    Wiring(const Services& services, const std::filesystem::path& file);
    ~Wiring();
    Wiring(const Wiring&) = delete;
    Wiring& operator=(const Wiring&) = delete;

    RVCoreDataManager& data() { return *data_; }
    /// Lets go of the store, and opens it again when it is next asked for.
    void reopenStore(const std::filesystem::path& file);
    /// Lets go of the store for good.
    void closeStore();

  private:
    const std::shared_ptr<MainQueue> mainQueue_;
    SourcePlayer player_;

    const Port<Clock>::Plug clockPlug_;
    const Port<NSUserDefaults>::Plug defaultsPlug_;
    const Port<NSNotificationCenter>::Plug notificationsPlug_;
    const Port<MainQueue>::Plug mainQueuePlug_;
    const Port<TimerService>::Plug timersPlug_;
    const Port<MPMediaLibrary>::Plug libraryPlug_;
    const Port<MPMusicPlayerController>::Plug playerPlug_;
    const Port<AwardSink>::Plug awardsPlug_;
    const Port<MirroringService>::Plug mirroringPlug_;
    const Port<ScanPresenter>::Plug scanPresenterPlug_;
    const Port<FailurePresenter>::Plug failurePresenterPlug_;
    std::optional<Port<LogSink>::Plug> logPlug_;
    /// After the ports that it uses while it is made.
    std::unique_ptr<RVCoreDataManager> data_;
    std::optional<Port<RVCoreDataManager>::Plug> dataPlug_;
    std::optional<Port<RecordStore>::Plug> recordStorePlug_;
};

}  // namespace tavrion
