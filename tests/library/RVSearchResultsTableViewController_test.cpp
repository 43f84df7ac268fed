#include "library/RVSearchResultsTableViewController.h"

#include <gtest/gtest.h>

#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

class NotingScreen final : public ScreenPort<SearchResultsPage> {
  public:
    void stateDidChange(std::shared_ptr<const SearchResultsPage>, StateChange) override {}
    void emit(ScreenEvent event) override { routes.push_back(std::get<Route>(event)); }
    std::vector<Route> routes;
};

class SearchResultsTable : public testing::Test {
  protected:
    ManualClock clock_{NSDate::dateWithTimeIntervalSinceReferenceDate(0)};
    Port<Clock>::Plug clockPlug_{clock_};
    std::shared_ptr<MainQueue> mainQueue_ = MainQueue::make();
    Port<MainQueue>::Plug mainPlug_{*mainQueue_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_{{{.title = "Wave", .playCount = 3}, {.title = "Water"}}};
    std::shared_ptr<RVSearchResultsTableViewController> controller_ =
        RVSearchResultsTableViewController::make(
            {"wa", FoundEntities({library_.song("Wave"), library_.song("Water")})});
    NotingScreen screen_;
    ScreenAttachment attachment_ = controller_->attach(screen_);
};

TEST_F(SearchResultsTable, thePageHasTheHitsUnderWhatWasTyped) {
    EXPECT_EQ(controller_->state()->title, "wa");
    EXPECT_EQ(controller_->state()->entities.size(), 2U);
    const EntityRow row = controller_->state()->beginningOfRow(1);
    EXPECT_EQ(row.title->textWithoutAttachments(), "Water");
    EXPECT_EQ(row.subtitle, "Artist");
}

TEST_F(SearchResultsTable, rowsComeWithTheirPicturesAndTheValueOfTheAlphabet) {
    std::optional<PicturedRow> row;
    const ScreenRequest request =
        controller_->loadRow(0, [&](PicturedRow loaded) { row = std::move(loaded); });
    mainQueue_->runUntilIdle();
    ASSERT_TRUE(row);
    EXPECT_EQ(row->row.entity, library_.song("Wave"));
    EXPECT_EQ(row->row.property.textWithoutAttachments(), "Album");
    EXPECT_EQ(row->row.number, std::nullopt);
    EXPECT_EQ(row->artwork.name(), "item");
}

TEST_F(SearchResultsTable, choosingARowLeadsToItsPage) {
    controller_->didSelectRow(1);
    controller_->didSelectRow(2);
    ASSERT_EQ(screen_.routes.size(), 1U);
    EXPECT_EQ(std::get<EntityRoute>(screen_.routes[0]).entity, library_.song("Water"));
}

}  // namespace
}  // namespace tavrion
