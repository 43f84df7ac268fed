#include "sources/sample/SamplePlayer.h"

#include <algorithm>

namespace tavrion {

namespace {

/// Absent for a song of another library.
std::optional<double> durationOf(const SampleCatalogue& catalogue, std::uint64_t persistentID) {
    const auto song = catalogue.songOfPersistentID(persistentID);
    return song ? std::optional(catalogue.durationOfSong(*song)) : std::nullopt;
}

bool hasEnded(const SampleQueue& queue) {
    return queue.index >= queue.songs.size();
}

void moveToNext(SampleQueue& queue) {
    ++queue.index;
    queue.position = 0;
    if (hasEnded(queue)) {
        queue.playingSince.reset();
    }
}

void bringTo(NSDate instant, SampleState& state, const SampleCatalogue& catalogue) {
    SampleProgress progress = progressOf(state.queue, catalogue, instant);
    state.queue = std::move(progress.queue);
    state.endings.insert(state.endings.end(), progress.endings.begin(), progress.endings.end());
}

}  // namespace

SampleProgress progressOf(const SampleQueue& queue, const SampleCatalogue& catalogue,
                          NSDate instant) {
    SampleProgress progress{queue, {}};
    SampleQueue& now = progress.queue;
    while (!hasEnded(now)) {
        const std::optional<double> duration = durationOf(catalogue, now.songs[now.index]);
        if (!duration) {
            moveToNext(now);
            continue;
        }
        if (!now.playingSince || *now.playingSince >= instant) {
            break;
        }
        const double rest = std::max(0.0, *duration - now.position);
        const NSDate end = now.playingSince->dateByAddingTimeInterval(rest);
        if (end > instant) {
            now.position += instant.timeIntervalSinceDate(*now.playingSince);
            now.playingSince = instant;
            break;
        }
        progress.endings.push_back({now.songs[now.index], end, true});
        now.playingSince = end;
        moveToNext(now);
    }
    return progress;
}

Result<void> SamplePlayer::change(const std::function<void(SampleState&, NSDate)>& work) {
    const NSDate now = NSDate::date();
    return file_.change([&](SampleState& state) {
        bringTo(now, state, catalogue_);
        work(state, now);
    });
}

Result<void> SamplePlayer::setQueue(const std::vector<std::uint64_t>& songs) {
    return change([&](SampleState& state, NSDate now) {
        state.queue = SampleQueue();
        for (const std::uint64_t persistentID : songs) {
            const auto song = catalogue_.songOfPersistentID(persistentID);
            if (song && catalogue_.hasSong(*song, now)) {
                state.queue.songs.push_back(persistentID);
            }
        }
    });
}

Result<void> SamplePlayer::play() {
    return change([](SampleState& state, NSDate now) {
        if (!hasEnded(state.queue) && !state.queue.playingSince) {
            state.queue.playingSince = now;
        }
    });
}

Result<void> SamplePlayer::pause() {
    return change([](SampleState& state, NSDate) { state.queue.playingSince.reset(); });
}

Result<void> SamplePlayer::skipToNextItem() {
    return change([](SampleState& state, NSDate now) {
        if (!hasEnded(state.queue)) {
            state.endings.push_back({state.queue.songs[state.queue.index], now, false});
            moveToNext(state.queue);
        }
    });
}

Result<SamplePlayer::Status> SamplePlayer::status() const {
    const Result<SampleState> state = file_.read();
    if (!state) {
        return state.error();
    }
    const SampleQueue queue = progressOf(state.value().queue, catalogue_, NSDate::date()).queue;
    Status status;
    if (!hasEnded(queue)) {
        status.state = queue.playingSince ? PlaybackState::playing : PlaybackState::paused;
        status.song = queue.songs[queue.index];
        status.position = queue.position;
    }
    return status;
}

}  // namespace tavrion
