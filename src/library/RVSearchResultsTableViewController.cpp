#include "library/RVSearchResultsTableViewController.h"

namespace tavrion {

namespace {

EntityRows onlyRow(const FoundEntities& entities, std::size_t place) {
    return {{entities[place]}, RVSortTypeAlphabetical};
}

}  // namespace

EntityRow SearchResultsPage::beginningOfRow(std::size_t place) const {
    return onlyRow(entities, place).beginningOfRow(0);
}

std::shared_ptr<RVSearchResultsTableViewController> RVSearchResultsTableViewController::make(
    const FoundEntitiesRoute& route) {
    auto controller = std::make_shared<RVSearchResultsTableViewController>();
    controller->publish(
        std::make_shared<const SearchResultsPage>(SearchResultsPage{route.title, route.entities}));
    return controller;
}

void RVSearchResultsTableViewController::didSelectRow(std::size_t place) {
    if (place < state()->entities.size()) {
        emit(Route(EntityRoute{state()->entities[place]}));
    }
}

ScreenRequest RVSearchResultsTableViewController::loadRow(std::size_t place,
                                                          std::function<void(PicturedRow)> loaded) {
    return load(
        *imageHandlingQueue_,
        [page = state(), place] { return onlyRow(page->entities, place).picturedRow(0); },
        std::move(loaded));
}

}  // namespace tavrion
