#include "bench/BenchEnvironment.h"

#include <fmt/format.h>

#include <cstdlib>

#include "platform/coredata/StoreFile.h"
#include "recording/DataProcess.h"
#include "recording/NerindaModel.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion::bench {

void EndingPresenter::endProcess(const NSError& error) {
    fmt::print(stderr, "bench: {}\n", error.localizedDescription);
    std::exit(1);
}

ScratchDirectory::ScratchDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tavrion-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        fmt::print(stderr, "bench: no directory can be made in {}\n",
                   std::filesystem::temp_directory_path().string());
        std::exit(1);
    }
    path_ = pattern;
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string storeSchema() {
    const StoreFormat format = nerindaStoreFormat();
    return fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}; {}",
                       format.applicationID, format.version, StoreFile::schema(*nerindaModel()));
}

BenchEnvironment::BenchEnvironment(const std::filesystem::path& file, double now)
    : clock_(NSDate::dateWithTimeIntervalSinceReferenceDate(now)),
      wiring_({.clock = clock_,
               .defaults = *defaults_,
               .notifications = centre_,
               .mainQueue = mainQueue,
               .timers = timers_,
               .library = library_,
               .awards = awards_,
               .mirroring = mirroring_,
               .scanPresenter = presenter_,
               .failurePresenter = failures_},
              file),
      data(&wiring_.data()) {
    updates_ = centre_.addObserver(DataProcess::didUpdate, nullptr, nullptr,
                                   [this](const NSNotification&) { ++songsMatched_; });
}

BenchEnvironment::~BenchEnvironment() {
    wiring_.closeStore();
}

void BenchEnvironment::publish(std::shared_ptr<const MediaSnapshot> snapshot) {
    library_.setAuthorizationStatus(MPMediaLibraryAuthorizationStatus::authorized);
    library_.publish(std::move(snapshot));
}

void BenchEnvironment::scan() {
    RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false, nullptr);
    mainQueue->runUntilIdle();
}

void BenchEnvironment::scanByRule(double now) {
    clock_.set(NSDate::dateWithTimeIntervalSinceReferenceDate(now));
    RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(false, nullptr);
    mainQueue->runUntilIdle();
}

}  // namespace tavrion::bench
