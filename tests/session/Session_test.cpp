#include "session/Session.h"

#include <gmock/gmock.h>

#include "platform/mediaplayer/MPMediaQuery.h"
#include "recording/PlaybackHistory.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "sources/sample/SampleSource.h"
#include "tests/session/SessionFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;

class SessionTest : public test::SessionTest {
  protected:
    static std::vector<std::string> songTitles() {
        std::vector<std::string> titles;
        for (const MPMediaItem& song : MPMediaQuery::songsQuery().items()) {
            titles.emplace_back(song.title().value_or("—"));
        }
        return titles;
    }
};

TEST_F(SessionTest, aLibraryIsChosenReadAndForgotten) {
    writeExport({"One", "Two"});
    const auto session = opened();
    EXPECT_FALSE(session->openLibrary()) << "none is chosen";
    choose(*session, "music-xml", exportFile().string());
    EXPECT_THAT(songTitles(), ElementsAre("One", "Two"));
    EXPECT_EQ(session->libraryChoice().value(),
              (LibraryChoice{"music-xml", exportFile().string()}));
    EXPECT_TRUE(writerOf(*session).forgetLibrary());
    EXPECT_EQ(session->libraryChoice().value(), std::nullopt);
    EXPECT_TRUE(writerOf(*session).forgetLibrary()) << "twice is once";
}

TEST_F(SessionTest, thereIsOneWriterInADirectory) {
    const auto session = opened();
    Writer& writer = writerOf(*session);
    EXPECT_EQ(&writerOf(*session), &writer) << "asking twice is asking once";
    const auto other = opened();
    auto refused = other->becomeWriter();
    ASSERT_TRUE(std::holds_alternative<WriterLock::Refusal>(refused));
    EXPECT_EQ(std::get<WriterLock::Refusal>(refused).failure, WriterLock::Failure::inUse);
    EXPECT_NE(std::get<WriterLock::Refusal>(refused).message.find(std::to_string(::getpid())),
              std::string::npos);
}

TEST_F(SessionTest, theLockGoesWithItsSession) {
    {
        const auto session = opened();
        writerOf(*session);
    }
    const auto session = opened();
    EXPECT_TRUE(std::holds_alternative<Writer*>(session->becomeWriter()));
}

TEST_F(SessionTest, aScanOfOneSessionIsReadByTheNext) {
    writeExport({"One", "Two"});
    {
        const auto session = opened();
        choose(*session, "music-xml", exportFile().string());
        ASSERT_TRUE(session->openStore());
        RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false,
                                                                 nullptr);
        ASSERT_TRUE(writerOf(*session).resignActive());
    }
    const auto session = opened();
    ASSERT_TRUE(session->openStore());
    EXPECT_EQ(session->records()->table(NerindaEntity::PlayEvent).size(), 2U);
    EXPECT_TRUE(failures.endings.empty());
}

TEST_F(SessionTest, withoutTheLockNothingIsWritten) {
    {
        const auto session = opened();
        writerOf(*session);
        ASSERT_TRUE(session->openStore());
        ASSERT_TRUE(writerOf(*session).resignActive());
    }
    {
        const auto session = opened();
        ASSERT_TRUE(session->openStore());
        PlaybackHistory::insert(*session->data().mainContext()).setTitle("Forgotten lock");
        session->data().saveMainContext();
        session->mainQueue().runUntilIdle();
        ASSERT_EQ(failures.endings.size(), 1U);
        EXPECT_NE(failures.endings[0].localizedDescription.find("reading"), std::string::npos);
    }
    const auto session = opened();
    ASSERT_TRUE(session->openStore());
    EXPECT_EQ(session->records()->table(NerindaEntity::PlaybackHistory).size(), 0U);
}

TEST_F(SessionTest, safetyCopiesOfOneInstantHaveNamesOfTheirOwn) {
    const auto session = opened();
    Writer& writer = writerOf(*session);
    ASSERT_TRUE(session->openStore());
    const auto first = writer.makeSafetyCopy("before-test");
    const auto second = writer.makeSafetyCopy("before-test");
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_EQ(first.value(), "20260301T120000000Z-before-test");
    EXPECT_NE(first.value(), second.value());
    EXPECT_TRUE(
        std::filesystem::exists(session->directory().backups() / (second.value() + ".sqlite")));
}

TEST_F(SessionTest, playPlays) {
    const auto session = opened();
    choose(*session, "sample", "200");
    MPMusicPlayerController& player = MPMusicPlayerController::systemMusicPlayer();
    const std::vector<MPMediaItem> songs = MPMediaQuery::songsQuery().items();
    player.setQueueWithDescriptor(
        MPMusicPlayerMediaItemQueueDescriptor(MPMediaItemCollection({songs[3], songs[1]})));
    player.setShuffleMode(MPMusicShuffleMode::off);
    player.prepareToPlay();
    player.play();
    // As the library's own player, in another process, finds it.
    SampleSource other(200, session->directory().sampleLibrary());
    const auto status = other.samplePlayer().status();
    ASSERT_TRUE(status);
    EXPECT_EQ(status.value().state, SamplePlayer::PlaybackState::playing);
    EXPECT_EQ(status.value().song, songs[3].persistentID());
}

TEST_F(SessionTest, withoutAPlayerCommandsDoNothing) {
    const auto session = opened();
    MPMusicPlayerController& player = MPMusicPlayerController::systemMusicPlayer();
    player.play();
    writeExport({"One"});
    choose(*session, "music-xml", exportFile().string());
    player.setQueueWithDescriptor(MPMusicPlayerMediaItemQueueDescriptor(
        MPMediaItemCollection(MPMediaQuery::songsQuery().items())));
    player.setShuffleMode(MPMusicShuffleMode::songs);
    player.prepareToPlay();
    player.play();
    EXPECT_FALSE(std::filesystem::exists(session->directory().sampleLibrary()));
}

TEST_F(SessionTest, aChangedLocaleOrdersTheLibraryAgain) {
    writeExport({"Zebra", "Ära"});
    setEnvironment("LC_COLLATE", "de_DE.UTF-8");
    const auto session = opened();
    choose(*session, "music-xml", exportFile().string());
    EXPECT_THAT(songTitles(), ElementsAre("Ära", "Zebra"));
    int publications = 0;
    const auto observation =
        MPMediaLibrary::defaultMediaLibrary().addObserver([&] { ++publications; });
    EXPECT_FALSE(session->refreshRegion());
    setEnvironment("TZ", "Europe/Berlin");
    EXPECT_TRUE(session->refreshRegion());
    EXPECT_EQ(NSCalendar::currentCalendar().timeZone().name(), "Europe/Berlin");
    EXPECT_EQ(publications, 0) << "a zone orders no names";
    setEnvironment("LC_COLLATE", "sv_SE.UTF-8");
    EXPECT_TRUE(session->refreshRegion());
    EXPECT_EQ(publications, 1);
    EXPECT_THAT(songTitles(), ElementsAre("Zebra", "Ära"));
}

TEST_F(SessionTest, aSourceOutlivesTheLibraryThatFollows) {
    const auto session = opened();
    choose(*session, "sample", "50");
    const std::shared_ptr<Source> reader = MPMediaLibrary::defaultMediaLibrary().source();
    writeExport({"One"});
    choose(*session, "music-xml", exportFile().string());
    EXPECT_EQ(reader->location(), "50");
    EXPECT_NE(MPMediaLibrary::defaultMediaLibrary().source(), reader);
}

}  // namespace
}  // namespace tavrion
