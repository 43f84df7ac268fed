// What a command runs in: a session, the options before the command, and the terminal's presenters.
//
// Queue: the main thread. Who owns: one for the life of a command; a test may make one after the
// other.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "apps/tavrionctl/Options.h"
#include "apps/tavrionctl/Presenters.h"
#include "session/Session.h"

namespace tavrion::ctl {

class Session {
  public:
    /// Opens the data directory and the defaults, and plugs every port.
    static Result<std::unique_ptr<Session>> open(const Options& options);

    const Options& options() const { return options_; }
    const DataDirectory& directory() const { return core_->directory(); }
    const SourceRegistry& sources() const { return core_->sources(); }
    const MediaSnapshotCache& snapshots() const { return core_->snapshots(); }
    NSUserDefaults& defaults() { return core_->defaults(); }
    TerminalScanPresenter& scanPresenter() { return scanPresenter_; }

    /// For commands that write records: one at a time in a data directory.
    Outcome becomeWriter();
    /// After becomeWriter() has ended well.
    Writer& writer() { return *writer_; }
    /// Opens the store. A store that can't be used is reported and left as it is.
    Outcome openStore();
    /// Reads the chosen library and publishes it. With none chosen it says how to choose one.
    Outcome openLibrary();
    Result<std::optional<LibraryChoice>> libraryChoice() const { return core_->libraryChoice(); }
    /// Takes over a source that was read.
    void publish(std::unique_ptr<Source> source, std::shared_ptr<const MediaSnapshot> snapshot);
    /// The store's records as they are saved.
    std::shared_ptr<const StoreVersion> records() { return core_->records(); }
    RVCoreDataManager& data() { return core_->data(); }

    /// A line for people on standard error, unless --quiet.
    void say(const std::string& line) const;

  private:
    explicit Session(Options options) : options_(std::move(options)) {}

    const Options options_;
    TerminalScanPresenter scanPresenter_;
    TerminalFailurePresenter failurePresenter_;
    StandardErrorLogSink logSink_;
    /// Goes before its presenters.
    std::unique_ptr<tavrion::Session> core_;
    Writer* writer_ = nullptr;
};

}  // namespace tavrion::ctl
