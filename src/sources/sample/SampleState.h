// What the user has done to the sample library: likes, playlists, and what the player plays. The
// one part of it that is kept.
//
// Queue: any; a value. Songs are told by their persistent identifiers; those of another library
// size are kept and mean nothing. Units: seconds.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/NSDate.h"
#include "platform/foundation/Result.h"

namespace tavrion {

/// A song that the player came to the end of, or left.
struct SampleEnding {
    std::uint64_t song = 0;
    NSDate date = {};
    bool isWhole = true;
    bool operator==(const SampleEnding&) const = default;
};

/// The player's queue, and where in it the player was at one instant.
struct SampleQueue {
    std::vector<std::uint64_t> songs;
    /// As many as there are songs when the queue has come to its end.
    std::size_t index = 0;
    double position = 0;
    /// Since when it plays from there; absent while it does not play.
    std::optional<NSDate> playingSince;
    bool operator==(const SampleQueue&) const = default;
};

struct SampleUserPlaylist {
    std::uint64_t persistentID = 0;
    std::string name;
    std::vector<std::uint64_t> songs;
    bool operator==(const SampleUserPlaylist&) const = default;
};

/// In which order the player takes the songs of a queue.
enum class SampleShuffle : std::uint8_t { off = 1, songs = 2, albums = 3 };

struct SampleState {
    std::map<std::uint64_t, std::uint32_t> likedStates;
    std::vector<SampleUserPlaylist> playlists;
    /// In the order in which they happened.
    std::vector<SampleEnding> endings;
    SampleQueue queue;
    SampleShuffle shuffle = SampleShuffle::off;
    bool operator==(const SampleState&) const = default;

    /// As JSON.
    std::string text() const;
    /// The error says what is wrong, without a full stop.
    static Result<SampleState> fromText(std::string_view text);
};

}  // namespace tavrion
