#include "sources/musicxml/MusicXmlKeys.h"

#include <algorithm>
#include <array>

namespace tavrion {

namespace {

/// In the order of MusicXmlKey.
constexpr auto names = std::to_array<std::string_view>({
    "Name",
    "Artist",
    "Album Artist",
    "Album",
    "Genre",
    "Composer",
    "Sort Name",
    "Sort Artist",
    "Sort Album Artist",
    "Sort Album",
    "Persistent ID",
    "Location",
    "Track Type",
    "Playlist Persistent ID",
    "Parent Persistent ID",
    "Track ID",
    "Size",
    "Total Time",
    "Disc Number",
    "Track Number",
    "Track Count",
    "Year",
    "Play Count",
    "Skip Count",
    "Distinguished Kind",
    "Play Date UTC",
    "Skip Date",
    "Date Added",
    "Release Date",
    "Compilation",
    "Explicit",
    "Loved",
    "Favorited",
    "Disliked",
    "Apple Music",
    "Playlist Only",
    "Podcast",
    "Movie",
    "TV Show",
    "Has Video",
    "Music Video",
    "Audiobook",
    "Folder",
    "Master",
    "Visible",
    "Tracks",
    "Playlists",
    "Playlist Items",
});
static_assert(names.size() == static_cast<std::size_t>(MusicXmlKey::unknown));

constexpr std::size_t longestName = 22;

/// The keys sorted by the length of their names, and where each length begins: a name is compared
/// with the few names of its own length only.
struct KeysByLength {
    std::array<std::uint8_t, names.size()> keys{};
    std::array<std::uint8_t, longestName + 2> starts{};
};

constexpr KeysByLength sortKeysByLength() {
    KeysByLength sorted;
    std::uint8_t next = 0;
    for (std::size_t length = 0; length <= longestName; ++length) {
        sorted.starts[length] = next;
        for (std::size_t key = 0; key < names.size(); ++key) {
            if (names[key].size() == length) {
                sorted.keys[next++] = static_cast<std::uint8_t>(key);
            }
        }
    }
    sorted.starts[longestName + 1] = next;
    return sorted;
}

constexpr KeysByLength keysByLength = sortKeysByLength();
static_assert(keysByLength.starts[longestName + 1] == names.size());

}  // namespace

MusicXmlKey musicXmlKeyNamed(std::string_view name) {
    if (name.size() > longestName) {
        return MusicXmlKey::unknown;
    }
    for (std::size_t i = keysByLength.starts[name.size()]; i < keysByLength.starts[name.size() + 1];
         ++i) {
        if (names[keysByLength.keys[i]] == name) {
            return static_cast<MusicXmlKey>(keysByLength.keys[i]);
        }
    }
    return MusicXmlKey::unknown;
}

std::string_view nameOfMusicXmlKey(MusicXmlKey key) {
    return key == MusicXmlKey::unknown ? std::string_view() : names[static_cast<std::size_t>(key)];
}

}  // namespace tavrion
