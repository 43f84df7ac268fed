// The edges of an entity's page, one test each.
#include <gtest/gtest.h>

#include "kit/RVAlertManager.h"
#include "library/EntityLists.h"
#include "library/EntityTexts.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;
using Sections = std::vector<EntitySection>;

class EntityEdges : public testing::Test {
  protected:
    static MPMediaEntity first(MPMediaQuery query, MPMediaGrouping grouping) {
        query.setGroupingType(grouping);
        return query.collections().at(0);
    }
    static MPMediaEntity first(MPMediaGrouping grouping) {
        return first(MPMediaQuery::songsQuery(), grouping);
    }
    static Names names(const std::vector<MPMediaEntity>& entities) {
        Names found;
        for (const MPMediaEntity& entity : entities) {
            found.push_back(RVMetadataManager::titleForMediaEntity(entity, std::nullopt)
                                ->textWithoutAttachments());
        }
        return found;
    }
    static EntityPage built(const MPMediaEntity& entity) {
        return EntityLists(entity).fullBuild(EntitySections::sortForSection);
    }
    static Names builtNames(const MPMediaEntity& entity,
                            EntitySection section = EntitySection::songs) {
        return names(built(entity).list(section)->rows.entities());
    }
    static Names reloaded(const MPMediaEntity& entity, RVSortType type, bool reverse) {
        return names(EntityLists(entity)
                         .reloadedList(EntitySection::songs, {type, reverse})
                         .rows.entities());
    }
    /// In front of the rows of the page's song list, under the stored sort.
    static Names ranks(const MPMediaEntity& entity) {
        Names found;
        const EntityPage page = built(entity);
        const EntityRows& songs = page.list(EntitySection::songs)->rows;
        for (std::size_t place = 0; place < songs.size(); ++place) {
            const auto number = songs.number(place);
            found.push_back(number ? std::to_string(*number) : "");
        }
        return found;
    }
    static void choose(EntitySection section, RVSortType type, bool reverse = false) {
        EntitySections::storeSort({type, reverse}, section);
    }
    void publishAlbum() {
        library_.publish(
            {{.title = "Zebra", .duration = 10, .playCount = 1, .track = 4, .disc = 1},
             {.title = "Mole", .duration = 10, .playCount = 3, .track = 7, .disc = 1},
             {.title = "Apple", .duration = 10, .playCount = 2, .track = 1, .disc = 2}},
            {{.name = "Mix", .persistentID = 9, .songs = {2, 1, 3}}});
    }

    ManualClock clock_{NSDate::dateWithTimeIntervalSinceReferenceDate(794059200)};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_;
};

constexpr MPMediaGrouping album = MPMediaGrouping::album;
constexpr MPMediaGrouping genre = MPMediaGrouping::genre;
constexpr MPMediaGrouping albumArtist = MPMediaGrouping::albumArtist;
constexpr MPMediaGrouping playlist = MPMediaGrouping::playlist;

TEST_F(EntityEdges, aSongHasNoLists) {
    publishAlbum();
    const EntityPage page = built(library_.song("Mole"));
    EXPECT_EQ(page.sections(),
              (Sections{EntitySection::statistics, EntitySection::recentActivity}));
    EXPECT_EQ(page.statistics.size(), 5U);
    EXPECT_TRUE(
        EntityLists(library_.song("Mole")).reloadedList(EntitySection::songs, {}).rows.isEmpty());
}

TEST_F(EntityEdges, eachKindHasItsSectionsInTheirOrder) {
    publishAlbum();
    const auto lists = [](const MPMediaEntity& entity) {
        Sections sections = built(entity).sections();
        sections.erase(sections.begin(), sections.begin() + 2);
        return sections;
    };
    EXPECT_EQ(lists(first(album)), (Sections{EntitySection::songs}));
    EXPECT_EQ(lists(first(playlist)), (Sections{EntitySection::songs}));
    EXPECT_EQ(lists(first(genre)), (Sections{EntitySection::artists, EntitySection::songs}));
    EXPECT_EQ(lists(first(albumArtist)), (Sections{EntitySection::albums, EntitySection::songs}));
    EXPECT_EQ(lists(first(MPMediaGrouping::artist)),
              (Sections{EntitySection::albums, EntitySection::songs}));
}

TEST_F(EntityEdges, anAlbumInTrackOrderShowsTrackNumbersWhereOthersShowRanks) {
    publishAlbum();
    EXPECT_EQ(builtNames(first(album)), (Names{"Zebra", "Mole", "Apple"}));
    EXPECT_EQ(ranks(first(album)), (Names{"4", "7", "1"}));
    EXPECT_EQ(ranks(first(albumArtist)), (Names{"", "", ""}));
}

TEST_F(EntityEdges, anAlbumByTimeListenedShowsRanks) {
    publishAlbum();
    choose(EntitySection::songs, RVSortTypeTimeListened);
    EXPECT_EQ(builtNames(first(album)), (Names{"Mole", "Apple", "Zebra"}));
    EXPECT_EQ(ranks(first(album)), (Names{"1", "2", "3"}));
    choose(EntitySection::songs, RVSortTypeLastPlayed);
    EXPECT_EQ(ranks(first(album)), (Names{"", "", ""}));
}

TEST_F(EntityEdges, anAlbumReversedIsReadBackwardsUntilItIsReloaded) {
    publishAlbum();
    choose(EntitySection::songs, RVSortTypeAlphabetical, true);
    EXPECT_EQ(builtNames(first(album)), (Names{"Apple", "Mole", "Zebra"}));
    EXPECT_EQ(reloaded(first(album), RVSortTypeAlphabetical, true),
              (Names{"Zebra", "Mole", "Apple"}));
    EXPECT_EQ(reloaded(first(album), RVSortTypeAlphabetical, false),
              (Names{"Zebra", "Mole", "Apple"}));
}

TEST_F(EntityEdges, anAlbumWithoutTrackNumbersReversedIsItsMirror) {
    library_.publish({{.title = "Mole"}, {.title = "Apple"}, {.title = "Zebra"}});
    EXPECT_EQ(builtNames(first(album)), (Names{"Apple", "Mole", "Zebra"}));
    choose(EntitySection::songs, RVSortTypeAlphabetical, true);
    EXPECT_EQ(builtNames(first(album)), (Names{"Zebra", "Mole", "Apple"}));
}

TEST_F(EntityEdges, anAlbumsSongsOfEqualCountsStayInTrackOrder) {
    publishAlbum();
    choose(EntitySection::songs, RVSortTypeLastPlayed);
    EXPECT_EQ(builtNames(first(album)), (Names{"Zebra", "Mole", "Apple"}));
    choose(EntitySection::songs, RVSortTypeLastPlayed, true);
    EXPECT_EQ(builtNames(first(album)), (Names{"Zebra", "Mole", "Apple"}));
    EXPECT_EQ(reloaded(first(album), RVSortTypeDateAdded, false),
              (Names{"Zebra", "Mole", "Apple"}));
}

TEST_F(EntityEdges, aPlaylistKeepsItsOrderUntilItIsReloaded) {
    publishAlbum();
    const MPMediaEntity mix = first(MPMediaQuery::playlistsQuery(), playlist);
    EXPECT_EQ(builtNames(mix), (Names{"Mole", "Zebra", "Apple"}));
    EXPECT_EQ(reloaded(mix, RVSortTypeAlphabetical, false), (Names{"Apple", "Mole", "Zebra"}));
    EXPECT_EQ(reloaded(mix, RVSortTypeAlphabetical, true), (Names{"Zebra", "Mole", "Apple"}));
    EXPECT_EQ(ranks(mix), (Names{"", "", ""}));
}

TEST_F(EntityEdges, anArtistsSongsComeByTitleAndReverseCountsOnlyWhenReloaded) {
    library_.publish({{.title = "10", .artist = "A"},
                      {.title = "\"b\"", .artist = "A"},
                      {.title = "Zed", .artist = "A", .sortTitle = "a"}});
    choose(EntitySection::songs, RVSortTypeAlphabetical, true);
    EXPECT_EQ(builtNames(first(albumArtist)), (Names{"Zed", "\"b\"", "10"}));
    EXPECT_EQ(reloaded(first(albumArtist), RVSortTypeAlphabetical, true),
              (Names{"10", "\"b\"", "Zed"}));
    EXPECT_EQ(reloaded(first(albumArtist), RVSortTypeAlphabetical, false),
              (Names{"Zed", "\"b\"", "10"}));
}

TEST_F(EntityEdges, eachKindOfListHasItsOwnSortForAllPages) {
    library_.publish({{.title = "a", .artist = "A", .albumTitle = "1", .playCount = 1},
                      {.title = "b", .artist = "A", .albumTitle = "2", .playCount = 5},
                      {.title = "c", .artist = "B", .albumTitle = "3", .playCount = 9}});
    choose(EntitySection::albums, RVSortTypePlayCount);
    EXPECT_EQ(builtNames(first(albumArtist), EntitySection::albums), (Names{"2", "1"}));
    EXPECT_EQ(builtNames(first(albumArtist)), (Names{"a", "b"}));
    EXPECT_EQ(builtNames(first(genre), EntitySection::artists), (Names{"A", "B"}));
    choose(EntitySection::artists, RVSortTypeAlphabetical, true);
    EXPECT_EQ(builtNames(first(genre), EntitySection::artists), (Names{"B", "A"}));
    EXPECT_EQ(RVAlertManager::storedValueForKey("album.sortType"), 1U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("artist.reverse"), 1U);
}

TEST_F(EntityEdges, aGenresSplitLeavesItsFilterOnTheSongs) {
    library_.publish({{.title = "own", .artist = "A", .genre = "Rock"},
                      {.title = "track",
                       .artist = "B",
                       .albumArtist = "Various",
                       .genre = "Rock",
                       .compilation = true},
                      {.title = "far",
                       .artist = "C",
                       .albumArtist = "Various",
                       .genre = "Tango",
                       .compilation = true}});
    defaults_->setObject("BrowseShouldSplitCompilations", true);
    const MPMediaEntity rock = first(genre);
    // The artists of compilations come from the whole library.
    EXPECT_EQ(builtNames(rock, EntitySection::artists), (Names{"A", "B", "C"}));
    EXPECT_EQ(builtNames(rock), (Names{"own"}));
    EntityLists lists(rock);
    EXPECT_EQ(names(lists.reloadedList(EntitySection::songs, {}).rows.entities()),
              (Names{"own", "track"}))
        << "the filter is not there before the artists were listed";
    lists.reloadedList(EntitySection::artists, {});
    EXPECT_EQ(names(lists.reloadedList(EntitySection::songs, {}).rows.entities()), (Names{"own"}));
}

TEST_F(EntityEdges, anEmptyListIsShownAtFirstAndLeavesThePageAsItIsLater) {
    library_.publish({}, {{.name = "Empty", .persistentID = 1}});
    const MPMediaEntity empty = first(MPMediaQuery::playlistsQuery(), playlist);
    EntityPage page = built(empty);
    ASSERT_NE(page.list(EntitySection::songs), nullptr);
    EXPECT_TRUE(page.list(EntitySection::songs)->rows.isEmpty());
    page.lists.clear();
    page.setList({EntitySection::songs, {}, {}});
    EXPECT_TRUE(page.lists.empty());
}

TEST_F(EntityEdges, aReloadedListTakesThePlaceOfTheOldOneOrStandsAtTheEnd) {
    publishAlbum();
    const MPMediaEntity song = library_.song("Mole");
    EntityPage page = built(first(albumArtist));
    page.setList({EntitySection::albums, {}, {{song}, RVSortTypeAlphabetical}});
    EXPECT_EQ(page.lists[0].section, EntitySection::albums);
    EXPECT_EQ(page.lists[0].rows.size(), 1U);
    EXPECT_EQ(page.lists[1].rows.size(), 3U);
    page.setList({EntitySection::artists, {}, {{song}, RVSortTypeAlphabetical}});
    EXPECT_EQ(page.lists.back().section, EntitySection::artists);
}

TEST_F(EntityEdges, titlesOfSectionsAndSorts) {
    publishAlbum();
    EXPECT_EQ(EntitySections::titleForSection(EntitySection::statistics), "");
    EXPECT_EQ(EntitySections::titleForSection(EntitySection::recentActivity), "Recent Activity");
    EXPECT_EQ(EntitySections::titleForSection(EntitySection::artists), "Artists");
    EXPECT_EQ(EntitySections::titleForSection(EntitySection::albums), "Albums");
    EXPECT_EQ(EntitySections::titleForSection(EntitySection::songs), "Songs");
    const Names sorts{"Track Order",   "Play Count", "Last Played",
                      "Time Listened", "Date Added", "Release Date"};
    EXPECT_EQ(EntitySections::sortTitlesForSection(EntitySection::songs, first(album)), sorts);
    // It does not look at its section.
    EXPECT_EQ(EntitySections::sortTitlesForSection(EntitySection::artists,
                                                   first(MPMediaQuery::playlistsQuery(), playlist)),
              sorts);
    EXPECT_EQ(EntitySections::sortTitlesForSection(EntitySection::songs, first(genre))[0],
              "Alphabetical");
}

TEST_F(EntityEdges, choosingASortAgainTurnsItRound) {
    EXPECT_EQ(EntitySections::chosenSort({2, false}, 2), (EntitySort{2, true}));
    EXPECT_EQ(EntitySections::chosenSort({2, true}, 2), (EntitySort{2, false}));
    EXPECT_EQ(EntitySections::chosenSort({2, true}, 3), (EntitySort{3, false}));
}

TEST_F(EntityEdges, theTopOfASongNamesItsAlbumArtist) {
    library_.publish({{.title = "Sky",
                       .artist = "Guest",
                       .albumArtist = "Band",
                       .duration = 61,
                       .likedState = 2,
                       .explicitContent = true,
                       .cloud = true}});
    const EntityHeader song = EntityTexts::header(library_.song("Sky"));
    EXPECT_EQ(song.title, "Sky");
    EXPECT_EQ(song.subtitle, "Band");
    EXPECT_EQ(song.duration, "1:01");
    EXPECT_TRUE(song.linksToArtist);
    ASSERT_TRUE(song.icons);
    EXPECT_FALSE(song.icons->isEmpty());
    const EntityHeader onAlbum = EntityTexts::header(first(album));
    EXPECT_EQ(onAlbum.subtitle, "Band");
    EXPECT_TRUE(onAlbum.linksToArtist);
    EXPECT_FALSE(onAlbum.icons);
    const EntityHeader artist = EntityTexts::header(first(albumArtist));
    EXPECT_EQ(artist.subtitle, "1 song");
    EXPECT_FALSE(artist.linksToArtist);
}

TEST_F(EntityEdges, aSongOfACompilationLeadsToTheCompilationsArtist) {
    library_.publish(
        {{.title = "a", .artist = "Guest", .albumArtist = "Various", .compilation = true},
         {.title = "b", .artist = "Other", .albumArtist = "Various", .compilation = true}});
    for (const bool splits : {false, true}) {
        defaults_->setObject("BrowseShouldSplitCompilations", splits);
        const auto artist = EntityTexts::artistForEntity(library_.song("a"));
        ASSERT_TRUE(artist);
        EXPECT_EQ(artist->groupingType(), albumArtist);
        EXPECT_EQ(names({*artist}), (Names{"Various"}));
        EXPECT_EQ(artist->count(), 2U);
    }
    EXPECT_FALSE(EntityTexts::artistForEntity(MPMediaEntity()));
}

TEST_F(EntityEdges, theSortButtonSaysWhatIsChosenAlsoBeforeTheListIsThere) {
    publishAlbum();
    choose(EntitySection::songs, RVSortTypeAlphabetical, true);
    EntityPage page = built(first(album));
    const NSAttributedString title = page.sortButtonTitle(EntitySection::songs);
    EXPECT_EQ(title.textWithoutAttachments(), "Track Order");
    EXPECT_EQ(std::get<UIImage>(title.runs()[0]).name(), "chevron.down.square");
    page.setSort(EntitySection::songs, {RVSortTypeDateAdded, false});
    page.setSort(EntitySection::artists, {RVSortTypeDateAdded, false});
    EXPECT_EQ(page.sortButtonTitle(EntitySection::songs).textWithoutAttachments(), "Date Added");
    EXPECT_EQ(page.sections().size(), 3U);
    EXPECT_EQ(page.list(EntitySection::songs)->rows.number(0), 1U) << "the rows follow later";
}

}  // namespace
}  // namespace tavrion
