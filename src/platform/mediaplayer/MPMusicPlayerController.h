// The user's own player, which is told what to play; nothing is played here.
//
// Queue: main. Who owns: the composition root plugs the player of the library's source. A player
// that is away takes commands and does nothing.
#pragma once

#include <utility>

#include "platform/foundation/Port.h"
#include "platform/mediaplayer/MPMediaItemCollection.h"

namespace tavrion {

/// The numbers are the platform's own.
enum class MPMusicShuffleMode { byUser = 0, off = 1, songs = 2, albums = 3 };

/// What is to be played, in this order.
class MPMusicPlayerMediaItemQueueDescriptor {
  public:
    explicit MPMusicPlayerMediaItemQueueDescriptor(MPMediaItemCollection itemCollection)
        : itemCollection_(std::move(itemCollection)) {}
    const MPMediaItemCollection& itemCollection() const { return itemCollection_; }

  private:
    MPMediaItemCollection itemCollection_;
};

class MPMusicPlayerController {
  public:
    static constexpr const char* portName = "a music player is plugged in";
    static MPMusicPlayerController& systemMusicPlayer() {
        return Port<MPMusicPlayerController>::current();
    }
    virtual ~MPMusicPlayerController() = default;

    /// Takes the place of whatever was queued.
    virtual void setQueueWithDescriptor(
        const MPMusicPlayerMediaItemQueueDescriptor& descriptor) = 0;
    /// Stays with the player, whichever program it was that chose it.
    virtual void setShuffleMode(MPMusicShuffleMode mode) = 0;
    virtual void prepareToPlay() = 0;
    virtual void play() = 0;
};

}  // namespace tavrion
