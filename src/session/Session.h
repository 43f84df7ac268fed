// A running program over one data directory: what both programs make at their start, the services
// of the platform, the chosen library and the records.
//
// Queue: the main thread. Who owns: one session for the life of a program; a test may make one
// after the other. A session reads. Writing takes a Writer, which holds the directory's lock: a
// program that has none can't write, however it asks.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/foundation/CurrentRegion.h"
#include "platform/mediaplayer/MediaSnapshotCache.h"
#include "platform/mediaplayer/SourceRegistry.h"
#include "session/DataDirectory.h"
#include "session/LibraryChoice.h"
#include "session/Wiring.h"
#include "session/WriterLock.h"

namespace tavrion {

struct SessionSettings {
    /// Absent: by the environment.
    std::optional<std::string> dataDirectory;
    /// The instant at which the clock stands; absent means the computer's clock.
    std::optional<NSDate> now;
    /// Where the translations are installed, unless the user has them elsewhere.
    std::filesystem::path translations;
};

/// What a program shows to its user by itself. They outlive the session.
struct SessionPresenters {
    ScanPresenter& scan;
    FailurePresenter& failure;
    /// Null where nobody reads the log.
    LogSink* log = nullptr;
};

class Session;

/// Who may write into the data directory: one at a time, in all processes.
class Writer {
  public:
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /// Keeps which library is read from now on.
    Result<void> chooseLibrary(const LibraryChoice& choice);
    /// No library is chosen any more. Records stay.
    Result<void> forgetLibrary();
    /// Copies the store into the safety copies and gives the copy's name.
    Result<std::string> makeSafetyCopy(const std::string& reason);
    /// As a scene that resigns active: lets all queues run empty, saves the main context, and lets
    /// that finish.
    Result<void> resignActive();

  private:
    friend class Session;
    Writer(Session& session, WriterLock lock) : session_(session), lock_(std::move(lock)) {}
    Session& session_;
    const WriterLock lock_;
};

class Session {
  public:
    /// Opens the data directory and the defaults, and plugs every port.
    static Result<std::unique_ptr<Session>> open(const SessionSettings& settings,
                                                 const SessionPresenters& presenters);
    ~Session();

    const DataDirectory& directory() const { return directory_; }
    const SourceRegistry& sources() const { return sources_; }
    const MediaSnapshotCache& snapshots() const { return snapshots_; }
    MainQueue& mainQueue() { return *mainQueue_; }
    NSUserDefaults& defaults() { return *defaults_; }
    /// What the opening found that the user is to know; one line each.
    const std::vector<std::string>& notices() const { return notices_; }

    /// Before the store is first asked for. The writer is the session's and stays as long.
    std::variant<Writer*, WriterLock::Refusal> becomeWriter();
    /// Reads the chosen library and publishes it. With none chosen the error says how to choose
    /// one.
    Result<void> openLibrary();
    Result<std::optional<LibraryChoice>> libraryChoice() const;
    /// Takes over a source that was read.
    void publish(std::shared_ptr<Source> source, std::shared_ptr<const MediaSnapshot> snapshot);

    /// False when the store can't be used, which is reported to the failure presenter.
    bool openStore();
    /// The store's records as they are saved. After openStore().
    std::shared_ptr<const StoreVersion> records();
    RVCoreDataManager& data() { return wiring_->data(); }

    /// Asks again for the zone and the locale, as each time the user comes back. The library is
    /// read again where its order changes with the locale. Whether anything became different.
    bool refreshRegion();

  private:
    friend class Writer;
    Session(const SessionSettings& settings, const SessionPresenters& presenters,
            DataDirectory directory, std::unique_ptr<NSUserDefaults> defaults);

    const DataDirectory directory_;
    const std::vector<std::string> notices_;
    CurrentRegion region_;
    const std::unique_ptr<Clock> clock_;
    const std::unique_ptr<NSUserDefaults> defaults_;
    NSNotificationCenter notifications_;
    const std::shared_ptr<MainQueue> mainQueue_;
    TimerService timers_;
    MPMediaLibrary library_;
    SourceRegistry sources_;
    const MediaSnapshotCache snapshots_;
    NoAwards awards_;
    LocalOnlyMirroring mirroring_;
    /// Goes after the wiring: the lock is held until the store is closed.
    std::unique_ptr<Writer> writer_;
    std::unique_ptr<Wiring> wiring_;
};

}  // namespace tavrion
