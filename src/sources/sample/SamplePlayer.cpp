#include "sources/sample/SamplePlayer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "sources/sample/SampleRandom.h"

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

Result<void> SamplePlayer::setShuffle(SampleShuffle shuffle) {
    return change([shuffle](SampleState& state, NSDate) { state.shuffle = shuffle; });
}

/// Songs that stay together are shuffled as one: each song alone, or the songs of an album that
/// follow each other. The instant decides, so that no two starts are alike.
void SamplePlayer::shuffle(SampleState& state, NSDate now) const {
    std::vector<std::vector<std::uint64_t>> parts;
    const SampleAlbum* last = nullptr;
    for (const std::uint64_t persistentID : state.queue.songs) {
        const auto song = catalogue_.songOfPersistentID(persistentID);
        const SampleAlbum* album = song ? &catalogue_.albumOfSong(*song) : nullptr;
        if (state.shuffle == SampleShuffle::songs || album == nullptr || album != last) {
            parts.emplace_back();
        }
        parts.back().push_back(persistentID);
        last = album;
    }
    SampleRandom random(sampleHash(
        static_cast<std::uint64_t>(std::llround(now.timeIntervalSinceReferenceDate() * 1000)),
        SamplePurpose::shuffle));
    for (std::size_t left = parts.size(); left > 1; --left) {
        std::swap(parts[left - 1], parts[random.below(static_cast<std::uint32_t>(left))]);
    }
    state.queue.songs.clear();
    for (const auto& part : parts) {
        state.queue.songs.insert(state.queue.songs.end(), part.begin(), part.end());
    }
}

Result<void> SamplePlayer::play() {
    return change([this](SampleState& state, NSDate now) {
        if (!hasEnded(state.queue) && !state.queue.playingSince) {
            if (state.shuffle != SampleShuffle::off && state.queue.index == 0 &&
                state.queue.position == 0) {
                shuffle(state, now);
            }
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
