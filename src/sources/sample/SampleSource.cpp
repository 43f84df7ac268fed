#include "sources/sample/SampleSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <new>
#include <optional>

#include "platform/dispatch/FileWatch.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/mediaplayer/MediaSnapshotBuilder.h"
#include "sources/sample/SampleListener.h"
#include "sources/sample/SamplePlaylists.h"
#include "sources/sample/SampleSongTexts.h"

namespace tavrion {

namespace {

/// Playlists of the user are numbered from here, those of the catalogue below.
constexpr std::uint64_t firstUserPlaylist = 100;
constexpr std::size_t textBytesASong = 110;

std::optional<std::uint32_t> songsFromLocation(const std::string& location) {
    std::uint32_t songs = 0;
    const char* const end = location.data() + location.size();
    const auto [stop, failure] = std::from_chars(location.data(), end, songs);
    if (location.empty()) {
        return SampleSource::usualSize;
    }
    const bool isNumber = failure == std::errc() && stop == end;
    return isNumber && songs > 0 && songs <= SampleCatalogue::mostSongs ? std::optional(songs)
                                                                        : std::nullopt;
}

NSError tooLarge(const std::string& songs) {
    return {fmt::format("There is not enough memory for a sample library of {} songs; choose fewer "
                        "with: tavrionctl library use sample SONGS",
                        songs),
            {}};
}

/// One reading of the library at one instant.
class SampleReading {
  public:
    SampleReading(const SampleCatalogue& catalogue, const SampleState& state, NSDate now)
        : catalogue_(catalogue),
          state_(state),
          now_(now),
          counts_(
              SampleListener(catalogue, NSCalendar::currentCalendar().timeZone()).countsAt(now)) {
        addEndings(state.endings);
        addEndings(progressOf(state.queue, catalogue, now).endings);
    }

    std::shared_ptr<const MediaSnapshot> snapshot() {
        const std::size_t songs = catalogue_.outlines().size;
        builder_.reserve(songs, songs * textBytesASong);
        addSongs();
        for (const SamplePlaylist& playlist : samplePlaylists(catalogue_)) {
            builder_.addPlaylist({.name = playlist.name,
                                  .persistentID = playlist.persistentID,
                                  .parentPersistentID = playlist.parentPersistentID,
                                  .isFolder = playlist.isFolder,
                                  .isHidden = playlist.isHidden,
                                  .songs = playlist.songs});
        }
        for (const SampleUserPlaylist& playlist : state_.playlists) {
            builder_.addPlaylist({.name = playlist.name,
                                  .persistentID = playlist.persistentID,
                                  .songs = playlist.songs});
        }
        return builder_.finish();
    }

  private:
    void addEndings(const std::vector<SampleEnding>& endings) {
        for (const SampleEnding& ending : endings) {
            const auto song = catalogue_.songOfPersistentID(ending.song);
            if (song && ending.date <= now_) {
                counts_[*song].add(ending.isWhole, ending.date);
            }
        }
    }

    void addSongs() {
        SampleSongTexts texts(catalogue_);
        for (std::uint32_t song = 0; song < catalogue_.songCount(); ++song) {
            if (!catalogue_.hasSong(song, now_)) {
                continue;
            }
            SongDescription description = texts.descriptionOf(song);
            const SampleCounts& counts = counts_[song];
            description.playCount = counts.plays;
            description.skipCount = counts.skips;
            description.lastPlayedDate = counts.lastPlayed;
            description.lastSkippedDate = counts.lastSkipped;
            const auto liked = state_.likedStates.find(description.persistentID);
            if (liked != state_.likedStates.end()) {
                description.likedState = liked->second;
            }
            builder_.addSong(description);
        }
    }

    const SampleCatalogue& catalogue_;
    const SampleState& state_;
    const NSDate now_;
    std::vector<SampleCounts> counts_;
    MediaSnapshotBuilder builder_;
};

}  // namespace

SampleSource::SampleSource(std::uint32_t songs, std::filesystem::path stateFile, std::uint64_t seed)
    : catalogue_(seed, songs),
      file_(std::move(stateFile)),
      player_(file_, catalogue_),
      musicPlayer_(player_) {}

std::string SampleSource::location() const {
    return std::to_string(catalogue_.outlines().size);
}

SourceCapabilities SampleSource::capabilities() const {
    return {.canWriteLikes = true, .canWritePlaylists = true, .canPlay = true};
}

Result<std::shared_ptr<const MediaSnapshot>> SampleSource::read() {
    const Result<SampleState> state = file_.read();
    if (!state) {
        return state.error();
    }
    try {
        return SampleReading(catalogue_, state.value(), NSDate::date()).snapshot();
    } catch (const std::bad_alloc&) {
        return tooLarge(location());
    }
}

Result<void> SampleSource::setLiked(std::uint64_t persistentID, std::uint32_t likedState) {
    return file_.change([&](SampleState& state) { state.likedStates[persistentID] = likedState; });
}

Result<std::uint64_t> SampleSource::createPlaylist(const std::string& name,
                                                   std::span<const std::uint64_t> songs) {
    std::uint64_t persistentID = 0;
    const Result<void> written = file_.change([&](SampleState& state) {
        persistentID = samplePlaylistID(catalogue_, firstUserPlaylist + state.playlists.size());
        state.playlists.push_back({persistentID, name, {songs.begin(), songs.end()}});
    });
    if (!written) {
        return written.error();
    }
    return persistentID;
}

Result<void> SampleSource::addToPlaylist(std::uint64_t playlistID,
                                         std::span<const std::uint64_t> songs) {
    bool isKnown = false;
    Result<void> written = file_.change([&](SampleState& state) {
        for (SampleUserPlaylist& playlist : state.playlists) {
            if (playlist.persistentID == playlistID) {
                isKnown = true;
                playlist.songs.insert(playlist.songs.end(), songs.begin(), songs.end());
            }
        }
    });
    if (written && !isKnown) {
        return NSError{
            "The sample library has no playlist of yours with that identifier; make one "
            "first.",
            {}};
    }
    return written;
}

Result<Observation> SampleSource::watch(Work changed) {
    return watchFile(file_.path(), std::move(changed));
}

void registerSampleSource(SourceRegistry& registry, const std::filesystem::path& stateFile) {
    registry.registerKind(
        {.name = SampleSource::kindName,
         .help = "a made-up library to try the program on; the location is the number of songs",
         .create = [stateFile](const std::string& location) -> Result<std::unique_ptr<Source>> {
             const std::optional<std::uint32_t> songs = songsFromLocation(location);
             if (!songs) {
                 return NSError{
                     fmt::format("\"{}\" is not a number of songs; a library of the kind sample "
                                 "takes one from 1 to {}.",
                                 location, SampleCatalogue::mostSongs),
                     {}};
             }
             try {
                 return std::unique_ptr<Source>(std::make_unique<SampleSource>(*songs, stateFile));
             } catch (const std::bad_alloc&) {
                 return tooLarge(location);
             }
         },
         .locationIsPath = false});
}

}  // namespace tavrion
