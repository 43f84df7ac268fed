#include "platform/mediaplayer/MPMediaItemCollection+Extended.h"
#include "platform/mediaplayer/MPMediaPlaylist.h"

namespace tavrion::Extended {

namespace {

using Text = std::optional<std::string_view>;

std::optional<std::string> ownText(const Text& text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::string> sortNameOr(const Text& sortName, const Text& name) {
    return ownText(sortName.value_or("").empty() ? name : sortName);
}

}  // namespace

std::optional<std::string> sortKey(const MPMediaItemCollection& collection) {
    if (const auto playlist = MPMediaPlaylist::playlistFromCollection(collection)) {
        return std::string(playlist->name());
    }
    const std::optional<MPMediaItem> song = collection.representativeItem();
    if (!song) {
        return std::nullopt;
    }
    switch (collection.groupingType()) {
        case MPMediaGrouping::genre:
            return ownText(song->genre());
        case MPMediaGrouping::albumArtist:
            return sortNameOr(song->sortAlbumArtist(), song->albumArtist());
        case MPMediaGrouping::album:
            return sortNameOr(song->sortAlbumTitle(), song->albumTitle());
        default:
            return std::nullopt;
    }
}

std::optional<std::string> sortArtistKey(const MPMediaItemCollection& collection) {
    const std::optional<MPMediaItem> song = collection.representativeItem();
    switch (collection.groupingType()) {
        case MPMediaGrouping::albumArtist:
            return song ? sortNameOr(song->sortAlbumArtist(), song->albumArtist()) : std::nullopt;
        case MPMediaGrouping::artist:
            return song ? sortNameOr(song->sortArtist(), song->artist()) : std::nullopt;
        default:
            return std::string();
    }
}

}  // namespace tavrion::Extended
