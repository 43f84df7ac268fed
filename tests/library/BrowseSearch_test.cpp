#include "library/BrowseSearch.h"

#include <gtest/gtest.h>

#include <thread>

#include "library/search/SearchTerm.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

class BrowseSearchTest : public testing::Test {
  protected:
    BrowseSearchTest() {
        for (const char* title : {"a", "ab", "abc", "x"}) {
            songs_.push_back({.title = title, .artist = "-", .albumTitle = "-"});
        }
        library_.publish(songs_);
    }
    /// A worker counts its work as ended a moment after the test has seen the work's effect.
    ~BrowseSearchTest() override { settle(); }

    void look(const char* term) {
        search_->look(term, [this](const SearchSnapshot& sections) {
            mainQueue_->assertCurrent();
            shown_.push_back(sections.empty() ? "nothing"
                                              : stringOfEntity(sections[0].rows[0], "title"));
        });
    }
    void settle() { mainQueue_->runUntilIdle(); }

    std::shared_ptr<MainQueue> mainQueue_ = MainQueue::make();
    Port<MainQueue>::Plug mainPlug_{*mainQueue_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    std::vector<TestSong> songs_;
    MediaLibraryFixture library_;
    Names shown_;
    std::unique_ptr<BrowseSearch> search_ = std::make_unique<BrowseSearch>();
};

TEST_F(BrowseSearchTest, typingFastShowsTheLastTermAlone) {
    for (int round = 0; round < 20; ++round) {
        shown_.clear();
        search_->prepare();
        look("a");
        look("ab");
        look("abc");
        settle();
        EXPECT_EQ(shown_, (Names{"abc"}));
        EXPECT_EQ(search_->results()->songs.size(), 1U);
    }
}

TEST_F(BrowseSearchTest, hitsThatAreReadyAreDroppedWhenTheNextKeyComesFirst) {
    look("a");
    while (DispatchActivity::count() != 0) {
        std::this_thread::yield();
    }
    // Nothing was shown yet, since the main queue was busy here all the time.
    look("x");
    settle();
    EXPECT_EQ(shown_, (Names{"x"}));
}

TEST_F(BrowseSearchTest, whatIsCancelledIsNotShownThoughItsHitsAreKept) {
    look("a");
    while (DispatchActivity::count() != 0) {
        std::this_thread::yield();
    }
    search_->cancel();
    settle();
    EXPECT_TRUE(shown_.empty());
    EXPECT_EQ(search_->results()->songs.size(), 3U);
    search_->forgetResults();
    EXPECT_TRUE(search_->results()->songs.empty());
}

TEST_F(BrowseSearchTest, aTermWithoutHitsShowsNothing) {
    look("nowhere");
    settle();
    EXPECT_EQ(shown_, (Names{"nothing"}));
}

TEST_F(BrowseSearchTest, touchingTheBarAgainDropsNoHits) {
    look("x");
    search_->prepare();
    settle();
    EXPECT_EQ(shown_, (Names{"x"}));
}

TEST_F(BrowseSearchTest, aSearchThatGoesShowsNothing) {
    search_->prepare();
    look("a");
    search_.reset();
    settle();
    EXPECT_TRUE(shown_.empty());
}

}  // namespace
}  // namespace tavrion
