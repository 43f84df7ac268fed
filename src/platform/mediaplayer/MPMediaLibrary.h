// The media library of the process: the current snapshot, who may read it, and the source behind
// it.
//
// Queue: any. Who owns: the composition root makes one and plugs it with Port<MPMediaLibrary>; the
// source outlives its being set. Change observers run on the publisher's queue, outside any lock.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/foundation/Mutex.h"
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

    /// Keeps an observer for its own life. When the destructor has returned, the observer is not
    /// called again; a call that another thread has begun may still be running.
    class Observation {
      public:
        Observation();
        ~Observation();
        Observation(Observation&&) noexcept;
        Observation& operator=(Observation&&) noexcept;

      private:
        friend class MPMediaLibrary;
        struct Registration;
        std::shared_ptr<Registration> registration_;
    };

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

    /// Who writes what the user changes; null when nobody.
    void setSource(Source* source);
    Source* source() const;

    [[nodiscard]] Observation addObserver(Observer observer);

  private:
    mutable Mutex mutex_;
    std::shared_ptr<const MediaSnapshot> snapshot_ TAVRION_GUARDED_BY(mutex_);
    std::vector<std::weak_ptr<Observation::Registration>> observers_ TAVRION_GUARDED_BY(mutex_);
    MPMediaLibraryAuthorizationStatus status_ TAVRION_GUARDED_BY(mutex_) =
        MPMediaLibraryAuthorizationStatus::notDetermined;
    Source* source_ TAVRION_GUARDED_BY(mutex_) = nullptr;
};

}  // namespace tavrion
