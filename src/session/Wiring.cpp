#include "session/Wiring.h"

#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion {

Wiring::Wiring(const Services& services, const std::filesystem::path& file)
    : mainQueue_(services.mainQueue),
      clockPlug_(services.clock),
      defaultsPlug_(services.defaults),
      notificationsPlug_(services.notifications),
      mainQueuePlug_(*services.mainQueue),
      timersPlug_(services.timers),
      libraryPlug_(services.library),
      playerPlug_(player_),
      awardsPlug_(services.awards),
      mirroringPlug_(services.mirroring),
      scanPresenterPlug_(services.scanPresenter),
      failurePresenterPlug_(services.failurePresenter) {
    if (services.log != nullptr) {
        logPlug_.emplace(*services.log);
    }
    Nerinda::registerComputedKeys();
    reopenStore(file);
}

Wiring::~Wiring() {
    // Nothing may run any more when the ports are taken out.
    mainQueue_->runUntilIdle();
}

void Wiring::reopenStore(const std::filesystem::path& file) {
    closeStore();
    data_ = std::make_unique<RVCoreDataManager>(file, mainQueue_);
    dataPlug_.emplace(*data_);
    recordStorePlug_.emplace(*data_);
}

void Wiring::closeStore() {
    if (!data_) {
        return;
    }
    mainQueue_->runUntilIdle();
    recordStorePlug_.reset();
    dataPlug_.reset();
    data_.reset();
}

}  // namespace tavrion
