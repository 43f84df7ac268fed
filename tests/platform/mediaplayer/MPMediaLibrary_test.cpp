#include "platform/mediaplayer/MPMediaLibrary.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "platform/mediaplayer/Source.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

TEST(MPMediaLibrary, isEmptyAndUndecidedAtFirst) {
    MPMediaLibrary library;
    const Port<MPMediaLibrary>::Plug plug(library);
    EXPECT_EQ(MPMediaLibrary::authorizationStatus(),
              MPMediaLibraryAuthorizationStatus::notDetermined);
    ASSERT_NE(library.snapshot(), nullptr);
    EXPECT_TRUE(library.snapshot()->songs().empty());
    EXPECT_EQ(library.source(), nullptr);
}

TEST(MPMediaLibrary, reportsTheStatusThatWasSet) {
    MPMediaLibrary library;
    const Port<MPMediaLibrary>::Plug plug(library);
    library.setAuthorizationStatus(MPMediaLibraryAuthorizationStatus::denied);
    EXPECT_EQ(static_cast<int>(MPMediaLibrary::authorizationStatus()), 1);
}

TEST(MPMediaLibrary, publishesASnapshotAndTellsTheObservers) {
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

TEST(MPMediaLibrary, letsAnObserverRemoveAnother) {
    MediaLibraryFixture fixture;
    int calls = 0;
    MPMediaLibrary::Observation second;
    const auto first = fixture.library().addObserver([&] { second = {}; });
    second = fixture.library().addObserver([&] { ++calls; });
    fixture.publish({});
    EXPECT_EQ(calls, 0);
}

TEST(MPMediaLibrary, replacingAnObservationEndsTheOldOne) {
    MediaLibraryFixture fixture;
    int old = 0;
    int now = 0;
    auto observation = fixture.library().addObserver([&] { ++old; });
    observation = fixture.library().addObserver([&] { ++now; });
    fixture.publish({});
    EXPECT_EQ(old, 0);
    EXPECT_EQ(now, 1);
}

TEST(MPMediaLibrary, theEndOfAnObservationWaitsForTheCallThatIsRunning) {
    MediaLibraryFixture fixture;
    std::promise<void> started;
    std::promise<void> mayEnd;
    std::atomic<bool> hasEnded{false};
    auto observation = fixture.library().addObserver([&] {
        started.set_value();
        mayEnd.get_future().wait();
        hasEnded = true;
    });
    std::thread publisher([&] { fixture.publish({}); });
    started.get_future().wait();
    std::thread release([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        mayEnd.set_value();
    });
    observation.end();
    EXPECT_TRUE(hasEnded);
    release.join();
    publisher.join();
}

TEST(MPMediaLibrary, anObserverMayEndItself) {
    MediaLibraryFixture fixture;
    int calls = 0;
    MPMediaLibrary::Observation own;
    own = fixture.library().addObserver([&] {
        ++calls;
        own.end();
    });
    fixture.publish({});
    fixture.publish({});
    EXPECT_EQ(calls, 1);
}

/// Says when it goes.
class CountedSource final : public Source {
  public:
    explicit CountedSource(int& living) : living_(living) { ++living_; }
    ~CountedSource() override { --living_; }
    std::string kind() const override { return "counted"; }
    std::string location() const override { return "nowhere"; }
    Result<std::shared_ptr<const MediaSnapshot>> read() override { return MediaSnapshot::empty(); }
    std::optional<NSData> artwork(std::uint64_t) const override { return NSData{"picture"}; }

  private:
    int& living_;
};

TEST(MPMediaLibrary, aSourceLivesAsLongAsSomebodyReadsPicturesFromIt) {
    MediaLibraryFixture fixture;
    int living = 0;
    fixture.library().setSource(std::make_shared<CountedSource>(living));
    std::shared_ptr<const Source> reader = fixture.library().source();
    fixture.library().setSource(nullptr);
    ASSERT_EQ(living, 1);
    EXPECT_EQ(reader->artwork(1), NSData{"picture"});
    reader = nullptr;
    EXPECT_EQ(living, 0);
}

TEST(MPMediaLibrary, publishesNothingAsAnEmptySnapshot) {
    MediaLibraryFixture fixture({{.title = "a"}});
    fixture.library().publish(nullptr);
    ASSERT_NE(fixture.library().snapshot(), nullptr);
    EXPECT_TRUE(fixture.library().snapshot()->songs().empty());
}

TEST(MPMediaLibrary, isReadWhileItIsPublished) {
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
