#include "sources/sample/SamplePlayer.h"

#include <algorithm>

#include "platform/testing/MediaLibraryFixture.h"
#include "sources/sample/SampleMusicPlayer.h"
#include "tests/sources/sample/SampleFixture.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

using PlaybackState = SamplePlayer::PlaybackState;

class SamplePlayerTest : public SampleTest {
  protected:
    std::uint64_t idOf(std::uint32_t song) const { return catalogue.persistentIDOfSong(song); }
    double durationOf(std::uint32_t song) const { return catalogue.durationOfSong(song); }
    /// As another process would find it.
    SamplePlayer::Status status() const { return SamplePlayer(file, catalogue).status().value(); }
    std::vector<SampleEnding> endings() const {
        const SampleState state = file.read().value();
        std::vector<SampleEnding> all = state.endings;
        const SampleProgress progress = progressOf(state.queue, catalogue, clock.now());
        all.insert(all.end(), progress.endings.begin(), progress.endings.end());
        return all;
    }
    void setQueue(const std::vector<std::uint64_t>& songs) {
        ASSERT_TRUE(SamplePlayer(file, catalogue).setQueue(songs));
    }
    void play() { ASSERT_TRUE(SamplePlayer(file, catalogue).play()); }
    void pause() { ASSERT_TRUE(SamplePlayer(file, catalogue).pause()); }
    void skip() { ASSERT_TRUE(SamplePlayer(file, catalogue).skipToNextItem()); }

    const TestFolder folder;
    const SampleCatalogue catalogue{1, 100};
    const SampleStateFile file{folder.path() / "state.json"};
    // Songs that are in the library at the fixture's instant.
    static constexpr std::uint32_t first = 40;
    static constexpr std::uint32_t second = 50;
    static constexpr std::uint32_t third = 60;
};

TEST_F(SamplePlayerTest, isStoppedUntilSomethingIsQueuedAndWaitsToBePlayed) {
    EXPECT_EQ(status().state, PlaybackState::stopped);
    EXPECT_EQ(status().song, std::nullopt);
    play();
    EXPECT_EQ(status().state, PlaybackState::stopped);
    setQueue({idOf(first), idOf(second)});
    EXPECT_EQ(status().state, PlaybackState::paused);
    EXPECT_EQ(status().song, idOf(first));
    clock.advance(1000);
    EXPECT_EQ(status().position, 0);
    EXPECT_TRUE(endings().empty());
}

TEST_F(SamplePlayerTest, playsByTheClockAlone) {
    setQueue({idOf(first), idOf(second), idOf(third)});
    play();
    const NSDate start = clock.now();
    clock.advance(30);
    EXPECT_EQ(status().state, PlaybackState::playing);
    EXPECT_EQ(status().song, idOf(first));
    EXPECT_DOUBLE_EQ(status().position, 30);
    EXPECT_TRUE(endings().empty());
    clock.advance(durationOf(first));
    EXPECT_EQ(status().song, idOf(second));
    EXPECT_NEAR(status().position, 30, 1e-6);
    const NSDate firstEnd = start.dateByAddingTimeInterval(durationOf(first));
    EXPECT_EQ(endings(), (std::vector<SampleEnding>{{idOf(first), firstEnd, true}}));
    clock.advance(86400);
    EXPECT_EQ(status().state, PlaybackState::stopped);
    const NSDate secondEnd = firstEnd.dateByAddingTimeInterval(durationOf(second));
    const NSDate thirdEnd = secondEnd.dateByAddingTimeInterval(durationOf(third));
    EXPECT_EQ(endings(), (std::vector<SampleEnding>{{idOf(first), firstEnd, true},
                                                    {idOf(second), secondEnd, true},
                                                    {idOf(third), thirdEnd, true}}));
}

TEST_F(SamplePlayerTest, aSongHasEndedAtTheVeryInstantOfItsEnd) {
    setQueue({idOf(first), idOf(second)});
    play();
    const NSDate end = clock.now().dateByAddingTimeInterval(durationOf(first));
    clock.set(end.dateByAddingTimeInterval(-0.001));
    EXPECT_EQ(status().song, idOf(first));
    EXPECT_TRUE(endings().empty());
    clock.set(end);
    EXPECT_EQ(status().song, idOf(second));
    EXPECT_EQ(status().position, 0);
    EXPECT_EQ(endings().size(), 1U);
}

TEST_F(SamplePlayerTest, aPauseStandsStillAndGoesOnWhereItWas) {
    setQueue({idOf(first)});
    play();
    clock.advance(20);
    pause();
    clock.advance(5000);
    EXPECT_EQ(status().state, PlaybackState::paused);
    EXPECT_DOUBLE_EQ(status().position, 20);
    play();
    const NSDate resumed = clock.now();
    clock.advance(durationOf(first));
    EXPECT_EQ(status().state, PlaybackState::stopped);
    ASSERT_EQ(endings().size(), 1U);
    EXPECT_NEAR(endings()[0].date.timeIntervalSinceDate(resumed), durationOf(first) - 20, 1e-6);
}

TEST_F(SamplePlayerTest, playingWhatPlaysChangesNothing) {
    setQueue({idOf(first)});
    play();
    clock.advance(20);
    play();
    clock.advance(20);
    EXPECT_NEAR(status().position, 40, 1e-6);
}

TEST_F(SamplePlayerTest, skippingCountsTheSongAsLeft) {
    setQueue({idOf(first), idOf(second)});
    play();
    clock.advance(10);
    skip();
    EXPECT_EQ(status().song, idOf(second));
    EXPECT_EQ(status().state, PlaybackState::playing);
    EXPECT_EQ(endings(), (std::vector<SampleEnding>{{idOf(first), clock.now(), false}}));
    clock.advance(5);
    EXPECT_NEAR(status().position, 5, 1e-6);
    skip();
    EXPECT_EQ(status().state, PlaybackState::stopped);
    skip();
    EXPECT_EQ(endings().size(), 2U);
}

TEST_F(SamplePlayerTest, aPausedSongIsSkippedWithoutPlayingTheNext) {
    setQueue({idOf(first), idOf(second)});
    skip();
    EXPECT_EQ(status().state, PlaybackState::paused);
    EXPECT_EQ(status().song, idOf(second));
}

TEST_F(SamplePlayerTest, aNewQueueKeepsWhatWasHeard) {
    setQueue({idOf(first), idOf(second)});
    play();
    clock.advance(durationOf(first) + 1);
    setQueue({idOf(third)});
    EXPECT_EQ(status().state, PlaybackState::paused);
    EXPECT_EQ(status().song, idOf(third));
    ASSERT_EQ(endings().size(), 1U);
    EXPECT_EQ(endings()[0].song, idOf(first));
}

TEST_F(SamplePlayerTest, theSameSongMayBeQueuedAgain) {
    setQueue({idOf(first), idOf(first)});
    play();
    clock.advance(3 * durationOf(first));
    EXPECT_EQ(endings().size(), 2U);
}

TEST_F(SamplePlayerTest, songsThatAreNotThereAreLeftOut) {
    setQueue({12345, idOf(first), idOf(catalogue.songCount() - 1)});
    EXPECT_EQ(file.read().value().queue.songs, std::vector<std::uint64_t>{idOf(first)});
    setQueue({12345});
    EXPECT_EQ(status().state, PlaybackState::stopped);
}

TEST_F(SamplePlayerTest, songsOfAnotherLibraryInTheQueueArePassedOver) {
    ASSERT_TRUE(file.change([&](SampleState& state) {
        state.queue.songs = {12345, idOf(first), 777};
        state.queue.playingSince = clock.now();
    }));
    clock.advance(durationOf(first) + 5);
    EXPECT_EQ(status().state, PlaybackState::stopped);
    EXPECT_EQ(endings().size(), 1U);
}

TEST_F(SamplePlayerTest, beforeItBeganToPlayItStandsWhereItWas) {
    setQueue({idOf(first)});
    play();
    clock.advance(-3600);
    EXPECT_EQ(status().state, PlaybackState::playing);
    EXPECT_EQ(status().position, 0);
    EXPECT_TRUE(endings().empty());
}

TEST_F(SamplePlayerTest, whatIsKeptIsTheSameHoweverOftenItIsLookedAt) {
    setQueue({idOf(first), idOf(second), idOf(third)});
    play();
    for (int i = 0; i < 40; ++i) {
        clock.advance(7);
        play();
    }
    const std::vector<SampleEnding> often = endings();
    clock.advance(-40 * 7);
    ASSERT_TRUE(file.change([](SampleState& state) { state = SampleState(); }));
    setQueue({idOf(first), idOf(second), idOf(third)});
    play();
    clock.advance(40 * 7);
    const std::vector<SampleEnding> once = endings();
    ASSERT_EQ(often.size(), once.size());
    for (std::size_t i = 0; i < once.size(); ++i) {
        EXPECT_EQ(often[i].song, once[i].song);
        EXPECT_NEAR(often[i].date.timeIntervalSinceDate(once[i].date), 0, 1e-4);
    }
}

TEST_F(SamplePlayerTest, aBrokenFileIsReported) {
    ASSERT_TRUE(file.change([](SampleState& state) { state.likedStates[1] = 2; }));
    std::filesystem::resize_file(file.path(), 5);
    SamplePlayer player(file, catalogue);
    EXPECT_FALSE(player.status());
    EXPECT_FALSE(player.setQueue({idOf(first)}));
    EXPECT_FALSE(player.play());
    EXPECT_FALSE(player.pause());
    EXPECT_FALSE(player.skipToNextItem());
}

TEST_F(SamplePlayerTest, shufflesAQueueWhenItBeginsToPlay) {
    std::vector<std::uint64_t> songs;
    for (std::uint32_t song = 30; song < 90; ++song) {
        if (catalogue.hasSong(song, clock.now())) {
            songs.push_back(idOf(song));
        }
    }
    ASSERT_GT(songs.size(), 20U);
    const auto queued = [&] { return file.read().value().queue.songs; };
    SamplePlayer player(file, catalogue);
    ASSERT_TRUE(player.setShuffle(SampleShuffle::songs));
    setQueue(songs);
    EXPECT_EQ(queued(), songs) << "not before it plays";
    play();
    const std::vector<std::uint64_t> shuffled = queued();
    EXPECT_NE(shuffled, songs);
    EXPECT_TRUE(std::is_permutation(shuffled.begin(), shuffled.end(), songs.begin(), songs.end()));
    clock.advance(1);
    pause();
    play();
    EXPECT_EQ(queued(), shuffled) << "going on is no new beginning";
    setQueue(songs);
    ASSERT_TRUE(player.setShuffle(SampleShuffle::off));
    play();
    EXPECT_EQ(queued(), songs);
}

TEST_F(SamplePlayerTest, albumsAreShuffledWhole) {
    std::vector<std::uint64_t> songs;
    for (std::uint32_t song = 30; song < 90; ++song) {
        if (catalogue.hasSong(song, clock.now())) {
            songs.push_back(idOf(song));
        }
    }
    const auto albumsOf = [&](const std::vector<std::uint64_t>& list) {
        std::vector<const SampleAlbum*> albums;
        for (const std::uint64_t id : list) {
            const SampleAlbum* album = &catalogue.albumOfSong(*catalogue.songOfPersistentID(id));
            if (albums.empty() || albums.back() != album) {
                albums.push_back(album);
            }
        }
        return albums;
    };
    const auto before = albumsOf(songs);
    ASSERT_GT(before.size(), 3U);
    ASSERT_TRUE(SamplePlayer(file, catalogue).setShuffle(SampleShuffle::albums));
    // Few albums may come out as they went in, but not at many instants in turn.
    bool isOtherOrder = false;
    for (int i = 0; i < 10; ++i) {
        clock.advance(1);
        setQueue(songs);
        play();
        const auto after = albumsOf(file.read().value().queue.songs);
        EXPECT_EQ(after.size(), before.size()) << "none is torn";
        isOtherOrder = isOtherOrder || after != before;
    }
    EXPECT_TRUE(isOtherOrder);
}

TEST_F(SamplePlayerTest, obeysAsAnyPlayer) {
    MediaLibraryFixture library({{.title = "One", .persistentID = idOf(first)},
                                 {.title = "Two", .persistentID = idOf(second)}});
    SamplePlayer player(file, catalogue);
    SampleMusicPlayer controller(player);
    MPMusicPlayerController& any = controller;
    any.setQueueWithDescriptor(MPMusicPlayerMediaItemQueueDescriptor(
        MPMediaItemCollection({library.song("Two"), library.song("One")})));
    any.setShuffleMode(MPMusicShuffleMode::off);
    any.prepareToPlay();
    EXPECT_EQ(status().state, PlaybackState::paused);
    any.play();
    EXPECT_EQ(status().state, PlaybackState::playing);
    EXPECT_EQ(status().song, idOf(second));
    EXPECT_EQ(file.read().value().queue.songs, (std::vector{idOf(second), idOf(first)}));
    any.setShuffleMode(MPMusicShuffleMode::albums);
    EXPECT_EQ(file.read().value().shuffle, SampleShuffle::albums);
    any.setShuffleMode(MPMusicShuffleMode::byUser);
    EXPECT_EQ(file.read().value().shuffle, SampleShuffle::albums) << "as it was";
    any.setShuffleMode(MPMusicShuffleMode::songs);
    EXPECT_EQ(file.read().value().shuffle, SampleShuffle::songs);
}

}  // namespace
}  // namespace tavrion
