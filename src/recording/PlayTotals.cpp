#include "recording/PlayTotals.h"

#include <vector>

namespace tavrion {

PlayTotals playTotals(const StoreVersion& records, const Plays& plays) {
    const SongDurations durations(records);
    std::vector<std::uint8_t> isPlayed(durations.end(), 0);
    PlayTotals totals{plays.count(), 0, 0};
    plays.forEachSong([&](RecordCounter song) {
        if (song < isPlayed.size()) {
            isPlayed[song] = 1;
            totals.seconds += durations.of(song);
        }
    });
    for (RecordCounter song = 0; song < isPlayed.size(); ++song) {
        totals.songs += isPlayed[song] != 0 && durations.has(song) ? 1U : 0U;
    }
    return totals;
}

PlayTotals playTotalsBetween(const StoreVersion& records, NSDate start, NSDate end) {
    return playTotals(records, Plays(records, start, end));
}

}  // namespace tavrion
