#include "platform/mediaplayer/MPMediaLibrary.h"

#include <utility>

namespace tavrion {

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
    {
        const MutexLock lock(mutex_);
        // The replaced snapshot leaves the lock with the argument, so that freeing it keeps nobody
        // waiting.
        snapshot_.swap(snapshot);
        if (!snapshot_) {
            snapshot_ = MediaSnapshot::empty();
        }
    }
    observers_.send({}, nullptr, {});
}

void MPMediaLibrary::setSource(std::shared_ptr<Source> source) {
    const MutexLock lock(mutex_);
    // The one before leaves the lock with the argument.
    source_.swap(source);
}

std::shared_ptr<Source> MPMediaLibrary::source() const {
    const MutexLock lock(mutex_);
    return source_;
}

Observation MPMediaLibrary::addObserver(Observer observer) {
    return observers_.add({}, nullptr, nullptr,
                          [observer = std::move(observer)](const Change&) { observer(); });
}

}  // namespace tavrion
