#include "library/CollectionValues.h"

#include <algorithm>

namespace tavrion::CollectionValues {

std::uint64_t playCount(const std::vector<MPMediaItem>& songs) {
    std::uint64_t sum = 0;
    for (const MPMediaItem& song : songs) {
        sum += song.playCount();
    }
    return sum;
}

double secondsListened(const std::vector<MPMediaItem>& songs) {
    double seconds = 0;
    for (const MPMediaItem& song : songs) {
        seconds += static_cast<double>(song.playCount()) * song.playbackDuration();
    }
    return seconds;
}

std::uint64_t skipCount(const std::vector<MPMediaItem>& songs) {
    std::uint64_t sum = 0;
    for (const MPMediaItem& song : songs) {
        sum += song.skipCount();
    }
    return sum;
}

std::size_t playedSince(const std::vector<MPMediaItem>& songs, NSDate date) {
    return static_cast<std::size_t>(
        std::count_if(songs.begin(), songs.end(), [&](const MPMediaItem& song) {
            const std::optional<NSDate> played = song.lastPlayedDate();
            return played && date < *played;
        }));
}

std::size_t explicitCount(const std::vector<MPMediaItem>& songs) {
    return static_cast<std::size_t>(std::count_if(
        songs.begin(), songs.end(), [](const MPMediaItem& song) { return song.isExplicitItem(); }));
}

std::size_t cloudCount(const std::vector<MPMediaItem>& songs) {
    return static_cast<std::size_t>(std::count_if(
        songs.begin(), songs.end(), [](const MPMediaItem& song) { return song.isCloudItem(); }));
}

std::optional<NSDate> earliest(const std::vector<MPMediaItem>& songs,
                               std::optional<NSDate> (MPMediaItem::*date)() const) {
    std::optional<NSDate> found;
    for (const MPMediaItem& song : songs) {
        const std::optional<NSDate> one = (song.*date)();
        found = found && one ? std::min(found, one) : (found ? found : one);
    }
    return found;
}

std::optional<NSDate> latest(const std::vector<MPMediaItem>& songs,
                             std::optional<NSDate> (MPMediaItem::*date)() const) {
    std::optional<NSDate> found;
    for (const MPMediaItem& song : songs) {
        found = laterDate(found, (song.*date)());
    }
    return found;
}

std::optional<unsigned> latestYear(const std::vector<MPMediaItem>& songs) {
    std::optional<unsigned> found;
    for (const MPMediaItem& song : songs) {
        found = std::max(found.value_or(0), song.year());
    }
    return found;
}

std::size_t distinctCount(const std::vector<MPMediaItem>& songs,
                          std::uint64_t (MPMediaItem::*persistentID)() const) {
    std::vector<std::uint64_t> values;
    values.reserve(songs.size());
    for (const MPMediaItem& song : songs) {
        values.push_back((song.*persistentID)());
    }
    std::sort(values.begin(), values.end());
    return static_cast<std::size_t>(std::unique(values.begin(), values.end()) - values.begin());
}

}  // namespace tavrion::CollectionValues
