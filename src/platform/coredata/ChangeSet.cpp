#include "platform/coredata/ChangeSet.h"

#include <algorithm>

#include "platform/coredata/IndexKeys.h"

namespace tavrion {
namespace {

template <class Map>
std::vector<RecordCounter> sortedKeys(const Map& map) {
    std::vector<RecordCounter> keys;
    keys.reserve(map.size());
    for (const auto& entry : map) {
        if constexpr (requires { entry.first; }) {
            keys.push_back(entry.first);
        } else {
            keys.push_back(entry);
        }
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

Field* findIn(RowUpdate& update, PropertyIndex property) {
    const auto found = std::find_if(update.begin(), update.end(),
                                    [&](const auto& entry) { return entry.first == property; });
    return found == update.end() ? nullptr : &found->second;
}

}  // namespace

void EntityChanges::insert(const NSEntityDescription& entity, RecordCounter record) {
    Row row;
    row.reserve(entity.properties.size());
    for (const NSPropertyDescription& property : entity.properties) {
        row.push_back(fieldOf(unsetView(property.type)));
    }
    insertedRow_.emplace(record, static_cast<std::uint32_t>(rows_.size()));
    rows_.push_back(std::move(row));
}

void EntityChanges::set(const NSEntityDescription& entity, RecordCounter record,
                        PropertyIndex property, Field field) {
    if (const auto inserted = insertedRow_.find(record); inserted != insertedRow_.end()) {
        rows_[inserted->second][property] = std::move(field);
        noteKeys(entity, record, property);
        return;
    }
    RowUpdate& update = updates_[record];
    if (Field* existing = findIn(update, property)) {
        *existing = std::move(field);
    } else {
        update.emplace_back(property, std::move(field));
    }
    noteKeys(entity, record, property);
}

void EntityChanges::noteKeys(const NSEntityDescription& entity, RecordCounter record,
                             PropertyIndex changed) {
    keys_.resize(entity.indexes.size());
    for (std::size_t i = 0; i < entity.indexes.size(); ++i) {
        const NSIndexDescription& index = entity.indexes[i];
        if (std::find(index.properties.begin(), index.properties.end(), changed) ==
            index.properties.end()) {
            continue;
        }
        if (index.properties.size() > 1 && !isInserted(record)) {
            // The other properties of the key lie below; such a record is a candidate for every key
            // (see candidates()).
            keys_[i].emplace(0, record);
            continue;
        }
        const auto key = IndexKeys::ofRecord(index, [&](PropertyIndex property) {
            const Field* field = find(record, property);
            return field != nullptr ? viewOf(*field) : FieldView();
        });
        if (key) {
            keys_[i].emplace(*key, record);
        }
    }
}

void EntityChanges::remove(RecordCounter record) {
    updates_.erase(record);
    if (const auto inserted = insertedRow_.find(record); inserted != insertedRow_.end()) {
        rows_[inserted->second].clear();
        insertedRow_.erase(inserted);
        return;
    }
    deletes_.insert(record);
}

const Field* EntityChanges::find(RecordCounter record, PropertyIndex property) const {
    if (const auto inserted = insertedRow_.find(record); inserted != insertedRow_.end()) {
        return &rows_[inserted->second][property];
    }
    if (const auto update = updates_.find(record); update != updates_.end()) {
        for (const auto& [changed, field] : update->second) {
            if (changed == property) {
                return &field;
            }
        }
    }
    return nullptr;
}

void EntityChanges::candidates(std::size_t index, std::uint64_t key,
                               std::vector<RecordCounter>& found) const {
    if (index >= keys_.size()) {
        return;
    }
    const auto [first, last] = keys_[index].equal_range(key);
    for (auto entry = first; entry != last; ++entry) {
        found.push_back(entry->second);
    }
    if (key != 0) {
        candidates(index, 0, found);
    }
}

std::vector<RecordCounter> EntityChanges::insertedRecords() const {
    return sortedKeys(insertedRow_);
}
std::vector<RecordCounter> EntityChanges::updatedRecords() const {
    return sortedKeys(updates_);
}
std::vector<RecordCounter> EntityChanges::deletedRecords() const {
    return sortedKeys(deletes_);
}

bool ChangeSet::empty() const {
    return std::all_of(entities_.begin(), entities_.end(),
                       [](const EntityChanges& changes) { return changes.empty(); });
}

}  // namespace tavrion
