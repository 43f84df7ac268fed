#include "platform/mediaplayer/MPMediaLibrary.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

TEST(MPMediaLibrary, IsEmptyAndUndecidedAtFirst) {
    MPMediaLibrary library;
    const Port<MPMediaLibrary>::Plug plug(library);
    EXPECT_EQ(MPMediaLibrary::authorizationStatus(),
              MPMediaLibraryAuthorizationStatus::notDetermined);
    ASSERT_NE(library.snapshot(), nullptr);
    EXPECT_TRUE(library.snapshot()->songs().empty());
    EXPECT_EQ(library.source(), nullptr);
}

TEST(MPMediaLibrary, ReportsTheStatusThatWasSet) {
    MPMediaLibrary library;
    const Port<MPMediaLibrary>::Plug plug(library);
    library.setAuthorizationStatus(MPMediaLibraryAuthorizationStatus::denied);
    EXPECT_EQ(static_cast<int>(MPMediaLibrary::authorizationStatus()), 1);
}

TEST(MPMediaLibrary, PublishesASnapshotAndTellsTheObservers) {
    MediaLibraryFixture fixture;
    MPMediaLibrary& library = fixture.library();
    std::size_t songsSeen = 0;
    int calls = 0;
    {
        const auto observation = library.addObserver([&] {
            ++calls;
            songsSeen = library.snapshot()->songs().size();
        });
        fixture.publish({{.title = "a"}, {.title = "b"}});
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(songsSeen, 2U);
    }
    fixture.publish({});
    EXPECT_EQ(calls, 1);
}

TEST(MPMediaLibrary, LetsAnObserverRemoveAnother) {
    MediaLibraryFixture fixture;
    int calls = 0;
    MPMediaLibrary::Observation second;
    const auto first = fixture.library().addObserver([&] { second = {}; });
    second = fixture.library().addObserver([&] { ++calls; });
    fixture.publish({});
    EXPECT_EQ(calls, 0);
}

TEST(MPMediaLibrary, ReplacingAnObservationEndsTheOldOne) {
    MediaLibraryFixture fixture;
    int old = 0;
    int now = 0;
    auto observation = fixture.library().addObserver([&] { ++old; });
    observation = fixture.library().addObserver([&] { ++now; });
    fixture.publish({});
    EXPECT_EQ(old, 0);
    EXPECT_EQ(now, 1);
}

TEST(MPMediaLibrary, PublishesNothingAsAnEmptySnapshot) {
    MediaLibraryFixture fixture({{.title = "a"}});
    fixture.library().publish(nullptr);
    ASSERT_NE(fixture.library().snapshot(), nullptr);
    EXPECT_TRUE(fixture.library().snapshot()->songs().empty());
}

TEST(MPMediaLibrary, IsReadWhileItIsPublished) {
    MediaLibraryFixture fixture({{.title = "a"}});
    const auto one = snapshotOf({{.title = "a"}});
    const auto two = snapshotOf({{.title = "a"}, {.title = "b"}});
    std::thread writer([&] {
        for (int i = 0; i < 500; ++i) {
            fixture.library().publish(i % 2 == 0 ? one : two);
        }
    });
    bool isWhole = true;
    for (int i = 0; i < 500; ++i) {
        const auto snapshot = fixture.library().snapshot();
        isWhole = isWhole && snapshot->text(0, SongText::title) == "a";
    }
    writer.join();
    EXPECT_TRUE(isWhole);
}

}  // namespace
}  // namespace tavrion
