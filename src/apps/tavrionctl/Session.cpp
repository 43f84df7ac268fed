#include "apps/tavrionctl/Session.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/foundation/NSLocalizedString.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "sources/musicxml/MusicXmlSource.h"
#include "sources/sample/SampleSource.h"

namespace tavrion::ctl {

Result<std::unique_ptr<Session>> Session::open(const Options& options) {
    auto directory = DataDirectory::open(options.dataDirectory);
    if (!directory) {
        return directory.error();
    }
    auto defaults = NSUserDefaults::open(directory.value().defaults());
    if (!defaults) {
        return defaults.error();
    }
    return std::unique_ptr<Session>(
        new Session(options, std::move(directory).value(), std::move(defaults).value()));
}

namespace {

/// Where the translations were installed, unless the user has them elsewhere.
const char* translationFolder() {
    const char* chosen = std::getenv("TEXTDOMAINDIR");
    return chosen != nullptr && *chosen != '\0' ? chosen : TAVRION_LOCALE_DIRECTORY;
}

/// Before there is a queue: the languages are a setting of the whole process.
Regional regionWithTranslations() {
    Regional region = Regional::fromEnvironment();
    bindTranslations(translationFolder(), region.locale());
    return region;
}

}  // namespace

std::unique_ptr<Clock> Session::clockFor(const Options& options) {
    if (options.now) {
        return std::make_unique<FixedClock>(*options.now);
    }
    return std::make_unique<SystemClock>();
}

Session::Session(Options options, DataDirectory directory, std::unique_ptr<NSUserDefaults> defaults)
    : options_(std::move(options)),
      directory_(std::move(directory)),
      clock_(clockFor(options_)),
      region_(regionWithTranslations()),
      defaults_(std::move(defaults)),
      mainQueue_(MainQueue::make()),
      timers_(clock_->standsStill()),
      clockPlug_(*clock_),
      regionPlug_(region_),
      defaultsPlug_(*defaults_),
      notificationsPlug_(notifications_),
      mainQueuePlug_(*mainQueue_),
      timersPlug_(timers_),
      libraryPlug_(library_),
      awardsPlug_(awards_),
      mirroringPlug_(mirroring_),
      scanPresenterPlug_(scanPresenter_),
      failurePresenterPlug_(failurePresenter_),
      data_(std::make_unique<RVCoreDataManager>(directory_.store(), mainQueue_)),
      dataPlug_(*data_),
      recordStorePlug_(*data_) {
    if (const char* log = std::getenv("TAVRION_LOG");
        log != nullptr && std::strcmp(log, "stderr") == 0) {
        logPlug_.emplace(logSink_);
    }
    registerMusicXmlSource(sources_);
    registerSampleSource(sources_, directory_.sampleLibrary());
    Nerinda::registerComputedKeys();
    scanPresenter_.setShowsProgress(!options_.quiet && !options_.json &&
                                    ::isatty(STDERR_FILENO) == 1);
}

Session::~Session() {
    // Nothing may run any more when the ports are taken out.
    mainQueue_->runUntilIdle();
    library_.setSource(nullptr);
}

Outcome Session::becomeWriter() {
    const auto refusal = lock_.take(directory_.lock());
    if (!refusal) {
        return {};
    }
    return {refusal->failure == WriterLock::Failure::inUse ? Outcome::inUse : Outcome::failed,
            refusal->message};
}

Outcome Session::openStore() {
    // A store that can't be loaded is told by the failure presenter, which ends the process.
    return data_->mainContext() ? Outcome() : Outcome::failure("the store can't be opened");
}

Result<std::optional<LibraryChoice>> Session::libraryChoice() const {
    return readLibraryChoice(directory_.libraryChoice());
}

Outcome Session::openLibrary() {
    const auto choice = libraryChoice();
    if (!choice) {
        return Outcome::failure(choice.error().localizedDescription);
    }
    if (!choice.value()) {
        return Outcome::failure(
            "no music library is chosen; choose one with tavrionctl library use KIND LOCATION");
    }
    auto source = sources_.create(choice.value()->kind, choice.value()->location);
    if (!source) {
        return Outcome::failure(source.error().localizedDescription);
    }
    auto snapshot = snapshots_.read(*source.value());
    if (!snapshot) {
        return Outcome::failure(snapshot.error().localizedDescription);
    }
    publish(std::move(source).value(), std::move(snapshot).value());
    return {};
}

void Session::publish(std::unique_ptr<Source> source,
                      std::shared_ptr<const MediaSnapshot> snapshot) {
    source_ = std::move(source);
    library_.setSource(source_);
    library_.setAuthorizationStatus(MPMediaLibraryAuthorizationStatus::authorized);
    library_.publish(std::move(snapshot));
}

std::shared_ptr<const StoreVersion> Session::records() {
    return data_->mainContext()->snapshot();
}

Result<std::string> Session::makeSafetyCopy(const std::string& reason) {
    std::error_code failure;
    std::filesystem::create_directories(directory_.backups(), failure);
    std::string stamp = isoTextOfDate(NSDate::date());
    std::erase_if(stamp, [](char c) { return c == ':' || c == '-' || c == '.'; });
    std::string name = fmt::format("{}-{}", stamp, reason);
    for (int n = 2; std::filesystem::exists(directory_.backups() / (name + ".sqlite"), failure);
         ++n) {
        name = fmt::format("{}-{}-{}", stamp, reason, n);
    }
    const auto copied = data_->persistentContainer()->persistentStore()->copyTo(
        directory_.backups() / (name + ".sqlite"));
    if (!copied) {
        return copied.error();
    }
    return name;
}

Outcome Session::resignActive() {
    mainQueue_->runUntilIdle();
    data_->saveMainContext();
    mainQueue_->runUntilIdle();
    const Result<void> written = defaults_->synchronize();
    return written ? Outcome() : Outcome::failure(written.error().localizedDescription);
}

void Session::say(const std::string& line) const {
    if (!options_.quiet) {
        fmt::print(stderr, "{}\n", line);
    }
}

}  // namespace tavrion::ctl
