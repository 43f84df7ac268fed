// The player of whichever library is chosen.
//
// Queue: main. Without a library, or with one whose player takes no commands, commands do nothing.
#pragma once

#include "platform/mediaplayer/MPMusicPlayerController.h"

namespace tavrion {

class SourcePlayer final : public MPMusicPlayerController {
  public:
    void setQueueWithDescriptor(const MPMusicPlayerMediaItemQueueDescriptor& descriptor) override;
    void setShuffleMode(MPMusicShuffleMode mode) override;
    void prepareToPlay() override;
    void play() override;
};

}  // namespace tavrion
