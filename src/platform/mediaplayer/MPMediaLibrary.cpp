#include "platform/mediaplayer/MPMediaLibrary.h"

#include <algorithm>
#include <atomic>

namespace tavrion {

struct MPMediaLibrary::Observation::Registration {
    Observer observer;
    std::atomic<bool> isAlive{true};
};

MPMediaLibrary::Observation::Observation() = default;
MPMediaLibrary::Observation::Observation(Observation&&) noexcept = default;

MPMediaLibrary::Observation& MPMediaLibrary::Observation::operator=(Observation&& other) noexcept {
    std::swap(registration_, other.registration_);
    return *this;
}

MPMediaLibrary::Observation::~Observation() {
    if (registration_) {
        registration_->isAlive = false;
    }
}

MPMediaLibrary::MPMediaLibrary() : snapshot_(MediaSnapshot::empty()) {}
MPMediaLibrary::~MPMediaLibrary() = default;

MPMediaLibraryAuthorizationStatus MPMediaLibrary::authorizationStatus() {
    MPMediaLibrary& library = defaultMediaLibrary();
    const MutexLock lock(library.mutex_);
    return library.status_;
}

void MPMediaLibrary::setAuthorizationStatus(MPMediaLibraryAuthorizationStatus status) {
    const MutexLock lock(mutex_);
    status_ = status;
}

std::shared_ptr<const MediaSnapshot> MPMediaLibrary::snapshot() const {
    const MutexLock lock(mutex_);
    return snapshot_;
}

void MPMediaLibrary::publish(std::shared_ptr<const MediaSnapshot> snapshot) {
    std::vector<std::shared_ptr<Observation::Registration>> told;
    {
        const MutexLock lock(mutex_);
        // The replaced snapshot leaves the lock with the argument, so that freeing it keeps nobody
        // waiting.
        snapshot_.swap(snapshot);
        if (!snapshot_) {
            snapshot_ = MediaSnapshot::empty();
        }
        std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
        for (const auto& observer : observers_) {
            told.push_back(observer.lock());
        }
    }
    for (const auto& registration : told) {
        if (registration && registration->isAlive) {
            registration->observer();
        }
    }
}

void MPMediaLibrary::setSource(Source* source) {
    const MutexLock lock(mutex_);
    source_ = source;
}

Source* MPMediaLibrary::source() const {
    const MutexLock lock(mutex_);
    return source_;
}

MPMediaLibrary::Observation MPMediaLibrary::addObserver(Observer observer) {
    Observation observation;
    observation.registration_ = std::make_shared<Observation::Registration>();
    observation.registration_->observer = std::move(observer);
    const MutexLock lock(mutex_);
    observers_.push_back(observation.registration_);
    return observation;
}

}  // namespace tavrion
