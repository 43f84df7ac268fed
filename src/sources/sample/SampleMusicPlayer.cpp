#include "sources/sample/SampleMusicPlayer.h"

#include <vector>

#include "platform/foundation/NSLog.h"

namespace tavrion {
namespace {

void logFailure(const Result<void>& done) {
    if (!done) {
        NSLog("The sample library's player did not obey: {}", done.error().localizedDescription);
    }
}

}  // namespace

void SampleMusicPlayer::setQueueWithDescriptor(
    const MPMusicPlayerMediaItemQueueDescriptor& descriptor) {
    std::vector<std::uint64_t> songs;
    for (const MPMediaItem& song : descriptor.itemCollection().items()) {
        songs.push_back(song.persistentID());
    }
    logFailure(player_.setQueue(songs));
}

void SampleMusicPlayer::setShuffleMode(MPMusicShuffleMode mode) {
    switch (mode) {
        case MPMusicShuffleMode::byUser:
            return;
        case MPMusicShuffleMode::off:
            return logFailure(player_.setShuffle(SampleShuffle::off));
        case MPMusicShuffleMode::songs:
            return logFailure(player_.setShuffle(SampleShuffle::songs));
        case MPMusicShuffleMode::albums:
            return logFailure(player_.setShuffle(SampleShuffle::albums));
    }
}

void SampleMusicPlayer::play() {
    logFailure(player_.play());
}

}  // namespace tavrion
