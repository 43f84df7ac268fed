// The player of the sample library as the program commands any player.
//
// Queue: main. A command that can't be kept is logged and has no effect.
#pragma once

#include "platform/mediaplayer/MPMusicPlayerController.h"
#include "sources/sample/SamplePlayer.h"

namespace tavrion {

class SampleMusicPlayer final : public MPMusicPlayerController {
  public:
    /// `player` outlives it.
    explicit SampleMusicPlayer(SamplePlayer& player) : player_(player) {}

    void setQueueWithDescriptor(const MPMusicPlayerMediaItemQueueDescriptor& descriptor) override;
    /// byUser leaves the order as it was chosen before.
    void setShuffleMode(MPMusicShuffleMode mode) override;
    /// Nothing has to be made ready.
    void prepareToPlay() override {}
    void play() override;

  private:
    SamplePlayer& player_;
};

}  // namespace tavrion
