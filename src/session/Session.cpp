#include "session/Session.h"

#include <fmt/format.h>

#include <cstdlib>
#include <utility>

#include "platform/foundation/NSLocalizedString.h"
#include "sources/musicxml/MusicXmlSource.h"
#include "sources/sample/SampleSource.h"

namespace tavrion {
namespace {

std::filesystem::path translationFolder(const std::filesystem::path& installed) {
    const char* chosen = std::getenv("TEXTDOMAINDIR");
    return chosen != nullptr && *chosen != '\0' ? std::filesystem::path(chosen) : installed;
}

std::unique_ptr<Clock> clockFor(const std::optional<NSDate>& now) {
    if (now) {
        return std::make_unique<FixedClock>(*now);
    }
    return std::make_unique<SystemClock>();
}

}  // namespace

Result<void> Writer::chooseLibrary(const LibraryChoice& choice) {
    return writeLibraryChoice(session_.directory().libraryChoice(), choice);
}

Result<void> Writer::forgetLibrary() {
    const std::filesystem::path file = session_.directory().libraryChoice();
    std::error_code failure;
    std::filesystem::remove(file, failure);
    if (failure) {
        return NSError{file.string() + ": the choice can't be removed (" + failure.message() + ")",
                       {}};
    }
    return {};
}

Result<std::string> Writer::makeSafetyCopy(const std::string& reason) {
    const std::filesystem::path folder = session_.directory().backups();
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failure);
    std::string stamp = isoTextOfDate(NSDate::date());
    std::erase_if(stamp, [](char c) { return c == ':' || c == '-' || c == '.'; });
    std::string name = fmt::format("{}-{}", stamp, reason);
    for (int n = 2; std::filesystem::exists(folder / (name + ".sqlite"), failure); ++n) {
        name = fmt::format("{}-{}-{}", stamp, reason, n);
    }
    const auto copied = session_.data().persistentContainer()->persistentStore()->copyTo(
        folder / (name + ".sqlite"));
    if (!copied) {
        return copied.error();
    }
    std::filesystem::permissions(
        folder / (name + ".sqlite"),
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, failure);
    return name;
}

Result<void> Writer::resignActive() {
    session_.mainQueue().runUntilIdle();
    session_.data().saveMainContext();
    session_.mainQueue().runUntilIdle();
    return session_.defaults().synchronize();
}

Result<std::unique_ptr<Session>> Session::open(const SessionSettings& settings,
                                               const SessionPresenters& presenters) {
    auto directory = DataDirectory::open(settings.dataDirectory);
    if (!directory) {
        return directory.error();
    }
    auto defaults = NSUserDefaults::open(directory.value().defaults());
    if (!defaults) {
        return defaults.error();
    }
    return std::unique_ptr<Session>(new Session(settings, presenters, std::move(directory).value(),
                                                std::move(defaults).value()));
}

Session::Session(const SessionSettings& settings, const SessionPresenters& presenters,
                 DataDirectory directory, std::unique_ptr<NSUserDefaults> defaults)
    : directory_(std::move(directory)),
      notices_(directory_.closeToOthers()),
      clock_(clockFor(settings.now)),
      defaults_(std::move(defaults)),
      mainQueue_(MainQueue::make()),
      timers_(clock_->standsStill()),
      snapshots_(cacheDirectory()) {
    // Before there is a queue: the languages are a setting of the whole process.
    bindTranslations(translationFolder(settings.translations),
                     Port<Regional>::current().locales().words);
    const Services services{.clock = *clock_,
                            .defaults = *defaults_,
                            .notifications = notifications_,
                            .mainQueue = mainQueue_,
                            .timers = timers_,
                            .library = library_,
                            .awards = awards_,
                            .mirroring = mirroring_,
                            .scanPresenter = presenters.scan,
                            .failurePresenter = presenters.failure,
                            .log = presenters.log};
    wiring_ = std::make_unique<Wiring>(services, directory_.store());
    data().setAccess(StoreAccess::reading);
    registerMusicXmlSource(sources_);
    registerSampleSource(sources_, directory_.sampleLibrary());
}

Session::~Session() {
    mainQueue_->runUntilIdle();
    library_.setSource(nullptr);
}

std::variant<Writer*, WriterLock::Refusal> Session::becomeWriter() {
    if (!writer_) {
        WriterLock lock;
        if (auto refusal = lock.take(directory_.lock())) {
            return *std::move(refusal);
        }
        data().setAccess(StoreAccess::writing);
        writer_.reset(new Writer(*this, std::move(lock)));
    }
    return writer_.get();
}

Result<std::optional<LibraryChoice>> Session::libraryChoice() const {
    return readLibraryChoice(directory_.libraryChoice());
}

Result<void> Session::openLibrary() {
    const auto choice = libraryChoice();
    if (!choice) {
        return choice.error();
    }
    if (!choice.value()) {
        return NSError{
            "no music library is chosen; choose one with tavrionctl library use KIND LOCATION", {}};
    }
    auto source = sources_.create(choice.value()->kind, choice.value()->location);
    if (!source) {
        return source.error();
    }
    auto snapshot = snapshots_.read(*source.value());
    if (!snapshot) {
        return snapshot.error();
    }
    publish(std::move(source).value(), std::move(snapshot).value());
    return {};
}

void Session::publish(std::shared_ptr<Source> source,
                      std::shared_ptr<const MediaSnapshot> snapshot) {
    library_.setSource(std::move(source));
    library_.setAuthorizationStatus(MPMediaLibraryAuthorizationStatus::authorized);
    library_.publish(std::move(snapshot));
}

bool Session::openStore() {
    return data().mainContext() != nullptr;
}

std::shared_ptr<const StoreVersion> Session::records() {
    return data().mainContext()->snapshot();
}

bool Session::refreshRegion() {
    const std::string order = Port<Regional>::current().orderLocale();
    if (!region_.refresh()) {
        return false;
    }
    const std::shared_ptr<Source> source = library_.source();
    if (source && Port<Regional>::current().orderLocale() != order) {
        if (auto snapshot = snapshots_.read(*source)) {
            library_.publish(std::move(snapshot).value());
        } else {
            NSLog("{}", snapshot.error().localizedDescription);
        }
    }
    return true;
}

}  // namespace tavrion
