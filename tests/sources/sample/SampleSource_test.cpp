#include "sources/sample/SampleSource.h"

#include <chrono>
#include <fstream>
#include <future>
#include <set>

#include "sources/sample/SampleListener.h"
#include "tests/sources/sample/SampleFixture.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

class SampleSourceTest : public SampleTest {
  protected:
    std::unique_ptr<Source> sourceOf(const std::string& location) const {
        SourceRegistry registry;
        registerSampleSource(registry, stateFile());
        auto source = registry.create(SampleSource::kindName, location);
        EXPECT_TRUE(source) << source.error().localizedDescription;
        return std::move(source).value();
    }
    std::filesystem::path stateFile() const { return folder.path() / "sample.json"; }
    std::shared_ptr<const MediaSnapshot> read(std::uint32_t songs = 500) const {
        const auto snapshot = SampleSource(songs, stateFile()).read();
        EXPECT_TRUE(snapshot) << snapshot.error().localizedDescription;
        return snapshot.value();
    }

    const TestFolder folder;
};

bool areByteEqual(const MediaSnapshot& a, const MediaSnapshot& b) {
    const auto bytesOf = [](const auto& span) {
        return std::string_view(reinterpret_cast<const char*>(span.data()), span.size_bytes());
    };
    return a.parts().texts == b.parts().texts && bytesOf(a.songs()) == bytesOf(b.songs()) &&
           bytesOf(a.playlists()) == bytesOf(b.playlists()) &&
           bytesOf(a.parts().playlistSongs) == bytesOf(b.parts().playlistSongs);
}

TEST_F(SampleSourceTest, theSameSeedSizeAndInstantGiveTheSameLibrary) {
    const auto first = read();
    clock.advance(100'000);
    const auto later = read();
    clock.advance(-100'000);
    EXPECT_TRUE(areByteEqual(*first, *read()));
    EXPECT_FALSE(areByteEqual(*first, *later));
    EXPECT_FALSE(areByteEqual(*first, *read(501)));
    EXPECT_FALSE(areByteEqual(*first, *SampleSource(500, stateFile(), 2).read().value()));
    EXPECT_FALSE(std::filesystem::exists(stateFile())) << "nothing is kept of a reading";
}

TEST_F(SampleSourceTest, theNumberOfSongsIsTheLocation) {
    EXPECT_EQ(sourceOf("")->location(), "3000");
    EXPECT_EQ(sourceOf("12")->location(), "12");
    EXPECT_EQ(sourceOf("")->kind(), "sample");
    SourceRegistry registry;
    registerSampleSource(registry, stateFile());
    EXPECT_FALSE(registry.kindNamed("sample")->locationIsPath);
    for (const char* const wrong :
         {"0", "-1", "many", "12x", " 12", "2000001", "1e3", "12.5", "99999999999999999999"}) {
        const auto source = registry.create("sample", wrong);
        ASSERT_FALSE(source) << wrong;
        EXPECT_NE(source.error().localizedDescription.find(wrong), std::string::npos);
        EXPECT_NE(source.error().localizedDescription.find("2000000"), std::string::npos);
    }
}

TEST_F(SampleSourceTest, canDoEverything) {
    const auto source = sourceOf("10");
    EXPECT_TRUE(source->capabilities().canWriteLikes);
    EXPECT_TRUE(source->capabilities().canWritePlaylists);
    EXPECT_TRUE(source->capabilities().canPlay);
    EXPECT_NE(source->player(), nullptr);
}

TEST_F(SampleSourceTest, noticesWhatTheUserChanges) {
    const auto source = sourceOf("10");
    std::promise<void> changed;
    auto watching = source->watch([&] { changed.set_value(); });
    ASSERT_TRUE(watching.ok());
    const SampleCatalogue catalogue(SampleSource::usualSeed, 10);
    ASSERT_TRUE(sourceOf("10")->setLiked(catalogue.persistentIDOfSong(0), 2));
    EXPECT_EQ(changed.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

TEST_F(SampleSourceTest, countsAndDatesAreThoseOfTheListenerInTheCurrentZone) {
    const auto snapshot = read();
    const SampleCatalogue catalogue(SampleSource::usualSeed, 500);
    const std::vector<SampleCounts> counts =
        SampleListener(catalogue, region.timeZone()).countsAt(clock.now());
    std::size_t library = 0;
    std::size_t streamed = 0;
    std::uint64_t plays = 0;
    for (const SongRecord& record : snapshot->songs()) {
        const std::uint32_t song = catalogue.songOfPersistentID(record.persistentID).value();
        const std::uint32_t position =
            snapshot->positionOfPersistentID(record.persistentID).value();
        EXPECT_EQ(record.playCount, counts[song].plays);
        EXPECT_EQ(record.skipCount, counts[song].skips);
        EXPECT_EQ(snapshot->date(position, SongDate::lastPlayed), counts[song].lastPlayed);
        EXPECT_EQ(snapshot->date(position, SongDate::lastSkipped), counts[song].lastSkipped);
        EXPECT_LE(*snapshot->date(position, SongDate::added), clock.now());
        EXPECT_EQ(record.playbackDuration, catalogue.durationOfSong(song));
        plays += record.playCount;
        ((record.flags & SongRecord::outsideLibrary) == 0 ? library : streamed) += 1;
    }
    EXPECT_EQ(library, 500U);
    EXPECT_EQ(streamed, 31U) << "one every other week since the third of January 2025";
    EXPECT_GT(plays, 50'000U);
    EXPECT_EQ(snapshot->droppedSongCount(), 0U);
}

TEST_F(SampleSourceTest, aSongIsNotThereBeforeItWasAdded) {
    const auto now = byPersistentID(*read());
    const SampleCatalogue catalogue(SampleSource::usualSeed, 500);
    const std::uint32_t last = 499;
    const std::uint64_t persistentID = catalogue.persistentIDOfSong(last);
    EXPECT_TRUE(now.contains(persistentID));
    const NSDate added = catalogue.dateAddedOfSong(last);
    clock.set(added.dateByAddingTimeInterval(-1));
    EXPECT_FALSE(read()->positionOfPersistentID(persistentID));
    clock.set(added);
    EXPECT_TRUE(read()->positionOfPersistentID(persistentID));
    clock.set(instant("2004-01-01T00:00:00Z"));
    EXPECT_TRUE(read()->songs().empty());
}

TEST_F(SampleSourceTest, playlistsHaveAFolderAHiddenOneAndAnEmptyOne) {
    const auto snapshot = read();
    std::size_t folders = 0;
    std::size_t children = 0;
    std::size_t hidden = 0;
    std::size_t empty = 0;
    std::set<std::uint64_t> identifiers{0};
    std::uint64_t folderID = 0;
    for (const PlaylistRecord& playlist : snapshot->playlists()) {
        EXPECT_TRUE(identifiers.insert(playlist.persistentID).second);
        const bool isFolder = (playlist.flags & PlaylistRecord::folder) != 0;
        folderID = isFolder ? playlist.persistentID : folderID;
        folders += isFolder ? 1 : 0;
        hidden += (playlist.flags & PlaylistRecord::hidden) != 0 ? 1 : 0;
        empty += !isFolder && playlist.songCount == 0 ? 1 : 0;
        if (playlist.parentPersistentID != 0) {
            EXPECT_EQ(playlist.parentPersistentID, folderID);
            ++children;
        }
    }
    EXPECT_EQ(snapshot->playlists().size(), 9U);
    EXPECT_EQ(folders, 1U);
    EXPECT_EQ(children, 2U);
    EXPECT_EQ(hidden, 1U);
    EXPECT_EQ(empty, 1U);
}

TEST_F(SampleSourceTest, likesAndPlaylistsAreThereInTheNextProcess) {
    const SampleCatalogue catalogue(SampleSource::usualSeed, 500);
    const std::uint64_t song = catalogue.persistentIDOfSong(300);
    const std::uint64_t other = catalogue.persistentIDOfSong(301);
    std::uint64_t playlist = 0;
    {
        const auto source = sourceOf("500");
        ASSERT_TRUE(source->setLiked(song, 2));
        ASSERT_TRUE(source->setLiked(other, 2));
        ASSERT_TRUE(source->setLiked(other, 1));
        const auto made = source->createPlaylist("Mine", std::vector<std::uint64_t>{other});
        ASSERT_TRUE(made);
        playlist = made.value();
        const auto second = source->createPlaylist("Another", {});
        ASSERT_TRUE(second);
        EXPECT_NE(second.value(), playlist);
        ASSERT_TRUE(source->addToPlaylist(playlist, std::vector<std::uint64_t>{song, 12345}));
    }
    const auto snapshot = read();
    const auto songs = byPersistentID(*snapshot);
    EXPECT_EQ(songs.at(song).likedState, 2U);
    EXPECT_EQ(songs.at(other).likedState, 1U);
    EXPECT_EQ(snapshot->playlists().size(), 11U);
    const auto found =
        std::find_if(snapshot->playlists().begin(), snapshot->playlists().end(),
                     [&](const PlaylistRecord& record) { return record.persistentID == playlist; });
    ASSERT_NE(found, snapshot->playlists().end());
    EXPECT_EQ(snapshot->text(found->name), "Mine");
    const auto positions = snapshot->songsOfPlaylist(*found);
    ASSERT_EQ(positions.size(), 2U) << "a song that is not there is left out";
    EXPECT_EQ(snapshot->songs()[positions[0]].persistentID, other);
    EXPECT_EQ(snapshot->songs()[positions[1]].persistentID, song);
    EXPECT_FALSE(sourceOf("500")->addToPlaylist(99, {}));
}

TEST_F(SampleSourceTest, whatThePlayerPlaysCountsAtALaterReading) {
    const SampleCatalogue catalogue(SampleSource::usualSeed, 500);
    const std::uint64_t song = catalogue.persistentIDOfSong(300);
    const std::uint64_t left = catalogue.persistentIDOfSong(301);
    // The listener is asleep.
    clock.set(instant("2026-03-02T03:00:00Z"));
    const auto before = byPersistentID(*read());
    const std::uint64_t plays = before.at(song).playCount;
    const std::uint64_t skips = before.at(left).skipCount;
    SampleSource source(500, stateFile());
    ASSERT_TRUE(source.samplePlayer().setQueue({left, song}));
    ASSERT_TRUE(source.samplePlayer().play());
    clock.advance(20);
    ASSERT_TRUE(source.samplePlayer().skipToNextItem());
    const NSDate skipped = clock.now();
    const NSDate end = skipped.dateByAddingTimeInterval(catalogue.durationOfSong(300));
    clock.set(end.dateByAddingTimeInterval(-1));
    EXPECT_EQ(byPersistentID(*read()).at(song).playCount, plays);
    clock.set(end);
    const auto snapshot = read();
    const auto after = byPersistentID(*snapshot);
    EXPECT_EQ(after.at(song).playCount, plays + 1);
    EXPECT_EQ(snapshot->date(*snapshot->positionOfPersistentID(song), SongDate::lastPlayed), end);
    EXPECT_EQ(after.at(left).skipCount, skips + 1);
    EXPECT_EQ(snapshot->date(*snapshot->positionOfPersistentID(left), SongDate::lastSkipped),
              skipped);
    // Brought into the file, it is the same, and an earlier instant does not know of it.
    ASSERT_TRUE(source.samplePlayer().pause());
    EXPECT_TRUE(areByteEqual(*read(), *snapshot));
    clock.set(instant("2026-03-02T03:00:00Z"));
    EXPECT_EQ(byPersistentID(*read()).at(song).playCount, plays);
    EXPECT_EQ(byPersistentID(*read()).at(left).skipCount, skips);
}

TEST_F(SampleSourceTest, aBrokenFileIsReportedInOneLineAndStays) {
    std::ofstream(stateFile()) << "not JSON";
    const auto source = sourceOf("50");
    const auto snapshot = source->read();
    ASSERT_FALSE(snapshot);
    EXPECT_NE(snapshot.error().localizedDescription.find(stateFile().string()), std::string::npos);
    EXPECT_EQ(snapshot.error().localizedDescription.find('\n'), std::string::npos);
    EXPECT_FALSE(source->setLiked(1, 2));
    EXPECT_FALSE(source->createPlaylist("Mine", {}));
    EXPECT_FALSE(source->addToPlaylist(1, {}));
    EXPECT_EQ(std::filesystem::file_size(stateFile()), 8U);
}

TEST_F(SampleSourceTest, aLibraryOfAHundredThousandSongs) {
    const auto snapshot = read(100'000);
    EXPECT_EQ(snapshot->songs().size(), 100'031U);
    EXPECT_EQ(snapshot->droppedSongCount(), 0U);
}

TEST_F(SampleSourceTest, everySmallSizeCanBeRead) {
    for (std::uint32_t songs = 1; songs < 40; ++songs) {
        EXPECT_EQ(read(songs)->songs().size(), songs + 31U);
    }
}

}  // namespace
}  // namespace tavrion
