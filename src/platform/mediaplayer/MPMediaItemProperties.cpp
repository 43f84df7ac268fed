#include "platform/mediaplayer/MPMediaItemProperties.h"

#include <algorithm>
#include <array>

namespace tavrion {

namespace {

using Item = MPMediaItem;

Value number(unsigned value) {
    return {static_cast<std::int64_t>(value)};
}

Value textValue(std::optional<std::string_view> text) {
    return text ? Value(std::string(*text)) : Value();
}

template <SongText which>
constexpr MPMediaItemProperty textProperty(std::string_view name) {
    return {
        name,
        [](const Item& item) { return textValue(item.snapshot()->text(item.position(), which)); },
        which};
}

/// What the platform calls the latest use of a song: its last play or skip.
Value dateAccessed(const Item& item) {
    const auto played = item.lastPlayedDate();
    const auto skipped = item.lastSkippedDate();
    if (played && skipped) {
        return std::max(*played, *skipped);
    }
    return played ? played : skipped;
}

Value multiverseIdentifier(const Item& item) {
    Value::Dictionary identifiers;
    if (const auto text = item.cloudUniversalLibraryId()) {
        identifiers["cloudUniversalLibraryId"] = std::string(*text);
    }
    return identifiers;
}

/// Sorted by name.
constexpr auto properties = std::to_array<MPMediaItemProperty>({
    textProperty<SongText::albumArtist>("albumArtist"),
    {"albumArtistPersistentID",
     [](const Item& item) { return Value(item.albumArtistPersistentID()); }},
    {"albumPersistentID", [](const Item& item) { return Value(item.albumPersistentID()); }},
    textProperty<SongText::albumTitle>("albumTitle"),
    {"albumTrackCount", [](const Item& item) { return number(item.albumTrackCount()); }},
    {"albumTrackNumber", [](const Item& item) { return number(item.albumTrackNumber()); }},
    textProperty<SongText::artist>("artist"),
    {"artistPersistentID", [](const Item& item) { return Value(item.artistPersistentID()); }},
    textProperty<SongText::libraryID>("cloudUniversalLibraryId"),
    textProperty<SongText::composer>("composer"),
    {"composerPersistentID", [](const Item& item) { return Value(item.composerPersistentID()); }},
    {"dateAccessed", [](const Item& item) { return dateAccessed(item); }},
    {"dateAdded", [](const Item& item) { return Value(item.dateAdded()); }},
    {"discNumber", [](const Item& item) { return number(item.discNumber()); }},
    {"existsInLibrary", [](const Item& item) { return Value(item.existsInLibrary()); }},
    {"explicitItem", [](const Item& item) { return Value(item.isExplicitItem()); }},
    {"fileSize", [](const Item& item) { return Value(item.fileSize()); }},
    textProperty<SongText::genre>("genre"),
    {"genrePersistentID", [](const Item& item) { return Value(item.genrePersistentID()); }},
    {"isCloudItem", [](const Item& item) { return Value(item.isCloudItem()); }},
    {"isCompilation", [](const Item& item) { return Value(item.isCompilation()); }},
    {"isExplicit", [](const Item& item) { return Value(item.isExplicitItem()); }},
    {"isExplicitItem", [](const Item& item) { return Value(item.isExplicitItem()); }},
    {"lastPlayedDate", [](const Item& item) { return Value(item.lastPlayedDate()); }},
    {"lastSkippedDate", [](const Item& item) { return Value(item.lastSkippedDate()); }},
    {"likedState", [](const Item& item) { return number(item.likedState()); }},
    {"mediaType", [](const Item& item) { return Value(item.mediaType()); }},
    {"multiverseIdentifier", [](const Item& item) { return multiverseIdentifier(item); }},
    {"persistentID", [](const Item& item) { return Value(item.persistentID()); }},
    {"playCount", [](const Item& item) { return Value(item.playCount()); }},
    {"playbackDuration", [](const Item& item) { return Value(item.playbackDuration()); }},
    {"playbackStoreID",
     [](const Item& item) { return Value(std::string(item.playbackStoreID())); }},
    {"releaseDate", [](const Item& item) { return Value(item.releaseDate()); }},
    {"skipCount", [](const Item& item) { return Value(item.skipCount()); }},
    textProperty<SongText::sortAlbumArtist>("sortAlbumArtist"),
    textProperty<SongText::sortAlbumTitle>("sortAlbumTitle"),
    textProperty<SongText::sortArtist>("sortArtist"),
    textProperty<SongText::sortTitle>("sortTitle"),
    textProperty<SongText::title>("title"),
    {"year", [](const Item& item) { return number(item.year()); }},
});

}  // namespace

const MPMediaItemProperty* propertyOfMediaItem(std::string_view name) {
    const auto byName = [](const MPMediaItemProperty& property, std::string_view sought) {
        return property.name < sought;
    };
    const auto found = std::lower_bound(properties.begin(), properties.end(), name, byName);
    return found == properties.end() || found->name != name ? nullptr : &*found;
}

}  // namespace tavrion
