#include "bench/GreatLibrary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "library/RVQueryManager+Results.h"
#include "platform/mediaplayer/MediaSnapshotBuilder.h"

namespace tavrion::bench {
namespace {

struct Sizes {
    unsigned songs;
    unsigned albums = std::max(1U, songs / 100 * 12);
    unsigned artists = std::max(1U, songs / 20);
    unsigned playlists = std::max(1U, songs / 1000 * 3);
};

Sizes sizes() {
    const char* songs = std::getenv("TAVRION_BENCH_SONGS");
    return {songs == nullptr ? 100000U : static_cast<unsigned>(std::strtoul(songs, nullptr, 10))};
}

class Names {
  public:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    /// Two words, with capitals, articles and digits as in real libraries.
    std::string name() {
        return (below(6) == 0 ? "The " : "") + word() + " " + (below(20) == 0 ? "1999" : word());
    }
    NSDate date() {
        return NSDate::dateWithTimeIntervalSinceReferenceDate(4e8 + below(300'000'000));
    }

  private:
    std::string word() {
        std::string letters;
        for (unsigned length = 3 + below(8); letters.size() < length;) {
            letters += static_cast<char>((letters.empty() ? 'A' : 'a') + below(26));
        }
        return letters;
    }
    std::mt19937_64 random_{7};
};

void addSong(MediaSnapshotBuilder& builder, Names& names, unsigned number,
             const std::vector<std::string>& artists, const std::vector<std::string>& albums) {
    const auto artistCount = static_cast<unsigned>(artists.size());
    const auto albumCount = static_cast<unsigned>(albums.size());
    const unsigned album = number < albumCount ? number : names.below(albumCount);
    const bool isCompilation = album % 20 == 0;
    const std::string title = names.name();
    const std::string genre =
        album % 3 == 0 ? std::string("Genre") : fmt::format("Genre {}", album % 200);
    const std::string& own =
        artists[isCompilation ? names.below(artistCount) : album % artistCount];
    SongDescription song;
    song.persistentID = number + 1;
    song.title = title;
    song.artist = own;
    song.albumArtist = isCompilation ? std::string_view("Various Artists") : std::string_view(own);
    song.albumTitle = albums[album];
    song.genre = genre;
    song.isCompilation = isCompilation;
    song.playbackDuration = 100 + names.below(300);
    song.playCount = names.below(50);
    song.lastPlayedDate = song.playCount == 0 ? std::nullopt : std::optional(names.date());
    song.dateAdded = names.date();
    song.releaseDate = names.below(3) != 0 ? std::nullopt : std::optional(names.date());
    song.year = 1960 + album % 65;
    builder.addSong(song);
}

std::shared_ptr<const MediaSnapshot> madeLibrary() {
    const Sizes count = sizes();
    Names names;
    std::vector<std::string> artists(count.artists);
    std::vector<std::string> albums(count.albums);
    std::generate(artists.begin(), artists.end(), [&] { return names.name(); });
    std::generate(albums.begin(), albums.end(), [&] { return names.name(); });
    MediaSnapshotBuilder builder;
    for (unsigned number = 0; number < count.songs; ++number) {
        addSong(builder, names, number, artists, albums);
    }
    for (unsigned number = 0; number < count.playlists; ++number) {
        const std::string name = names.name();
        std::vector<std::uint64_t> songs(names.below(500));
        std::generate(songs.begin(), songs.end(), [&] { return 1 + names.below(count.songs); });
        builder.addPlaylist(
            {name, 1'000'000'000 + number, 0, false, number % 10 == 0, false, songs});
    }
    return builder.finish();
}

/// As a C string's owner needs it.
std::string textOf(const MPMediaItem& song, SongText which) {
    return std::string(song.snapshot()->text(song.position(), which).value_or(""));
}

double secondsOf(const std::optional<NSDate>& date) {
    return date ? date->timeIntervalSinceReferenceDate() : 0;
}

void addToPeer(library_peer* peer, const MPMediaItem& song) {
    const std::string title = textOf(song, SongText::title);
    const std::string artist = textOf(song, SongText::artist);
    const std::string albumArtist = textOf(song, SongText::albumArtist);
    const std::string albumTitle = textOf(song, SongText::albumTitle);
    const std::string genre = textOf(song, SongText::genre);
    const library_peer_song row{title.c_str(),
                                artist.c_str(),
                                albumArtist.c_str(),
                                albumTitle.c_str(),
                                genre.c_str(),
                                song.playbackDuration(),
                                secondsOf(song.lastPlayedDate()),
                                secondsOf(song.dateAdded()),
                                secondsOf(song.releaseDate()),
                                static_cast<std::int64_t>(song.albumPersistentID()),
                                static_cast<std::int64_t>(song.playCount()),
                                song.isCompilation() ? 1 : 0,
                                song.mediaType()};
    library_peer_add_song(peer, &row);
}

library_peer* madePeer() {
    library_peer* peer = library_peer_make();
    const auto& snapshot = greatLibrary();
    // Row identifiers are positions plus one.
    for (std::uint32_t position = 0; position < snapshot->songs().size(); ++position) {
        addToPeer(peer, MPMediaItem(snapshot, position));
    }
    for (const PlaylistRecord& playlist : snapshot->playlists()) {
        library_peer_add_playlist(peer,
                                  std::string(snapshot->text(playlist.name).value_or("")).c_str());
        for (const std::uint32_t position : snapshot->songsOfPlaylist(playlist)) {
            library_peer_add_to_playlist(peer, position + 1);
        }
    }
    library_peer_finish(peer);
    return peer;
}

}  // namespace

const std::shared_ptr<const MediaSnapshot>& greatLibrary() {
    static const std::shared_ptr<const MediaSnapshot> snapshot = madeLibrary();
    return snapshot;
}

library_peer* greatPeer() {
    static library_peer* const peer = madePeer();
    return peer;
}

LibraryEnvironment::LibraryEnvironment(bool splitsCompilations) {
    defaults_->setObject(RVQueryManager::splitCompilationsKey, splitsCompilations);
    library_.publish(greatLibrary());
}

}  // namespace tavrion::bench
