#include "library/RVBrowseCollectionViewController.h"

#include "kit/RVAlertManager.h"
#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tavrion {

namespace {

constexpr NSTimeInterval tooltipDelay = 0.3;

std::vector<MPMediaEntity> listOf(const BrowseChoices& choices) {
    return RVQueryManager::resultsForQuery(nullptr, choices.groupType, choices.sortType,
                                           choices.reverse);
}

/// Empty tiles: they only tell the places apart until their values are worked out.
std::vector<RVStatisticReference> freshStatistics() {
    std::vector<RVStatisticReference> statistics;
    for (std::uint64_t index = 0; index < RVBrowseCollectionViewController::statisticCount;
         ++index) {
        statistics.push_back(std::make_shared<const RVStatistic>());
    }
    return statistics;
}

}  // namespace

RVBrowseCollectionViewController::RVBrowseCollectionViewController(BrowseScreen& screen)
    : screen_(screen), search_(*this, dataSourceTaskQueue_) {}

std::shared_ptr<RVBrowseCollectionViewController> RVBrowseCollectionViewController::make(
    BrowseScreen& screen) {
    return std::shared_ptr<RVBrowseCollectionViewController>(
        new RVBrowseCollectionViewController(screen));
}

void RVBrowseCollectionViewController::viewDidLoad() {
    MainQueue& mainQueue = Port<MainQueue>::current();
    mainQueue.assertCurrent();
    choices_ = BrowseChoices::stored();
    updateDataSource();
    // Any other grouping finds its list anew when the artists are chosen.
    compilations_ = NSUserDefaults::standardUserDefaults().addObserver(
        RVQueryManager::splitCompilationsKey, &mainQueue,
        [weak = weak_from_this()](const std::string&, const Value&) {
            const auto self = weak.lock();
            if (self && self->choices_.groupType == MPMediaGrouping::albumArtist) {
                self->updateDataSource();
            }
        });
}

void RVBrowseCollectionViewController::updateDataSource() {
    dataSourceTaskQueue_->async(
        [weak = weak_from_this(), choices = choices_, results = queryResults_] {
            results->list = listOf(choices);
            BrowseSnapshot found{freshStatistics(), std::nullopt};
            if (!results->list.empty()) {
                found.list = results->list;
            }
            Port<MainQueue>::current().async([weak, found = std::move(found)]() mutable {
                if (const auto self = weak.lock()) {
                    self->publish(std::move(found), true);
                    self->showOnboardingTooltips();
                }
            });
        });
}

void RVBrowseCollectionViewController::sortDataSourceWithAnimation(bool animated) {
    dataSourceTaskQueue_->async(
        [weak = weak_from_this(), choices = choices_, animated, results = queryResults_] {
            results->list = listOf(choices);
            Port<MainQueue>::current().async([weak, list = results->list, animated]() mutable {
                if (const auto self = weak.lock()) {
                    self->publish(
                        {self->snapshot_->statistics, std::move(list), self->snapshot_->search},
                        animated);
                    self->screen_.refreshRankValues();
                }
            });
        });
}

void RVBrowseCollectionViewController::publish(BrowseSnapshot snapshot, bool animated) {
    snapshot_ = std::make_shared<const BrowseSnapshot>(std::move(snapshot));
    screen_.applySnapshot(*snapshot_, animated);
}

std::optional<std::size_t> RVBrowseCollectionViewController::rankAtIndex(std::size_t index) const {
    return !isSearchActive() && RVMetadataManager::sortTypeIsRanked(choices_.sortType)
               ? std::optional(index + 1)
               : std::nullopt;
}

NSAttributedString RVBrowseCollectionViewController::propertyOfEntity(
    const MPMediaEntity& entity) const {
    return RVMetadataManager::sortPropertyForMediaEntity(entity, choices_.sortType);
}

void RVBrowseCollectionViewController::loadStatistic(
    std::uint64_t index, std::function<void(RVStatisticReference)> loaded) {
    statHandlingQueue_->async([index, loaded = std::move(loaded)] {
        Port<MainQueue>::current().async(
            [loaded, statistic = statForIndex(index)] { loaded(statistic); });
    });
}

void RVBrowseCollectionViewController::loadRow(
    const MPMediaEntity& entity, std::function<void(UIImage, NSAttributedString)> loaded) {
    const RVSortType shown = isSearchActive() ? RVSortTypeAlphabetical : choices_.sortType;
    imageHandlingQueue_->async([entity, sortType = shown, loaded = std::move(loaded)] {
        Port<MainQueue>::current().async(
            [loaded, artwork = RVMetadataManager::artworkForEntity(entity),
             property = RVMetadataManager::sortPropertyForMediaEntity(entity, sortType)] {
                loaded(artwork, property);
            });
    });
}

void RVBrowseCollectionViewController::searchBarTextDidBeginEditing() {
    screen_.scrollToTop();
    search_.searchBarTextDidBeginEditing();
}

void RVBrowseCollectionViewController::updateSearchResultsForSearchController(
    std::string_view searchBarText) {
    search_.updateSearchResultsForSearchController(searchBarText);
}

void RVBrowseCollectionViewController::searchBarCancelButtonClicked() {
    search_.searchBarCancelButtonClicked();
}

std::optional<BrowseSearch::AllResults> RVBrowseCollectionViewController::showAllResults(
    std::uint64_t actionButtonTag) const {
    return search_.showAllResults(actionButtonTag);
}

bool RVBrowseCollectionViewController::isSearchActive() const {
    return search_.state() != BrowseSearch::State::idle;
}

Work RVBrowseCollectionViewController::withoutStatistics() {
    dataSourceTaskQueue_->assertCurrent();
    // What the lists' queue made before is on view by then.
    return [this] { publish({{}, snapshot_->list, snapshot_->search}, true); };
}

Work RVBrowseCollectionViewController::libraryAgain() {
    dataSourceTaskQueue_->assertCurrent();
    return [this, library = BrowseSnapshot{freshStatistics(), queryResults_->list}] {
        screen_.setLayout(BrowseLayout::library);
        publish(library, true);
    };
}

void RVBrowseCollectionViewController::showSearch(const SearchSnapshot& sections) {
    publish({{}, std::nullopt, sections}, true);
    screen_.setLayout(BrowseLayout::search);
}

void RVBrowseCollectionViewController::showOnboardingTooltips() {
    if (NSUserDefaults::standardUserDefaults().boolForKey(onboardingKey) ||
        !screen_.isGroupingButtonKnown()) {
        return;
    }
    tooltip_ = Port<TimerService>::current().schedule(tooltipDelay, Port<MainQueue>::current(),
                                                      [weak = weak_from_this()] {
                                                          if (const auto self = weak.lock()) {
                                                              self->presentGroupingsTooltip();
                                                          }
                                                      });
}

void RVBrowseCollectionViewController::presentGroupingsTooltip() {
    screen_.presentTooltip(
        NSLocalizedString("Groupings"),
        NSLocalizedString("Change your grouping to view artists, albums, playlists, and genres."),
        [] { NSUserDefaults::standardUserDefaults().setObject(onboardingKey, true); });
}

}  // namespace tavrion
