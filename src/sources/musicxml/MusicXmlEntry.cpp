#include "sources/musicxml/MusicXmlEntry.h"

#include "sources/musicxml/MusicXmlValues.h"

namespace tavrion {

namespace {

constexpr std::size_t place(MusicXmlKey key, MusicXmlKey first) {
    return static_cast<std::size_t>(key) - static_cast<std::size_t>(first);
}

constexpr std::uint64_t bit(MusicXmlKey key) {
    return 1ULL << place(key, firstMusicXmlFlag);
}

/// What a number of that key can be at most.
std::int64_t limitOf(MusicXmlKey key) {
    // A size or a number of a track is any exact double; milliseconds fit 31 bits with room to
    // spare. Nobody hears or skips a song ten million times, and a count that rose so far by
    // damage would become as many plays.
    constexpr std::int64_t mostOfAnything = std::int64_t{1} << 53;
    constexpr std::int64_t mostMilliseconds = std::int64_t{1} << 31;
    constexpr std::int64_t mostPlays = 10'000'000;
    if (key == MusicXmlKey::size || key == MusicXmlKey::trackID) {
        return mostOfAnything;
    }
    const bool isCount = key == MusicXmlKey::playCount || key == MusicXmlKey::skipCount;
    return isCount ? mostPlays : mostMilliseconds;
}

}  // namespace

void MusicXmlEntry::clear() {
    texts_.clear();
    ranges_.fill(std::nullopt);
    integers_.fill(std::nullopt);
    dates_.fill(std::nullopt);
    saidYes_ = 0;
    saidNo_ = 0;
}

bool MusicXmlEntry::setText(MusicXmlKey key, std::string_view value) {
    if (key >= firstMusicXmlDate) {
        return setDate(key, value);
    }
    if (key >= firstMusicXmlInteger) {
        return setInteger(key, value);
    }
    const bool isIdentifier = key == MusicXmlKey::persistentID ||
                              key == MusicXmlKey::playlistPersistentID ||
                              key == MusicXmlKey::parentPersistentID;
    if (isIdentifier && !musicXmlPersistentID(value)) {
        return false;
    }
    ranges_[static_cast<std::size_t>(key)] = Range{texts_.size(), value.size()};
    texts_.append(value);
    return true;
}

bool MusicXmlEntry::setInteger(MusicXmlKey key, std::string_view value) {
    const auto number = musicXmlInteger(value);
    if (!number || *number < 0 || *number > limitOf(key)) {
        return false;
    }
    integers_[place(key, firstMusicXmlInteger)] = static_cast<std::uint64_t>(*number);
    return true;
}

bool MusicXmlEntry::setDate(MusicXmlKey key, std::string_view value) {
    const auto date = musicXmlDate(value);
    if (date && !isNeverInMusicXml(*date)) {
        dates_[place(key, firstMusicXmlDate)] = date;
    }
    return date.has_value();
}

void MusicXmlEntry::setFlag(MusicXmlKey key, bool value) {
    saidYes_ = value ? saidYes_ | bit(key) : saidYes_ & ~bit(key);
    saidNo_ = value ? saidNo_ & ~bit(key) : saidNo_ | bit(key);
}

std::optional<std::string_view> MusicXmlEntry::text(MusicXmlKey key) const {
    const auto& range = ranges_[static_cast<std::size_t>(key)];
    return range ? std::optional(std::string_view(texts_).substr(range->offset, range->length))
                 : std::nullopt;
}

std::uint64_t MusicXmlEntry::integer(MusicXmlKey key) const {
    return integers_[place(key, firstMusicXmlInteger)].value_or(0);
}

bool MusicXmlEntry::hasInteger(MusicXmlKey key) const {
    return integers_[place(key, firstMusicXmlInteger)].has_value();
}

std::optional<NSDate> MusicXmlEntry::date(MusicXmlKey key) const {
    return dates_[place(key, firstMusicXmlDate)];
}

bool MusicXmlEntry::flag(MusicXmlKey key) const {
    return (saidYes_ & bit(key)) != 0;
}

bool MusicXmlEntry::isDenied(MusicXmlKey key) const {
    return (saidNo_ & bit(key)) != 0;
}

std::uint64_t MusicXmlEntry::persistentID(MusicXmlKey key) const {
    const auto digits = text(key);
    return digits ? musicXmlPersistentID(*digits).value_or(0) : 0;
}

MediaType MusicXmlEntry::mediaType() const {
    if (flag(MusicXmlKey::podcast)) {
        return MediaType::podcast;
    }
    if (flag(MusicXmlKey::audiobook)) {
        return MediaType::audiobook;
    }
    if (flag(MusicXmlKey::movie)) {
        return MediaType::movie;
    }
    if (flag(MusicXmlKey::tvShow)) {
        return MediaType::tvShow;
    }
    const bool isOtherVideo = flag(MusicXmlKey::hasVideo) && !flag(MusicXmlKey::musicVideo);
    return isOtherVideo ? MediaType::video : MediaType::music;
}

/// Very old exports have no identifiers: such a song is known by where it is, or else by what it
/// is called.
std::uint64_t MusicXmlEntry::persistentIDOfSong() const {
    if (const std::uint64_t own = persistentID(MusicXmlKey::persistentID)) {
        return own;
    }
    if (const auto location = text(MusicXmlKey::location)) {
        return mediaTextHash(*location);
    }
    std::string names;
    for (const auto key : {MusicXmlKey::name, MusicXmlKey::artist, MusicXmlKey::album}) {
        names.append(text(key).value_or(std::string_view())).push_back('\n');
    }
    return mediaTextHash(names + std::to_string(integer(MusicXmlKey::totalTime)));
}

SongDescription MusicXmlEntry::song() const {
    constexpr double millisecondsOfSecond = 1000.0;
    SongDescription song;
    song.persistentID = persistentIDOfSong();
    song.title = text(MusicXmlKey::name);
    song.artist = text(MusicXmlKey::artist);
    song.albumArtist = text(MusicXmlKey::albumArtist);
    song.albumTitle = text(MusicXmlKey::album);
    song.genre = text(MusicXmlKey::genre);
    song.composer = text(MusicXmlKey::composer);
    song.sortTitle = text(MusicXmlKey::sortName);
    song.sortArtist = text(MusicXmlKey::sortArtist);
    song.sortAlbumArtist = text(MusicXmlKey::sortAlbumArtist);
    song.sortAlbumTitle = text(MusicXmlKey::sortAlbum);
    song.libraryID = text(MusicXmlKey::persistentID);
    song.location = text(MusicXmlKey::location);
    song.playbackDuration =
        static_cast<double>(integer(MusicXmlKey::totalTime)) / millisecondsOfSecond;
    song.fileSize = static_cast<double>(integer(MusicXmlKey::size));
    song.playCount = integer(MusicXmlKey::playCount);
    song.skipCount = integer(MusicXmlKey::skipCount);
    song.lastPlayedDate = date(MusicXmlKey::playDate);
    song.lastSkippedDate = date(MusicXmlKey::skipDate);
    song.dateAdded = date(MusicXmlKey::dateAdded);
    song.releaseDate = date(MusicXmlKey::releaseDate);
    song.trackNumber = static_cast<std::uint32_t>(integer(MusicXmlKey::trackNumber));
    song.trackCount = static_cast<std::uint32_t>(integer(MusicXmlKey::trackCount));
    song.discNumber = static_cast<std::uint32_t>(integer(MusicXmlKey::discNumber));
    song.year = static_cast<std::uint32_t>(integer(MusicXmlKey::year));
    if (flag(MusicXmlKey::loved) || flag(MusicXmlKey::favorited)) {
        song.likedState = 2;
    } else if (flag(MusicXmlKey::disliked)) {
        song.likedState = 3;
    }
    song.mediaType = mediaType();
    song.isCompilation = flag(MusicXmlKey::compilation);
    song.isExplicit = flag(MusicXmlKey::explicitContent);
    song.isCloudItem = text(MusicXmlKey::trackType) == std::string_view("Remote") ||
                       (flag(MusicXmlKey::appleMusic) && !text(MusicXmlKey::location));
    song.existsInLibrary = !flag(MusicXmlKey::playlistOnly);
    return song;
}

}  // namespace tavrion
