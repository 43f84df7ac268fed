#include "sources/sample/SamplePlaylists.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "sources/sample/SampleRandom.h"

namespace tavrion {

namespace {

struct Plan {
    std::string_view name;
    /// Songs, in a library that has more than that.
    std::uint32_t length;
    bool isFolder = false;
    bool isHidden = false;
    bool isInFolder = false;
};

/// What is in a folder stands behind it.
constexpr std::array plans{Plan{"Sunday Morning", 25},
                           Plan{"Long Walks", 40},
                           Plan{"Kitchen", 30},
                           Plan{.name = "Seasons", .length = 0, .isFolder = true},
                           Plan{.name = "Spring", .length = 20, .isInFolder = true},
                           Plan{.name = "Autumn", .length = 20, .isInFolder = true},
                           Plan{.name = "Set Aside", .length = 12, .isHidden = true},
                           Plan{"Road North", 60},
                           Plan{"Still Empty", 0}};

std::vector<std::uint64_t> songsOf(const SampleCatalogue& catalogue, std::uint64_t number,
                                   std::uint32_t length) {
    const std::uint32_t first = catalogue.firstHeardSong();
    const std::uint32_t count = catalogue.outlines().size - first;
    SampleRandom random(sampleHash(catalogue.outlines().seed, SamplePurpose::playlist, number));
    std::vector<std::uint64_t> songs;
    for (std::uint32_t i = 0; i < std::min(length, count); ++i) {
        const std::uint64_t song = catalogue.persistentIDOfSong(first + random.below(count));
        if (std::find(songs.begin(), songs.end(), song) == songs.end()) {
            songs.push_back(song);
        }
    }
    return songs;
}

}  // namespace

std::uint64_t samplePlaylistID(const SampleCatalogue& catalogue, std::uint64_t number) {
    const std::uint64_t key = sampleHash(catalogue.outlines().seed, SamplePurpose::playlist) | 1U;
    return sampleMix(key + 2 * number);
}

std::vector<SamplePlaylist> samplePlaylists(const SampleCatalogue& catalogue) {
    std::vector<SamplePlaylist> playlists;
    std::uint64_t folder = 0;
    for (std::uint64_t number = 0; number < plans.size(); ++number) {
        const Plan& plan = plans[number];
        SamplePlaylist& playlist = playlists.emplace_back();
        playlist.name = plan.name;
        playlist.persistentID = samplePlaylistID(catalogue, number);
        playlist.parentPersistentID = plan.isInFolder ? folder : 0;
        playlist.isFolder = plan.isFolder;
        playlist.isHidden = plan.isHidden;
        playlist.songs = songsOf(catalogue, number, plan.length);
        folder = plan.isFolder ? playlist.persistentID : folder;
    }
    return playlists;
}

}  // namespace tavrion
