// The media library of the process: the current snapshot, who may read it, and the source behind
// it.
//
// Queue: any. Who owns: the composition root makes one and plugs it with Port<MPMediaLibrary>; the
// source is shared with whoever still reads from it. Change observers run on the publisher's queue,
// outside any lock.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/foundation/Mutex.h"
#include "platform/foundation/Observation.h"
#include "platform/foundation/Port.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

class Source;

enum class MPMediaLibraryAuthorizationStatus : std::int64_t {
    notDetermined = 0,
    denied = 1,
    restricted = 2,
    authorized = 3,
};

class MPMediaLibrary {
  public:
    static constexpr const char* portName = "a media library is plugged in";
    using Observer = std::function<void()>;

    using Observation = tavrion::Observation;

    MPMediaLibrary();
    ~MPMediaLibrary();
    MPMediaLibrary(const MPMediaLibrary&) = delete;
    MPMediaLibrary& operator=(const MPMediaLibrary&) = delete;

    static MPMediaLibrary& defaultMediaLibrary() { return Port<MPMediaLibrary>::current(); }
    /// Of the plugged library: notDetermined until one is chosen.
    static MPMediaLibraryAuthorizationStatus authorizationStatus();
    void setAuthorizationStatus(MPMediaLibraryAuthorizationStatus status);

    /// Never null; an empty one until the first is published.
    std::shared_ptr<const MediaSnapshot> snapshot() const;
    /// Swaps the snapshot in, then tells the observers. Null publishes an empty one.
    void publish(std::shared_ptr<const MediaSnapshot> snapshot);

    /// Who writes what the user changes and has the pictures; null when nobody. Whoever took it
    /// may go on with it after another one was set.
    void setSource(std::shared_ptr<Source> source);
    std::shared_ptr<Source> source() const;

    /// On the queue of whoever publishes.
    [[nodiscard]] Observation addObserver(Observer observer);

  private:
    mutable Mutex mutex_;
    std::shared_ptr<const MediaSnapshot> snapshot_ TAVRION_GUARDED_BY(mutex_);
    MPMediaLibraryAuthorizationStatus status_ TAVRION_GUARDED_BY(mutex_) =
        MPMediaLibraryAuthorizationStatus::notDetermined;
    std::shared_ptr<Source> source_ TAVRION_GUARDED_BY(mutex_);
    /// They are informed that there is a change, and ask for what they need.
    struct Change {};
    ObserverList<Change> observers_;
};

}  // namespace tavrion
