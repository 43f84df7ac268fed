#include "library/RVEntityCollectionViewController.h"

#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/mediaplayer/MPMusicPlayerController.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/PlaybackHistory.h"
#include "recording/RecordStore.h"

namespace tavrion {

RVEntityCollectionViewController::RVEntityCollectionViewController(MPMediaEntity entity)
    : lists_(std::make_shared<EntityLists>(std::move(entity))) {}

std::shared_ptr<RVEntityCollectionViewController> RVEntityCollectionViewController::make(
    MPMediaEntity entity) {
    auto controller = std::make_shared<RVEntityCollectionViewController>(entity);
    controller->change([&](EntityPage& page) {
        page.entity = entity;
        page.header = EntityTexts::header(entity);
    });
    return controller;
}

void RVEntityCollectionViewController::viewDidLoad() {
    updateDataSourceWithAnimation(true);
}

void RVEntityCollectionViewController::updateDataSourceWithAnimation(bool animated) {
    dataSourceTaskQueue_->async([weak = weak_from_this(), lists = lists_, animated] {
        if (weak.expired()) {
            return;
        }
        auto page =
            std::make_shared<const EntityPage>(lists->fullBuild(EntitySections::sortForSection));
        toMain(weak, [page = std::move(page), animated](auto& self) {
            self.isBuildComing_ = true;
            self.publish(page, animated ? StateChange::animated : StateChange::immediate);
        });
    });
}

void RVEntityCollectionViewController::reloadSection(EntitySection section, RVSortType sortType,
                                                     bool reverse) {
    const EntitySort sort{sortType, reverse};
    dataSourceTaskQueue_->async([weak = weak_from_this(), lists = lists_, section, sort] {
        if (weak.expired()) {
            return;
        }
        toMain(weak, [list = lists->reloadedList(section, sort)](auto& self) {
            if (!list.rows.isEmpty()) {
                self.change([&](EntityPage& page) { page.setList(list); }, StateChange::animated);
            }
        });
    });
}

void RVEntityCollectionViewController::snapshotDidApply(bool isChartOnHand) {
    if (std::exchange(isBuildComing_, false) && isChartOnHand) {
        layoutRecentActivityChart();
    }
}

void RVEntityCollectionViewController::layoutRecentActivityChart() {
    const auto context = Port<RecordStore>::current().privateContext();
    context->performBlock([weak = weak_from_this(), context, entity = state()->entity] {
        if (weak.expired()) {
            return;
        }
        toMain(weak, [activity = recentActivity(entity, *context)](auto& self) {
            self.change([&](EntityPage& page) { page.activity = activity; }, StateChange::animated);
        });
    });
}

bool RVEntityCollectionViewController::hasActionButton(EntitySection section) {
    return !EntitySections::sortPreferenceKeyForSection(section).empty();
}

bool RVEntityCollectionViewController::hasHistoryFooter(bool hasNavigation) const {
    return hasNavigation && state()->entity.item() != nullptr;
}

UIMenu RVEntityCollectionViewController::sortMenuForButton(EntitySection section) {
    const EntitySort current = EntitySections::sortForSection(section);
    UIMenu menu;
    for (const std::string& title :
         EntitySections::sortTitlesForSection(section, state()->entity)) {
        const RVSortType type = menu.children.size();
        UIAction action{.title = title, .handler = ifAlive([section, type](auto& self) {
                                            self.chooseSort(section, type);
                                        })};
        if (type == current.type) {
            action.image =
                UIImage::systemImageNamed(current.reverse ? "chevron.down" : "chevron.up");
        }
        menu.children.push_back(std::move(action));
    }
    return menu;
}

void RVEntityCollectionViewController::chooseSort(EntitySection section, RVSortType sortType) {
    const EntitySort sort =
        EntitySections::chosenSort(EntitySections::sortForSection(section), sortType);
    EntitySections::storeSort(sort, section);
    change([&](EntityPage& page) { page.setSort(section, sort); });
    reloadSection(section, sort.type, sort.reverse);
}

void RVEntityCollectionViewController::playMediaEntity() {
    emit(ScreenSignal::lightImpact);
    const std::optional<MPMediaItemCollection> items = state()->itemsToPlay();
    if (!items) {
        return;
    }
    MPMusicPlayerController& player = MPMusicPlayerController::systemMusicPlayer();
    player.setQueueWithDescriptor(MPMusicPlayerMediaItemQueueDescriptor(*items));
    player.setShuffleMode(MPMusicShuffleMode::off);
    player.prepareToPlay();
    player.play();
}

void RVEntityCollectionViewController::showArtist() {
    if (const auto artist = EntityTexts::artistForEntity(state()->entity)) {
        emit(Route(EntityRoute{*artist}));
    }
}

void RVEntityCollectionViewController::showTrackHistory() {
    const MPMediaItem* song = state()->entity.item();
    if (song == nullptr) {
        return;
    }
    if (const auto history = Nerinda::playbackHistory(*song)) {
        emit(Route(
            SongHistoryRoute{RVMetadataManager::titleForMediaItem(*song), history->objectID()}));
    }
}

void RVEntityCollectionViewController::didSelectItem(const MPMediaEntity& entity) {
    if (!entity.isEmpty()) {
        emit(Route(EntityRoute{entity}));
    }
}

ScreenRequest RVEntityCollectionViewController::loadRow(EntitySection section, std::size_t place,
                                                        std::function<void(PicturedRow)> loaded) {
    const EntityList* list = state()->list(section);
    if (list == nullptr || place >= list->rows.size()) {
        return {};
    }
    return load(
        *imageHandlingQueue_, [rows = list->rows, place] { return rows.picturedRow(place); },
        std::move(loaded));
}

ScreenRequest RVEntityCollectionViewController::loadArtwork(std::function<void(UIImage)> loaded) {
    return load(
        *imageHandlingQueue_,
        [entity = state()->entity] { return RVMetadataManager::artworkForEntity(entity); },
        std::move(loaded));
}

}  // namespace tavrion
