#include "library/RVBrowseCollectionViewController.h"

#include "library/RVMetadataManager.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSLocalizedString.h"
#include "recording/RVQueryManager.h"

namespace tavrion {

namespace {

constexpr NSTimeInterval tooltipDelay = 0.3;

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

void RVBrowseCollectionViewController::viewDidLoad() {
    change([](BrowsePage& page) { page.choices = BrowseChoices::stored(); });
    updateDataSource();
    // Any other grouping finds its list again when the artists are chosen.
    compilations_ = NSUserDefaults::standardUserDefaults().addObserver(
        RVQueryManager::splitCompilationsKey, &Port<MainQueue>::current(),
        ifAlive([](auto& self, const std::string&, const Value&) {
            if (self.state()->choices.groupType == MPMediaGrouping::albumArtist) {
                self.updateDataSource();
            }
        }));
}

void RVBrowseCollectionViewController::viewDidAppear() {
    emit(ScreenSignal::becomeTabBarDelegate);
    if (!state()->hidesSearchBarWhenScrolling) {
        change([](BrowsePage& page) { page.hidesSearchBarWhenScrolling = true; });
    }
}

void RVBrowseCollectionViewController::viewWillDisappear() {
    emit(ScreenSignal::endTyping);
}

void RVBrowseCollectionViewController::updateDataSource() {
    dataSourceTaskQueue_->async(
        [weak = weak_from_this(), choices = state()->choices, results = queryResults_] {
            if (weak.expired()) {
                return;
            }
            results->list = libraryList(choices);
            toMain(weak, [list = results->list](auto& self) { self.publishLibrary(list); });
        });
}

void RVBrowseCollectionViewController::publishLibrary(EntityRows list) {
    isRebuildComing_ = true;
    change(
        [&](BrowsePage& page) {
            page.isLoading = false;
            page.statistics = freshStatistics();
            page.list = list.isEmpty() ? std::nullopt : std::optional(asShownNow(std::move(list)));
            page.search.clear();
        },
        StateChange::animated);
}

void RVBrowseCollectionViewController::sortDataSourceWithAnimation(bool animated) {
    dataSourceTaskQueue_->async(
        [weak = weak_from_this(), choices = state()->choices, animated, results = queryResults_] {
            if (weak.expired()) {
                return;
            }
            results->list = libraryList(choices);
            toMain(weak, [list = results->list, animated](auto& self) {
                self.change([&](BrowsePage& page) { page.list = self.asShownNow(list); },
                            animated ? StateChange::animated : StateChange::immediate);
            });
        });
}

/// While somebody searches, also the library that is still on view has no ranks.
EntityRows RVBrowseCollectionViewController::asShownNow(EntityRows list) const {
    return state()->isSearchActive ? list.asHits() : std::move(list);
}

ScreenRequest RVBrowseCollectionViewController::loadStatistic(
    std::uint64_t index, std::function<void(RVStatisticReference)> loaded) {
    return load(
        *statHandlingQueue_, [index] { return statForIndex(index); }, std::move(loaded));
}

ScreenRequest RVBrowseCollectionViewController::loadRow(const EntityRows& rows, std::size_t place,
                                                        std::function<void(PicturedRow)> loaded) {
    return load(
        *imageHandlingQueue_, [rows, place] { return rows.picturedRow(place); }, std::move(loaded));
}

void RVBrowseCollectionViewController::beginSearch() {
    if (state()->isSearchActive) {
        return;
    }
    change([](BrowsePage& page) {
        page.isSearchActive = true;
        if (page.list) {
            page.list = page.list->asHits();
        }
    });
}

void RVBrowseCollectionViewController::searchBarTextDidBeginEditing() {
    emit(ScreenSignal::scrollToTop);
    beginSearch();
    search_.prepare();
    // After whatever the lists' queue has to do before.
    dataSourceTaskQueue_->async([weak = weak_from_this()] {
        toMain(weak, [](auto& self) {
            self.change([](BrowsePage& page) { page.statistics.clear(); }, StateChange::animated);
        });
    });
}

void RVBrowseCollectionViewController::updateSearchResultsForSearchController(
    std::string_view searchBarText) {
    typed_ = searchBarText;
    const std::string_view term = trimmedTerm(searchBarText);
    if (term.empty()) {
        return;
    }
    beginSearch();
    search_.look(std::string(term), ifAlive([](auto& self, const SearchSnapshot& sections) {
                     self.publishSearch(sections);
                 }));
}

void RVBrowseCollectionViewController::publishSearch(const SearchSnapshot& sections) {
    change(
        [&](BrowsePage& page) {
            page.statistics.clear();
            page.list.reset();
            page.search = sections;
            page.layout = BrowseLayout::search;
        },
        StateChange::animated);
}

void RVBrowseCollectionViewController::searchBarCancelButtonClicked() {
    search_.cancel();
    typed_.clear();
    change([](BrowsePage& page) { page.isSearchActive = false; });
    dataSourceTaskQueue_->async([weak = weak_from_this(), results = queryResults_] {
        toMain(weak, [list = results->list](auto& self) { self.publishLibraryAgain(list); });
    });
}

/// Also an empty library has its section then.
void RVBrowseCollectionViewController::publishLibraryAgain(EntityRows list) {
    change(
        [&](BrowsePage& page) {
            page.statistics = freshStatistics();
            page.list = asShownNow(std::move(list));
            page.search.clear();
            page.layout = BrowseLayout::library;
        },
        StateChange::animated);
    search_.forgetResults();
}

void RVBrowseCollectionViewController::showAllResults(std::uint64_t actionButtonTag) {
    const std::shared_ptr<const SearchResults> results = search_.results();
    if (const FoundEntities* list = resultsForTag(*results, actionButtonTag)) {
        emit(Route(FoundEntitiesRoute{typed_, *list}));
    }
}

void RVBrowseCollectionViewController::didSelectItem(const MPMediaEntity& entity) {
    if (!entity.isEmpty()) {
        emit(Route(EntityRoute{entity}));
    }
}

bool RVBrowseCollectionViewController::shouldSelectViewController(bool isSelectedTab,
                                                                  bool isOnTopOfItsStack,
                                                                  bool isAtTop) {
    if (isSelectedTab && isOnTopOfItsStack) {
        emit(isAtTop ? ScreenSignal::beginTyping : ScreenSignal::scrollToTop);
    }
    return true;
}

void RVBrowseCollectionViewController::snapshotDidApply(bool isGroupingButtonKnown) {
    if (std::exchange(isRebuildComing_, false) && isGroupingButtonKnown) {
        showOnboardingTooltips();
    }
}

void RVBrowseCollectionViewController::showOnboardingTooltips() {
    if (NSUserDefaults::standardUserDefaults().boolForKey(onboardingKey)) {
        return;
    }
    tooltip_ = Port<TimerService>::current().schedule(
        tooltipDelay, Port<MainQueue>::current(), ifAlive([](auto& self) {
            self.emit(
                Tooltip{.title = NSLocalizedString("Groupings"),
                        .text = NSLocalizedString(
                            "Change your grouping to view artists, albums, playlists, and genres."),
                        .source = groupingButton,
                        .presented = [] {
                            NSUserDefaults::standardUserDefaults().setObject(onboardingKey, true);
                        }});
        }));
}

}  // namespace tavrion
