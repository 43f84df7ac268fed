#include "library/RVMetadataManager.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/mediaplayer/Source.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "tests/platform/foundation/ZoneText.h"

namespace tavrion {
namespace {

using Manager = RVMetadataManager;
using Runs = std::vector<NSAttributedString::Run>;
using test::instant;

UIImage smallSymbol(const char* name) {
    UIImageSymbolConfiguration configuration;
    configuration.scale = UIImageSymbolScale::small;
    return UIImage::systemImageNamed(name, configuration);
}

class RVMetadataManagerTest : public testing::Test {
  protected:
    static std::vector<MPMediaItemCollection> collections(MPMediaGrouping grouping) {
        MPMediaQuery query = MPMediaQuery::songsQuery();
        query.setGroupingType(grouping);
        return query.collections();
    }
    static MPMediaEntity first(MPMediaGrouping grouping) { return collections(grouping).front(); }
    /// A collection of the grouping without a song.
    static MPMediaEntity bare() {
        MPMediaQuery query = MPMediaQuery::playlistsQuery();
        return query.collections().front();
    }
    static std::optional<NSAttributedString> title(const MPMediaEntity& entity) {
        return Manager::titleForMediaEntity(entity, std::nullopt);
    }
    static std::optional<NSAttributedString> plain(const char* text) {
        return NSAttributedString(text);
    }
    MPMediaEntity song(const std::string& title) const { return library_.song(title); }
    NSAttributedString property(const std::string& title, RVSortType type) const {
        return Manager::sortPropertyForMediaEntity(song(title), type);
    }
    static NSAttributedString withSymbol(const char* symbol, const char* text) {
        return Manager::attributedString(text, smallSymbol(symbol));
    }

    ManualClock clock_{instant("2024-03-15T12:00:00Z")};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(RVMetadataManagerTest, namesFallBackWhereTheLibraryHasNone) {
    library_.publish({{.title = "", .artist = "", .albumTitle = "", .genre = ""}});
    const MPMediaItem song(library_.library().snapshot(), 0);
    EXPECT_EQ(Manager::titleForMediaItem(song), "Untitled");
    EXPECT_EQ(Manager::albumTitleForMediaItem(song), "Untitled");
    EXPECT_EQ(Manager::artistForMediaItem(song), "Unknown");
    EXPECT_EQ(Manager::albumArtistForMediaItem(song), "Unknown");
    EXPECT_EQ(Manager::genreForMediaItem(song), "Unknown");
    EXPECT_EQ(title(song), plain("Untitled"));
    EXPECT_EQ(Manager::subtitleForMediaEntity(song), "Unknown");
}

// An empty title shows "Untitled", an empty artist "Unknown", a playlist's empty name nothing.
TEST_F(RVMetadataManagerTest, emptyNamesOfASongAreReplacedAndThatOfAPlaylistIsNot) {
    library_.publish({{.title = "", .artist = ""}}, {{.name = "", .persistentID = 9}});
    const MPMediaItem song(library_.library().snapshot(), 0);
    EXPECT_EQ(title(song), plain("Untitled"));
    EXPECT_EQ(Manager::artistForMediaItem(song), "Unknown");
    EXPECT_EQ(title(bare()), plain(""));
}

TEST_F(RVMetadataManagerTest, namesAreTheLibrarysOwn) {
    library_.publish({{.title = "Tune",
                       .artist = "Singer",
                       .albumArtist = "Band",
                       .albumTitle = "Record",
                       .genre = "Folk"}});
    const MPMediaItem song = library_.song("Tune");
    EXPECT_EQ(Manager::titleForMediaItem(song), "Tune");
    EXPECT_EQ(Manager::albumTitleForMediaItem(song), "Record");
    EXPECT_EQ(Manager::artistForMediaItem(song), "Singer");
    EXPECT_EQ(Manager::albumArtistForMediaItem(song), "Band");
    EXPECT_EQ(Manager::genreForMediaItem(song), "Folk");
}

TEST_F(RVMetadataManagerTest, anExplicitSongIsMarkedWhereAFontIsGiven) {
    library_.publish({{.title = "Loud", .explicitContent = true}, {.title = "Quiet"}});
    const UIFont font{20};
    UIImageSymbolConfiguration configuration;
    configuration.font = UIFont{15};
    const UIImage mark = UIImage::systemImageNamed("e.square.fill", configuration)
                             .imageWithTintColor({"systemGray2Color"});
    EXPECT_EQ(Manager::titleForMediaEntity(song("Loud"), font)->runs(), (Runs{"Loud\u2004", mark}));
    EXPECT_EQ(Manager::titleForMediaEntity(song("Quiet"), font), plain("Quiet"));
    EXPECT_EQ(title(song("Loud")), plain("Loud"));
}

TEST_F(RVMetadataManagerTest, theTitleOfACollectionIsThatOfItsFirstSong) {
    library_.publish({{.artist = "Singer",
                       .albumArtist = "Band",
                       .albumTitle = "Record",
                       .genre = "Folk",
                       .composer = "Writer"}},
                     {{.name = "Mix", .persistentID = 9}});
    EXPECT_EQ(title(first(MPMediaGrouping::album)), plain("Record"));
    EXPECT_EQ(title(first(MPMediaGrouping::artist)), plain("Singer"));
    EXPECT_EQ(title(first(MPMediaGrouping::albumArtist)), plain("Band"));
    EXPECT_EQ(title(first(MPMediaGrouping::genre)), plain("Folk"));
    EXPECT_EQ(title(first(MPMediaGrouping::playlist)), plain("Mix"));
    EXPECT_EQ(title(first(MPMediaGrouping::composer)), std::nullopt);
    EXPECT_EQ(title(MPMediaItemCollection({library_.song("Song")})), std::nullopt);
    EXPECT_EQ(title(MPMediaEntity()), std::nullopt);
}

TEST_F(RVMetadataManagerTest, collectionsWithoutANameHaveOneToo) {
    library_.publish({{.artist = "", .albumTitle = ""}});
    EXPECT_EQ(title(first(MPMediaGrouping::album)), plain("Untitled"));
    EXPECT_EQ(title(first(MPMediaGrouping::artist)), plain("Unknown"));
    EXPECT_EQ(title(first(MPMediaGrouping::albumArtist)), plain("Unknown"));
    EXPECT_EQ(Manager::subtitleForMediaEntity(first(MPMediaGrouping::album)), "Unknown");
}

TEST_F(RVMetadataManagerTest, theSubtitleDependsOnTheKind) {
    library_.publish({{.title = "a", .artist = "Singer", .albumArtist = "Band", .composer = "W"},
                      {.title = "b", .artist = "Singer", .albumArtist = "Band", .composer = "W"}},
                     {{.name = "Mix", .persistentID = 9, .songs = {1, 2}},
                      {.name = "Bare", .persistentID = 10},
                      {.name = "Lone", .persistentID = 11, .songs = {1}}});
    const auto subtitle = [](const MPMediaEntity& entity) {
        return Manager::subtitleForMediaEntity(entity);
    };
    EXPECT_EQ(subtitle(song("a")), "Singer");
    EXPECT_EQ(subtitle(first(MPMediaGrouping::album)), "Band");
    EXPECT_EQ(subtitle(first(MPMediaGrouping::albumArtist)), "2 songs");
    EXPECT_EQ(subtitle(first(MPMediaGrouping::genre)), "2 songs");
    EXPECT_EQ(subtitle(first(MPMediaGrouping::composer)), "—");
    EXPECT_EQ(subtitle(MPMediaItemCollection({library_.song("a")})), "—");
    EXPECT_EQ(subtitle(MPMediaEntity()), std::nullopt);
    const auto playlists = collections(MPMediaGrouping::playlist);
    EXPECT_EQ(subtitle(playlists[0]), "2 songs");
    EXPECT_EQ(subtitle(playlists[1]), "0 songs");
    EXPECT_EQ(subtitle(playlists[2]), "1 song");
}

TEST_F(RVMetadataManagerTest, anArtistIsFromAsManyCompilationsAsItHasAlbums) {
    library_.publish({{.title = "a", .artist = "One", .albumTitle = "A"},
                      {.title = "b", .artist = "One", .albumTitle = "A"},
                      {.title = "c", .artist = "Two", .albumTitle = "B"},
                      {.title = "d", .artist = "Two", .albumTitle = "C"},
                      {.title = "e", .artist = "Two", .albumTitle = "C"}});
    const auto artists = collections(MPMediaGrouping::artist);
    EXPECT_EQ(Manager::subtitleForMediaEntity(artists[0]), "From 1 compilation");
    EXPECT_EQ(Manager::subtitleForMediaEntity(artists[1]), "From 2 compilations");
}

TEST_F(RVMetadataManagerTest, alphabeticalListsShowWhatAKindIsKnownBy) {
    library_.publish({{.title = "a", .albumArtist = "Band", .albumTitle = "A", .year = 1999},
                      {.title = "b", .albumArtist = "Band", .albumTitle = "A", .year = 2001},
                      {.title = "c", .albumArtist = "Band", .albumTitle = "B", .composer = "W"},
                      {.title = "d", .albumArtist = "Other", .albumTitle = "C", .genre = "Jazz"},
                      {.title = "e", .albumArtist = "Else", .albumTitle = ""}},
                     {{.name = "Mix", .persistentID = 9, .songs = {1, 2}}});
    const auto text = [](const MPMediaEntity& entity) {
        return Manager::sortPropertyForMediaEntity(entity, RVSortTypeAlphabetical);
    };
    EXPECT_EQ(text(song("a")), NSAttributedString("A"));
    EXPECT_EQ(text(song("e")), NSAttributedString("Untitled"));
    const auto albums = collections(MPMediaGrouping::album);
    EXPECT_EQ(text(albums[0]), NSAttributedString("2001"));
    EXPECT_EQ(text(albums[1]), NSAttributedString("0"));
    EXPECT_EQ(text(first(MPMediaGrouping::artist)), NSAttributedString("5 songs"));
    const auto artists = collections(MPMediaGrouping::albumArtist);
    EXPECT_EQ(text(artists[0]), NSAttributedString("2 albums"));
    EXPECT_EQ(text(artists[1]), NSAttributedString("1 album"));
    const auto genres = collections(MPMediaGrouping::genre);
    EXPECT_EQ(text(genres[0]), NSAttributedString("2 artists"));
    EXPECT_EQ(text(genres[1]), NSAttributedString("1 artist"));
    EXPECT_EQ(text(first(MPMediaGrouping::composer)), NSAttributedString("—"));
    EXPECT_EQ(text(first(MPMediaGrouping::playlist)), NSAttributedString("—"));
    EXPECT_EQ(text(MPMediaEntity()), NSAttributedString("—"));
}

TEST_F(RVMetadataManagerTest, playsAreCountedWithTheirSymbol) {
    library_.publish({{.title = "a", .playCount = 12}, {.title = "b", .playCount = 30}},
                     {{.name = "Bare", .persistentID = 9}});
    EXPECT_EQ(property("a", RVSortTypePlayCount).runs(), (Runs{smallSymbol("play.fill"), " 12x"}));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(first(MPMediaGrouping::album), 1),
              withSymbol("play.fill", "42x"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(bare(), 1), withSymbol("play.fill", "0x"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(MPMediaEntity(), 1),
              withSymbol("play.fill", "—"));
}

TEST_F(RVMetadataManagerTest, theLastPlayIsThatOfTheLatestSong) {
    library_.publish({{.title = "a", .lastPlayed = instant("2024-01-05T12:00:00Z")},
                      {.title = "b", .lastPlayed = instant("2024-03-15T01:00:00Z")},
                      {.title = "c"}},
                     {{.name = "Never", .persistentID = 9, .songs = {3}}});
    EXPECT_EQ(property("a", RVSortTypeLastPlayed), withSymbol("play.fill", "Jan 5, 2024"));
    EXPECT_EQ(property("c", RVSortTypeLastPlayed), withSymbol("play.fill", "—"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(first(MPMediaGrouping::album), 2),
              withSymbol("play.fill", "Today"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(bare(), 2), withSymbol("play.fill", "—"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(MPMediaEntity(), 2),
              withSymbol("play.fill", "—"));
    EXPECT_EQ(Manager::lastPlayedDateForMediaEntity(song("a")), "Jan 5, 2024 at 12:00\u202FPM");
    EXPECT_EQ(Manager::lastPlayedDateForMediaEntity(first(MPMediaGrouping::album)),
              "Today at 1:00\u202F"
              "AM");
    EXPECT_EQ(Manager::lastPlayedDateForMediaEntity(song("c")), "—");
    EXPECT_EQ(Manager::lastPlayedDateForMediaEntity(bare()), "—");
    EXPECT_EQ(Manager::lastPlayedDateForMediaEntity(MPMediaEntity()), "—");
}

TEST_F(RVMetadataManagerTest, theTimeListenedIsPlaysTimesLength) {
    library_.publish({{.title = "a", .duration = 200, .playCount = 3},
                      {.title = "b", .duration = 100.5, .playCount = 2},
                      {.title = "c", .duration = 1000}},
                     {{.name = "Bare", .persistentID = 9}});
    EXPECT_EQ(property("a", RVSortTypeTimeListened), withSymbol("stopwatch", "10 min"));
    EXPECT_EQ(property("c", RVSortTypeTimeListened), withSymbol("stopwatch", "0 min"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(first(MPMediaGrouping::album), 3),
              withSymbol("stopwatch", "13 min"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(bare(), 3), withSymbol("stopwatch", "0 min"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(MPMediaEntity(), 3),
              withSymbol("stopwatch", "—"));
    defaults_->setObject("TimeListenedFormatExpanded", true);
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(first(MPMediaGrouping::album), 3),
              withSymbol("stopwatch", "13m 21s"));
}

TEST_F(RVMetadataManagerTest, theReferenceDateIsNoDateAdded) {
    library_.publish({{.title = "a", .added = instant("2024-01-05T12:00:00Z")},
                      {.title = "b", .added = NSDate()},
                      {.title = "c"},
                      {.title = "d", .added = instant("2001-01-01T00:00:00.500Z")}},
                     {{.name = "Unknown", .persistentID = 9, .songs = {2, 3}}});
    const char* symbol = "calendar.badge.plus";
    EXPECT_EQ(property("a", RVSortTypeDateAdded), withSymbol(symbol, "Jan 5, 2024"));
    EXPECT_EQ(property("b", RVSortTypeDateAdded), withSymbol(symbol, "—"));
    EXPECT_EQ(property("c", RVSortTypeDateAdded), withSymbol(symbol, "—"));
    EXPECT_EQ(property("d", RVSortTypeDateAdded), withSymbol(symbol, "Jan 1, 2001"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(first(MPMediaGrouping::album), 4),
              withSymbol(symbol, "Jan 5, 2024"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(bare(), 4), withSymbol(symbol, "—"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(MPMediaEntity(), 4), withSymbol(symbol, "—"));
}

TEST_F(RVMetadataManagerTest, theReferenceDateIsAReleaseDateAndAPlayLikeAnyOther) {
    library_.publish({{.title = "a", .lastPlayed = NSDate(), .released = NSDate()}});
    EXPECT_EQ(property("a", RVSortTypeReleaseDate), withSymbol("calendar", "Jan 1, 2001"));
    EXPECT_EQ(property("a", RVSortTypeLastPlayed), withSymbol("play.fill", "Jan 1, 2001"));
}

TEST_F(RVMetadataManagerTest, withoutAReleaseDateTheYearIsShownEvenZero) {
    library_.publish({{.title = "a", .released = instant("1999-09-09T12:00:00Z"), .year = 2010},
                      {.title = "b", .albumTitle = "B", .year = 2011},
                      {.title = "c", .albumTitle = "C"},
                      {.title = "d", .albumTitle = "B", .year = 2009}},
                     {{.name = "Bare", .persistentID = 9}});
    EXPECT_EQ(property("a", RVSortTypeReleaseDate), withSymbol("calendar", "Sep 9, 1999"));
    EXPECT_EQ(property("b", RVSortTypeReleaseDate), withSymbol("calendar", "2011"));
    EXPECT_EQ(property("c", RVSortTypeReleaseDate), withSymbol("calendar", "0"));
    const auto albums = collections(MPMediaGrouping::album);
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(albums[1], 5), withSymbol("calendar", "2011"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(albums[2], 5), withSymbol("calendar", "0"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(bare(), 5), withSymbol("calendar", "—"));
    EXPECT_EQ(Manager::sortPropertyForMediaEntity(MPMediaEntity(), 5), withSymbol("calendar", "—"));
}

TEST_F(RVMetadataManagerTest, anUnknownSortShowsTheMarkWithoutASymbol) {
    library_.publish({{.title = "a", .playCount = 3}});
    for (const RVSortType type : {RVSortType{6}, RVSortType{99}, ~RVSortType{0}}) {
        EXPECT_EQ(property("a", type), NSAttributedString("—"));
        EXPECT_EQ(Manager::sortPropertyForMediaEntity(first(MPMediaGrouping::album), type),
                  NSAttributedString("—"));
    }
}

TEST_F(RVMetadataManagerTest, onlyPlaysAndTimeListenedAreRanked) {
    EXPECT_TRUE(Manager::sortTypeIsRanked(RVSortTypePlayCount));
    EXPECT_TRUE(Manager::sortTypeIsRanked(RVSortTypeTimeListened));
    for (const RVSortType type : {0U, 2U, 4U, 5U, 6U, 7U, 1000U}) {
        EXPECT_FALSE(Manager::sortTypeIsRanked(type)) << type;
    }
    EXPECT_FALSE(Manager::sortTypeIsRanked(~RVSortType{0}));
}

TEST_F(RVMetadataManagerTest, theMarksOfASongComeInTheirOrder) {
    library_.publish({{.title = "all", .likedState = 2, .explicitContent = true},
                      {.title = "none", .likedState = 3, .cloud = true},
                      {.title = "liked", .likedState = 2, .cloud = true},
                      {.title = "here", .likedState = 1}});
    const auto symbol = [](const char* name) { return UIImage::systemImageNamed(name); };
    const auto marks = [&](const char* title) {
        return Manager::iconsForMediaItem(library_.song(title));
    };
    EXPECT_EQ(marks("all").runs(), (Runs{symbol("star.fill"), " ", symbol("e.square.fill"), " ",
                                         symbol("arrow.down.circle")}));
    EXPECT_EQ(marks("liked").runs(), (Runs{symbol("star.fill"), " "}));
    EXPECT_EQ(marks("here").runs(), (Runs{symbol("arrow.down.circle")}));
    EXPECT_TRUE(marks("none").isEmpty());
}

class PictureSource : public Source {
  public:
    std::string kind() const override { return "pictures"; }
    std::string location() const override { return "here"; }
    Result<std::shared_ptr<const MediaSnapshot>> read() override { return MediaSnapshot::empty(); }
    std::optional<NSData> artwork(std::uint64_t) const override { return picture; }
    std::optional<NSData> bestImageFromDisk(MPMediaGrouping, std::uint64_t) const override {
        return onDisk;
    }
    std::optional<NSData> picture;
    std::optional<NSData> onDisk;
};

// A song with no artwork anywhere gets the picture "item", a collection the picture "list".
TEST_F(RVMetadataManagerTest, withoutArtworkASongAndACollectionHaveAPictureOfTheirKind) {
    library_.publish({{.title = "a"}}, {{.name = "Bare", .persistentID = 9}});
    EXPECT_EQ(Manager::artworkForEntity(song("a")), UIImage::imageNamed("item"));
    EXPECT_EQ(Manager::artworkForEntity(first(MPMediaGrouping::album)),
              UIImage::imageNamed("list"));
    EXPECT_EQ(Manager::artworkForEntity(bare()), UIImage::imageNamed("list"));
    EXPECT_EQ(Manager::artworkForEntity(MPMediaEntity()), UIImage::imageNamed("item"));
    const auto source = std::make_shared<PictureSource>();
    source->picture = NSData{};
    library_.library().setSource(source);
    EXPECT_EQ(Manager::artworkForEntity(song("a")), UIImage::imageNamed("item"));
    EXPECT_EQ(Manager::artworkForEntity(first(MPMediaGrouping::album)),
              UIImage::imageNamed("list"));
}

TEST_F(RVMetadataManagerTest, aPictureThatIsOnDiskComesFirst) {
    library_.publish({{.title = "a"}});
    const auto source = std::make_shared<PictureSource>();
    source->picture = NSData{"asked for"};
    library_.library().setSource(source);
    const UIImage asked = UIImage::imageWithData(NSData{"asked for"});
    EXPECT_EQ(Manager::artworkForEntity(song("a")), asked);
    EXPECT_EQ(Manager::artworkForEntity(first(MPMediaGrouping::album)), asked);
    source->onDisk = NSData{"ready"};
    const UIImage ready = UIImage::imageWithData(NSData{"ready"});
    EXPECT_EQ(Manager::artworkForEntity(song("a")), ready);
    EXPECT_EQ(Manager::artworkForEntity(first(MPMediaGrouping::album)), ready);
}

TEST_F(RVMetadataManagerTest, aPictureCanBeGivenASize) {
    EXPECT_EQ(Manager::imageWithImage(UIImage::imageNamed("list"), {30, 40}),
              UIImage::imageNamed("list").imageOfSize({30, 40}));
}

}  // namespace
}  // namespace tavrion
