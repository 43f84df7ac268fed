// The player of the sample library: a queue of songs that plays by the clock alone, without a
// sound.
//
// Queue: any. Nothing runs while it plays: where it stands follows from where it stood and the time
// since. A song that has come to its end counts as played at that instant, one that is left before
// counts as skipped; both show in the library at the next reading. The state is in the library's
// file, so it plays on in the next process. The present is NSDate::date(). Units: seconds.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/foundation/Result.h"
#include "sources/sample/SampleCatalogue.h"
#include "sources/sample/SampleStateFile.h"

namespace tavrion {

/// Where a queue stands at one instant, and which of its songs came to their end on the way.
struct SampleProgress {
    SampleQueue queue;
    std::vector<SampleEnding> endings;
};

/// Songs that the catalogue does not have are passed over. An instant before the queue began to
/// play leaves it where it was.
SampleProgress progressOf(const SampleQueue& queue, const SampleCatalogue& catalogue,
                          NSDate instant);

class SamplePlayer {
  public:
    enum class PlaybackState : std::uint8_t { stopped, playing, paused };
    struct Status {
        PlaybackState state = PlaybackState::stopped;
        /// The persistent identifier of the song that is on; absent when stopped.
        std::optional<std::uint64_t> song;
        /// How far it is.
        double position = 0;
    };

    /// Both outlive the player.
    SamplePlayer(const SampleStateFile& file, const SampleCatalogue& catalogue)
        : file_(file), catalogue_(catalogue) {}

    /// Puts other songs in place of the queue and stands before the first. It has to be played.
    /// Songs that are not in the library at present are left out.
    Result<void> setQueue(const std::vector<std::uint64_t>& songs);
    /// Stays for later queues too. A queue is put into its order when it begins to play.
    Result<void> setShuffle(SampleShuffle shuffle);
    Result<void> play();
    Result<void> pause();
    Result<void> skipToNextItem();
    Result<Status> status() const;

  private:
    /// Brings the queue to the present, then lets `work` do something with it.
    Result<void> change(const std::function<void(SampleState&, NSDate)>& work);

    void shuffle(SampleState& state, NSDate now) const;

    const SampleStateFile& file_;
    const SampleCatalogue& catalogue_;
};

}  // namespace tavrion
