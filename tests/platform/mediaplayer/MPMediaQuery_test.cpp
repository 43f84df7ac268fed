#include "platform/mediaplayer/MPMediaQuery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> titles(const std::vector<MPMediaItem>& items) {
    std::vector<std::string> titles;
    for (const MPMediaItem& item : items) {
        titles.emplace_back(item.title().value_or("(none)"));
    }
    return titles;
}

MPMediaQuery filtered(MPMediaQuery query, const Value& value, std::string_view property) {
    query.addFilterPredicate(MPMediaPropertyPredicate::predicateWithValue(value, property));
    return query;
}

MPMediaQuery searched(MPMediaQuery query, const char* text, std::string_view property) {
    query.addFilterPredicate(MPMediaPropertyPredicate::predicateWithValue(
        text, property, MPMediaPredicateComparison::contains));
    return query;
}

/// The value of a property of each collection's first song.
std::vector<std::string> names(const std::vector<MPMediaItemCollection>& collections,
                               std::string_view property) {
    std::vector<std::string> names;
    for (const MPMediaItemCollection& collection : collections) {
        const Value value = collection.representativeItem().value().valueForProperty(property);
        names.push_back(value.isAbsent() ? "(none)" : *value.get<std::string>());
    }
    return names;
}

TEST(MPMediaQuery, givesSongsInLibraryOrder) {
    const MediaLibraryFixture fixture(
        {{.title = "Track 10"}, {.title = "apple"}, {.title = "Track 2"}});
    EXPECT_THAT(titles(MPMediaQuery::songsQuery().items()),
                ElementsAre("apple", "Track 2", "Track 10"));
}

TEST(MPMediaQuery, givesTheSongsOfOneAlbumInTheAlbumsOrder) {
    const MediaLibraryFixture fixture({{.title = "a", .track = 2, .disc = 1},
                                       {.title = "b", .track = 1, .disc = 2},
                                       {.title = "c", .track = 1, .disc = 1},
                                       {.title = "d", .albumTitle = "Other", .track = 1}});
    const MPMediaQuery albums = MPMediaQuery::albumsQuery();
    EXPECT_THAT(titles(albums.items()), ElementsAre("a", "b", "c", "d"));
    MPMediaQuery album = albums.collections().at(0).itemsQuery();
    EXPECT_THAT(titles(album.items()), ElementsAre("c", "a", "b"));
    album.setGroupingType(MPMediaGrouping::title);
    EXPECT_THAT(titles(album.items()), ElementsAre("a", "b", "c"));
}

TEST(MPMediaQuery, readsTheLibraryAgainEachTime) {
    MediaLibraryFixture fixture({{.title = "old"}});
    const MPMediaQuery query = MPMediaQuery::songsQuery();
    EXPECT_THAT(titles(query.items()), ElementsAre("old"));
    fixture.publish({{.title = "new"}});
    EXPECT_THAT(titles(query.items()), ElementsAre("new"));
}

TEST(MPMediaQuery, givesNonLibrarySongsOnlyWhenAsked) {
    const MediaLibraryFixture fixture({{.title = "in"}, {.title = "out", .inLibrary = false}});
    MPMediaQuery query = MPMediaQuery::songsQuery();
    EXPECT_THAT(titles(query.items()), ElementsAre("in"));
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    EXPECT_THAT(titles(query.items()), ElementsAre("in", "out"));
    query.setValueForKey(false, "shouldIncludeNonLibraryEntities");
    EXPECT_THAT(titles(query.items()), ElementsAre("in"));
}

TEST(MPMediaQuery, filtersByEqualityOnIndexedProperties) {
    const MediaLibraryFixture fixture(
        {{.title = "a", .artist = "X", .albumTitle = "L", .genre = "G", .persistentID = 11},
         {.title = "A", .artist = "Y", .albumTitle = "L", .genre = "H", .persistentID = 12},
         {.title = "b", .artist = "X", .albumTitle = "M", .genre = "G", .persistentID = 13}});
    const MPMediaQuery songs = MPMediaQuery::songsQuery();
    EXPECT_THAT(titles(filtered(songs, "a", MPMediaItemPropertyTitle).items()), ElementsAre("a"));
    EXPECT_THAT(titles(filtered(songs, "X", MPMediaItemPropertyAlbumArtist).items()),
                ElementsAre("a", "b"));
    EXPECT_THAT(titles(filtered(songs, "X", MPMediaItemPropertyArtist).items()),
                ElementsAre("a", "b"));
    EXPECT_THAT(titles(filtered(songs, "L", MPMediaItemPropertyAlbumTitle).items()),
                ElementsAre("A", "a"));
    EXPECT_THAT(titles(filtered(songs, "H", MPMediaItemPropertyGenre).items()), ElementsAre("A"));
    EXPECT_THAT(titles(filtered(songs, 13, MPMediaItemPropertyPersistentID).items()),
                ElementsAre("b"));
    const MPMediaQuery both = filtered(filtered(songs, "X", MPMediaItemPropertyAlbumArtist), "L",
                                       MPMediaItemPropertyAlbumTitle);
    EXPECT_THAT(titles(both.items()), ElementsAre("a"));
    EXPECT_THAT(titles(filtered(songs, "missing", MPMediaItemPropertyTitle).items()), IsEmpty());
    EXPECT_THAT(titles(filtered(songs, "", MPMediaItemPropertyTitle).items()), IsEmpty());
}

TEST(MPMediaQuery, filtersByEqualityOnOtherProperties) {
    const MediaLibraryFixture fixture({{.title = "a", .likedState = 2},
                                       {.title = "b", .mediaType = MediaType::podcast},
                                       {.title = "c", .duration = 12.5, .compilation = true}});
    const MPMediaQuery songs = MPMediaQuery::songsQuery();
    EXPECT_THAT(titles(filtered(songs, 1, MPMediaItemPropertyMediaType).items()),
                ElementsAre("a", "c"));
    EXPECT_THAT(titles(filtered(songs, 2, "likedState").items()), ElementsAre("a"));
    EXPECT_THAT(titles(filtered(songs, true, MPMediaItemPropertyIsCompilation).items()),
                ElementsAre("c"));
    EXPECT_THAT(titles(filtered(songs, 12.5, MPMediaItemPropertyPlaybackDuration).items()),
                ElementsAre("c"));
    EXPECT_THAT(titles(filtered(songs, "x", "noSuchProperty").items()), IsEmpty());
}

TEST(MPMediaQuery, asksForAnAbsentPropertyOrAnyOfSeveral) {
    const MediaLibraryFixture fixture(
        {{.title = "a", .genre = ""}, {.title = "b"}, {.title = "c"}});
    const MPMediaQuery songs = MPMediaQuery::songsQuery();
    EXPECT_THAT(titles(filtered(songs, Value(), MPMediaItemPropertyGenre).items()),
                ElementsAre("a"));
    const Value::Array identifiers{3, 1, 3, 99, "x"};
    EXPECT_THAT(titles(filtered(songs, identifiers, MPMediaItemPropertyPersistentID).items()),
                ElementsAre("a", "c"));
    EXPECT_THAT(titles(filtered(songs, Value::Array{"c", "b"}, MPMediaItemPropertyTitle).items()),
                ElementsAre("b", "c"));
}

TEST(MPMediaQuery, addsAFilterOnceAndRemovesIt) {
    const MediaLibraryFixture fixture({{.title = "a"}, {.title = "b"}});
    MPMediaQuery query = MPMediaQuery::songsQuery();
    const auto predicate =
        MPMediaPropertyPredicate::predicateWithValue("a", MPMediaItemPropertyTitle);
    query.addFilterPredicate(predicate);
    query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue("a", MPMediaItemPropertyTitle));
    EXPECT_EQ(query.filterPredicates().size(), 1U);
    query.removeFilterPredicate(predicate);
    EXPECT_THAT(titles(query.items()), ElementsAre("a", "b"));
}

TEST(MPMediaQuery, searchesWithoutCaseAndAccents) {
    const MediaLibraryFixture fixture({{.title = "Café Noir"}, {.title = "Tea"}});
    const MPMediaQuery songs = MPMediaQuery::songsQuery();
    EXPECT_THAT(titles(searched(songs, "CAFE", MPMediaItemPropertyTitle).items()),
                ElementsAre("Café Noir"));
    EXPECT_THAT(titles(searched(songs, "", MPMediaItemPropertyTitle).items()), IsEmpty());
    EXPECT_THAT(titles(searched(songs, "a", "playCount").items()), IsEmpty());
}

TEST(MPMediaQuery, groupsAlbumsByTitleWithSongsByDiscAndTrack) {
    const MediaLibraryFixture fixture(
        {{.title = "z", .artist = "X", .albumTitle = "Beta", .track = 1, .disc = 1},
         {.title = "y", .artist = "X", .albumTitle = "Beta", .track = 1, .disc = 2},
         {.title = "x", .artist = "X", .albumTitle = "Beta", .track = 2, .disc = 1},
         {.title = "w", .artist = "Y", .albumTitle = "Beta"},
         {.title = "v", .artist = "Y", .albumTitle = "Alpha 10"},
         {.title = "u", .artist = "Y", .albumTitle = "alpha 9"}});
    const auto albums = MPMediaQuery::albumsQuery().collections();
    EXPECT_EQ(albums.size(), 4U);
    std::vector<std::string> albumTitles = names(albums, "albumTitle");
    EXPECT_THAT(albumTitles, ElementsAre("alpha 9", "Alpha 10", "Beta", "Beta"));
    const auto& ofX = albums[2].items().size() == 3 ? albums[2] : albums[3];
    EXPECT_THAT(titles(ofX.items()), ElementsAre("z", "x", "y"));
    EXPECT_EQ(ofX.valueForKey("groupingType"), Value(1));
    EXPECT_EQ(ofX.persistentID(), ofX.items()[0].albumPersistentID());
}

TEST(MPMediaQuery, groupsArtistsAndGenresByName) {
    const MediaLibraryFixture fixture(
        {{.title = "a", .artist = "Zoë", .genre = "Rock"},
         {.title = "b", .artist = "adele", .albumArtist = "Various", .genre = ""},
         {.title = "c", .artist = "Zoë", .genre = "ambient"},
         {.title = "d", .artist = "", .genre = "Rock"}});
    EXPECT_THAT(names(MPMediaQuery::artistsQuery().collections(), "artist"),
                ElementsAre("adele", "Zoë", "(none)"));
    EXPECT_THAT(names(MPMediaQuery::genresQuery().collections(), "genre"),
                ElementsAre("ambient", "Rock"));
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.setGroupingType(MPMediaGrouping::albumArtist);
    EXPECT_THAT(names(query.collections(), "albumArtist"), ElementsAre("Various", "Zoë", "(none)"));
    EXPECT_THAT(titles(query.collections()[1].items()), ElementsAre("a", "c"));
    EXPECT_EQ(query.collections()[1].valueForKey("groupingType"), Value(3));
}

TEST(MPMediaQuery, groupsSingleSongsByTitle) {
    const MediaLibraryFixture fixture({{.title = "b"}, {.title = "a"}});
    const auto collections = MPMediaQuery::songsQuery().collections();
    EXPECT_THAT(names(collections, "title"), ElementsAre("a", "b"));
    EXPECT_EQ(collections[0].groupingType(), MPMediaGrouping::title);
}

TEST(MPMediaQuery, findsTheSongsOfACollectionAgain) {
    const MediaLibraryFixture fixture({{.title = "a", .artist = "X", .likedState = 2},
                                       {.title = "b", .artist = "X"},
                                       {.title = "c", .artist = "Y", .likedState = 2},
                                       {.title = "d", .artist = ""}});
    const auto artists = MPMediaQuery::artistsQuery().collections();
    ASSERT_EQ(artists.size(), 3U);
    EXPECT_THAT(titles(filtered(artists[0].itemsQuery(), 2, "likedState").items()),
                ElementsAre("a"));
    EXPECT_THAT(titles(artists[1].itemsQuery().items()), ElementsAre("c"));
    EXPECT_THAT(titles(artists[2].itemsQuery().items()), ElementsAre("d"));
}

TEST(MPMediaItemCollection, ofGivenSongsReportsNoGrouping) {
    const MediaLibraryFixture fixture({{.title = "b", .inLibrary = false}, {.title = "a"}});
    const MPMediaItemCollection collection({fixture.song("b"), fixture.song("a")});
    EXPECT_THAT(titles(collection.items()), ElementsAre("b", "a"));
    EXPECT_EQ(collection.valueForKey("groupingType"), Value(0));
    EXPECT_EQ(collection.valueForKey("count"), Value(2));
    EXPECT_TRUE(collection.valueForKey("name").isAbsent());
    EXPECT_EQ(collection.representativeItem(), fixture.song("b"));
    EXPECT_THAT(titles(collection.itemsQuery().items()), ElementsAre("a", "b"));
    EXPECT_EQ(collection, MPMediaItemCollection({fixture.song("b"), fixture.song("a")}));
    EXPECT_NE(collection, MPMediaItemCollection({fixture.song("a")}));
    EXPECT_EQ(MPMediaItemCollection(std::vector<MPMediaItem>()).representativeItem(), std::nullopt);
}

class Playlists : public testing::Test {
  protected:
    MediaLibraryFixture fixture_{
        {{.title = "a", .persistentID = 1},
         {.title = "b", .persistentID = 2, .mediaType = MediaType::podcast},
         {.title = "c", .persistentID = 3, .inLibrary = false}},
        {{.name = "Zulu", .persistentID = 91, .songs = {3, 2, 1, 1}, .parent = 92},
         {.name = "Folder", .persistentID = 92, .folder = true},
         {.name = "Ältere", .persistentID = 93, .songs = {2}, .hidden = true, .stock = true}}};

    static std::vector<std::string> namesOf(const std::vector<MPMediaItemCollection>& collections) {
        std::vector<std::string> names;
        for (const auto& collection : collections) {
            names.emplace_back(MPMediaPlaylist::playlistFromCollection(collection).value().name());
        }
        return names;
    }
};

TEST_F(Playlists, comeInTheirOwnOrderWithTheirSongs) {
    const auto playlists = MPMediaQuery::playlistsQuery().collections();
    EXPECT_THAT(namesOf(playlists), ElementsAre("Zulu", "Folder", "Ältere"));
    EXPECT_THAT(titles(playlists[0].items()), ElementsAre("b", "a", "a"));
    EXPECT_THAT(titles(playlists[1].items()), IsEmpty());
    EXPECT_THAT(titles(MPMediaQuery::playlistsQuery().items()), ElementsAre("b", "a", "a", "b"));
}

TEST_F(Playlists, tellTheirPropertiesByName) {
    const auto collections = MPMediaQuery::playlistsQuery().collections();
    const auto zulu = MPMediaPlaylist::playlistFromCollection(collections[0]).value();
    EXPECT_EQ(zulu.parentPersistentID(), 92U);
    EXPECT_EQ(zulu.persistentID(), 91U);
    EXPECT_FALSE(zulu.isFolder());
    EXPECT_EQ(zulu.valueForProperty("name"), Value("Zulu"));
    EXPECT_EQ(zulu.valueForKey("groupingType"), Value(6));
    EXPECT_EQ(collections[1].valueForKey("isFolder"), Value(true));
    EXPECT_EQ(collections[2].valueForKey("isHidden"), Value(true));
    EXPECT_EQ(collections[2].valueForKey("isStock"), Value(true));
    EXPECT_EQ(collections[0].valueForKey("playlistPersistentID"), Value(91));
    EXPECT_EQ(collections[0].valueForKey("parentPersistentID"), Value(92));
    EXPECT_EQ(
        MPMediaPlaylist::playlistFromCollection(MPMediaItemCollection(std::vector<MPMediaItem>())),
        std::nullopt);
}

TEST_F(Playlists, areChosenByTheirOwnPropertiesAndFilledBySongs) {
    MPMediaQuery query =
        filtered(filtered(MPMediaQuery::playlistsQuery(), false, "isHidden"), false, "isFolder");
    EXPECT_THAT(namesOf(query.collections()), ElementsAre("Zulu"));
    query = filtered(query, 1, MPMediaItemPropertyMediaType);
    EXPECT_THAT(titles(query.collections()[0].items()), ElementsAre("a", "a"));
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    EXPECT_THAT(titles(query.collections()[0].items()), ElementsAre("c", "a", "a"));
    EXPECT_THAT(
        namesOf(searched(MPMediaQuery::playlistsQuery(), "altere", MPMediaPlaylistPropertyName)
                    .collections()),
        ElementsAre("Ältere"));
    EXPECT_THAT(namesOf(searched(MPMediaQuery::playlistsQuery(), "", MPMediaPlaylistPropertyName)
                            .collections()),
                IsEmpty());
}

TEST_F(Playlists, findTheirSongsAgain) {
    const auto playlists = MPMediaQuery::playlistsQuery().collections();
    EXPECT_THAT(titles(playlists[0].itemsQuery().items()), ElementsAre("b", "a", "a"));
    EXPECT_THAT(
        titles(filtered(playlists[0].itemsQuery(), 1, MPMediaItemPropertyMediaType).items()),
        ElementsAre("a", "a"));
}

}  // namespace
}  // namespace tavrion
