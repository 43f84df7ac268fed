#include "library/RVEntityCollectionViewController.h"

#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "recording/RecordStore.h"

namespace tavrion {

std::shared_ptr<RVEntityCollectionViewController> RVEntityCollectionViewController::make(
    EntityScreen& screen, MPMediaEntity entity) {
    return std::shared_ptr<RVEntityCollectionViewController>(
        new RVEntityCollectionViewController(screen, std::move(entity)));
}

void RVEntityCollectionViewController::viewDidLoad() {
    updateDataSourceWithAnimation(true);
}

void RVEntityCollectionViewController::publish(EntitySnapshot snapshot, bool animated,
                                               const std::function<void()>& then) {
    auto shared = std::make_shared<const EntitySnapshot>(std::move(snapshot));
    Port<MainQueue>::current().async(
        [self = shared_from_this(), shared = std::move(shared), animated, then] {
            self->snapshot_ = shared;
            if (self->screen_ != nullptr) {
                self->screen_->applySnapshot(*shared, animated);
                then();
            }
        });
}

void RVEntityCollectionViewController::updateDataSourceWithAnimation(bool animated) {
    Port<MainQueue>::current().assertCurrent();
    dataSourceTaskQueue_->async([self = shared_from_this(), animated] {
        self->built_ = self->lists_.fullBuild(EntitySections::sortForSection);
        self->publish(self->built_, animated, [self] { self->layoutRecentActivityChart(); });
    });
}

void RVEntityCollectionViewController::reloadSection(EntitySection section, RVSortType sortType,
                                                     bool reverse) {
    Port<MainQueue>::current().assertCurrent();
    dataSourceTaskQueue_->async(
        [self = shared_from_this(), section, sort = EntitySort{sortType, reverse}] {
            EntityList list{section, self->lists_.reloadedList(section, sort)};
            if (list.entities.empty()) {
                return;
            }
            self->built_ = EntityLists::withList(std::move(self->built_), std::move(list));
            self->publish(self->built_, true, [self] { self->screen_->refreshRankValues(); });
        });
}

void RVEntityCollectionViewController::layoutRecentActivityChart() {
    Port<MainQueue>::current().assertCurrent();
    if (screen_ == nullptr || !screen_->isChartOnHand()) {
        return;
    }
    const auto context = Port<RecordStore>::current().privateContext();
    context->performBlock([self = shared_from_this(), context] {
        const EntityActivity activity = recentActivity(self->entity_, *context);
        Port<MainQueue>::current().async([self, activity] {
            if (self->screen_ != nullptr) {
                self->screen_->showRecentActivity(activity);
            }
        });
    });
}

bool RVEntityCollectionViewController::hasActionButton(EntitySection section) {
    return !EntitySections::sortPreferenceKeyForSection(section).empty();
}

bool RVEntityCollectionViewController::hasHistoryFooter(bool hasNavigation) const {
    return hasNavigation && entity_.item() != nullptr;
}

UIMenu RVEntityCollectionViewController::sortMenuForButton(EntitySection section) {
    const EntitySort current = EntitySections::sortForSection(section);
    UIMenu menu;
    for (const std::string& title : EntitySections::sortTitlesForSection(section, entity_)) {
        const RVSortType type = menu.children.size();
        UIAction action{.title = title, .handler = [weak = weak_from_this(), section, type] {
                            if (const auto self = weak.lock()) {
                                self->chooseSort(section, type);
                            }
                        }};
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
    if (screen_ != nullptr) {
        screen_->sortButtonDidChange(section);
    }
    reloadSection(section, sort.type, sort.reverse);
}

EntityRank RVEntityCollectionViewController::rankEntityCell(EntitySection section,
                                                            std::size_t index) const {
    const EntityList* list = snapshot_->list(section);
    if (list == nullptr || index >= list->entities.size()) {
        return {};
    }
    return EntityTexts::rankOfEntity(list->entities[index], index,
                                     EntitySections::sortTypeForSection(section), entity_);
}

std::optional<MPMediaItemCollection> RVEntityCollectionViewController::itemsToPlay() const {
    if (const MPMediaItem* song = entity_.item()) {
        return MPMediaItemCollection({*song});
    }
    const EntityList* songs = snapshot_->list(EntitySection::songs);
    if (songs == nullptr) {
        return std::nullopt;
    }
    std::vector<MPMediaItem> items;
    items.reserve(songs->entities.size());
    for (const MPMediaEntity& song : songs->entities) {
        items.push_back(*song.item());
    }
    return MPMediaItemCollection(std::move(items));
}

}  // namespace tavrion
