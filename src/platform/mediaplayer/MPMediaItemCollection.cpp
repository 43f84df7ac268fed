#include "platform/mediaplayer/MPMediaItemCollection.h"

#include "platform/mediaplayer/MPMediaItemCollectionState.h"

namespace tavrion {

namespace {

MPMediaQuery queryForItems(const std::vector<MPMediaItem>& items) {
    Value::Array persistentIDs;
    for (const MPMediaItem& item : items) {
        persistentIDs.emplace_back(item.persistentID());
    }
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.addFilterPredicate(MPMediaPropertyPredicate::predicateWithValue(
        persistentIDs, MPMediaItemPropertyPersistentID));
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    return query;
}

}  // namespace

MPMediaItemCollection::MPMediaItemCollection(std::vector<MPMediaItem> items) {
    auto state = std::make_shared<State>();
    state->query = queryForItems(items);
    state->items = std::move(items);
    state_ = std::move(state);
}

MPMediaItemCollection::MPMediaItemCollection(std::shared_ptr<const State> state)
    : state_(std::move(state)) {}

const std::vector<MPMediaItem>& MPMediaItemCollection::items() const {
    return state_->items;
}

std::optional<MPMediaItem> MPMediaItemCollection::representativeItem() const {
    return state_->items.empty() ? std::nullopt : std::optional(state_->items.front());
}

MPMediaGrouping MPMediaItemCollection::groupingType() const {
    return state_->grouping;
}

std::uint64_t MPMediaItemCollection::persistentID() const {
    return state_->persistentID;
}

MPMediaQuery MPMediaItemCollection::itemsQuery() const {
    return state_->query;
}

bool MPMediaItemCollection::isPlaylist() const {
    return state_->playlist != nullptr;
}

Value MPMediaItemCollection::valueForKey(std::string_view key) const {
    if (key == "groupingType") {
        return static_cast<std::int64_t>(state_->grouping);
    }
    if (key == "persistentID") {
        return state_->persistentID;
    }
    if (key == "count") {
        return static_cast<std::int64_t>(state_->items.size());
    }
    return state_->playlist == nullptr ? Value()
                                       : valueOfPlaylist(*state_->snapshot, *state_->playlist, key);
}

bool MPMediaItemCollection::operator==(const MPMediaItemCollection& other) const {
    return state_ == other.state_ ||
           (state_->grouping == other.state_->grouping &&
            state_->persistentID == other.state_->persistentID &&
            state_->playlist == other.state_->playlist && state_->items == other.state_->items);
}

}  // namespace tavrion
