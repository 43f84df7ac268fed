#include "session/SourcePlayer.h"

#include <memory>

#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/Source.h"

namespace tavrion {
namespace {

/// The source stays while its player obeys.
template <class Command>
void command(const Command& work) {
    const std::shared_ptr<Source> source = MPMediaLibrary::defaultMediaLibrary().source();
    if (MPMusicPlayerController* player = source ? source->player() : nullptr) {
        work(*player);
    }
}

}  // namespace

void SourcePlayer::setQueueWithDescriptor(const MPMusicPlayerMediaItemQueueDescriptor& descriptor) {
    command([&](MPMusicPlayerController& player) { player.setQueueWithDescriptor(descriptor); });
}

void SourcePlayer::setShuffleMode(MPMusicShuffleMode mode) {
    command([mode](MPMusicPlayerController& player) { player.setShuffleMode(mode); });
}

void SourcePlayer::prepareToPlay() {
    command([](MPMusicPlayerController& player) { player.prepareToPlay(); });
}

void SourcePlayer::play() {
    command([](MPMusicPlayerController& player) { player.play(); });
}

}  // namespace tavrion
