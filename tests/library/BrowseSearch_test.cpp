#include "library/BrowseSearch.h"

#include <gtest/gtest.h>

#include "library/search/SearchTerm.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

/// Notes what it is told to show.
class NotingPage final : public BrowseSearch::Page {
  public:
    explicit NotingPage(DispatchQueue& lists) : lists_(lists) {}

    Work withoutStatistics() override {
        lists_.assertCurrent();
        return [this] { note("without statistics"); };
    }
    Work libraryAgain() override {
        lists_.assertCurrent();
        return [this, tiles = ++tilesMade] { note("library with tiles " + std::to_string(tiles)); };
    }
    void showSearch(const SearchSnapshot& sections) override {
        note(sections.empty() ? "nothing" : stringOfEntity(sections[0].rows.at(0), "title"));
    }

    Names shown;
    int tilesMade = 0;

  private:
    void note(const std::string& what) {
        Port<MainQueue>::current().assertCurrent();
        shown.push_back(what);
    }
    DispatchQueue& lists_;
};

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

    void type(std::string_view text) { search_->updateSearchResultsForSearchController(text); }
    void settle() { mainQueue_->runUntilIdle(); }

    std::shared_ptr<MainQueue> mainQueue_ = MainQueue::make();
    Port<MainQueue>::Plug mainPlug_{*mainQueue_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    std::vector<TestSong> songs_;
    MediaLibraryFixture library_;
    std::shared_ptr<DispatchQueue> lists_ = DispatchQueue::serial("dataSourceTaskQueue");
    NotingPage page_{*lists_};
    std::unique_ptr<BrowseSearch> search_ = std::make_unique<BrowseSearch>(page_, lists_);
};

TEST_F(BrowseSearchTest, BeginningTakesTheStatisticsOffAndKeepsTheLibrary) {
    EXPECT_EQ(search_->state(), BrowseSearch::State::idle);
    search_->searchBarTextDidBeginEditing();
    settle();
    EXPECT_EQ(page_.shown, (Names{"without statistics"}));
    EXPECT_EQ(search_->state(), BrowseSearch::State::editing);
}

TEST_F(BrowseSearchTest, ATermOfBlanksChangesNothingOnView) {
    type(" \n ");
    type("");
    settle();
    EXPECT_TRUE(page_.shown.empty());
    type("x");
    settle();
    type("  ");
    settle();
    EXPECT_EQ(page_.shown, (Names{"x"}));
    EXPECT_EQ(search_->state(), BrowseSearch::State::searching);
    EXPECT_EQ(search_->results()->songs.size(), 1U);
}

TEST_F(BrowseSearchTest, TypingFastShowsTheLastTermAlone) {
    for (int round = 0; round < 20; ++round) {
        page_.shown.clear();
        type("a");
        type("ab");
        type("abc");
        settle();
        EXPECT_EQ(page_.shown, (Names{"abc"}));
        EXPECT_EQ(search_->results()->songs.size(), 1U);
    }
}

TEST_F(BrowseSearchTest, HitsThatAreReadyAreDroppedWhenTheNextKeyComesFirst) {
    type("a");
    lists_->sync([] {});
    // Whether the search has run by now or not: nothing was shown yet, since the main queue was
    // busy here all the time.
    type("x");
    settle();
    EXPECT_EQ(page_.shown, (Names{"x"}));
}

TEST_F(BrowseSearchTest, AfterCancelTheTilesAreNewAndTheResultsGone) {
    search_->searchBarTextDidBeginEditing();
    settle();
    type("a");
    settle();
    EXPECT_EQ(search_->results()->songs.size(), 3U);
    search_->searchBarCancelButtonClicked();
    settle();
    EXPECT_EQ(page_.shown, (Names{"without statistics", "a", "library with tiles 1"}));
    EXPECT_TRUE(search_->results()->songs.empty());
    EXPECT_EQ(search_->state(), BrowseSearch::State::idle);
    search_->searchBarCancelButtonClicked();
    settle();
    EXPECT_EQ(page_.shown.back(), "library with tiles 2") << "made anew each time";
}

TEST_F(BrowseSearchTest, HitsThatComeLateDoNotCoverTheLibrary) {
    type("a");
    search_->searchBarCancelButtonClicked();
    settle();
    EXPECT_EQ(page_.shown, (Names{"library with tiles 1"}));
}

TEST_F(BrowseSearchTest, SeeAllHasTheTextAsTypedAndTheWholeList) {
    type(" a ");
    settle();
    const auto all = search_->showAllResults(4);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->title, " a ");
    EXPECT_EQ(all->entities.size(), 3U);
    EXPECT_TRUE(search_->showAllResults(5)) << "an empty list is a list";
    EXPECT_FALSE(search_->showAllResults(1));
}

TEST_F(BrowseSearchTest, APageThatGoesIsShownNothing) {
    search_->searchBarTextDidBeginEditing();
    type("a");
    search_.reset();
    settle();
    EXPECT_TRUE(page_.shown.empty());
}

}  // namespace
}  // namespace tavrion
