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

}  // namespace

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
    dataSourceTaskQueue_->async([weak = weak_from_this(), choices = choices_] {
        BrowseSnapshot found;
        for (std::uint64_t index = 0; index < statisticCount; ++index) {
            found.statistics.push_back(std::make_shared<const RVStatistic>());
        }
        if (auto list = listOf(choices); !list.empty()) {
            found.list = std::move(list);
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
    dataSourceTaskQueue_->async([weak = weak_from_this(), choices = choices_, animated] {
        Port<MainQueue>::current().async([weak, list = listOf(choices), animated]() mutable {
            if (const auto self = weak.lock()) {
                self->publish({self->snapshot_->statistics, std::move(list)}, animated);
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
    return RVMetadataManager::sortTypeIsRanked(choices_.sortType) ? std::optional(index + 1)
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
    imageHandlingQueue_->async([entity, sortType = choices_.sortType, loaded = std::move(loaded)] {
        Port<MainQueue>::current().async(
            [loaded, artwork = RVMetadataManager::artworkForEntity(entity),
             property = RVMetadataManager::sortPropertyForMediaEntity(entity, sortType)] {
                loaded(artwork, property);
            });
    });
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
