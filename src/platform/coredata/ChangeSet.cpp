#include "platform/coredata/ChangeSet.h"

#include <algorithm>

#include "platform/coredata/IndexKeys.h"
#include "platform/foundation/Precondition.h"

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

std::optional<std::size_t> EntityChanges::rowOf(RecordCounter record) const {
    if (inserted_.empty() || record < inserted_.front() || record > inserted_.back()) {
        return std::nullopt;
    }
    // Mostly one context inserts at a time, and a record stands at its distance from the first.
    std::size_t row = record - inserted_.front();
    if (row >= inserted_.size() || inserted_[row] != record) {
        const auto found = std::lower_bound(inserted_.begin(), inserted_.end(), record);
        if (*found != record) {
            return std::nullopt;
        }
        row = static_cast<std::size_t>(found - inserted_.begin());
    }
    return wasRemoved(row) ? std::nullopt : std::optional(row);
}

void EntityChanges::insert(const NSEntityDescription& entity, RecordCounter record,
                           std::span<const PropertyValue> values) {
    precondition(inserted_.empty() || record > inserted_.back(),
                 "records are inserted in the order of their identifiers");
    if (drafts_.empty()) {
        for (const NSPropertyDescription& property : entity.properties) {
            drafts_.emplace_back(property.type);
        }
    }
    inserted_.push_back(record);
    if (removedCount_ > 0) {
        removed_.push_back(false);
    }
    for (DraftColumn& draft : drafts_) {
        draft.addRow();
    }
    for (const auto& [property, value] : values) {
        drafts_[property].set(inserted_.size() - 1, value);
    }
}

void EntityChanges::set(const NSEntityDescription& entity, RecordCounter record,
                        PropertyIndex property, const FieldView& field) {
    if (const auto row = rowOf(record)) {
        drafts_[property].set(*row, field);
        noteKeys(entity, record, property, field);
        return;
    }
    RowUpdate& update = updates_[record];
    if (Field* existing = findIn(update, property)) {
        *existing = fieldOf(field);
    } else {
        update.emplace_back(property, fieldOf(field));
    }
    noteKeys(entity, record, property, field);
}

std::optional<std::uint64_t> EntityChanges::keyOfRow(const NSIndexDescription& index,
                                                     std::size_t row) const {
    return IndexKeys::ofRecord(index,
                               [&](PropertyIndex property) { return drafts_[property].at(row); });
}

void EntityChanges::noteKeys(const NSEntityDescription& entity, RecordCounter record,
                             PropertyIndex changed, const FieldView& field) {
    keys_.resize(entity.indexes.size());
    const std::optional<std::size_t> row = rowOf(record);
    for (std::size_t i = 0; i < entity.indexes.size(); ++i) {
        const NSIndexDescription& index = entity.indexes[i];
        if (std::find(index.properties.begin(), index.properties.end(), changed) ==
                index.properties.end() ||
            (row && *row >= keys_[i].knownRows)) {
            continue;
        }
        if (index.properties.size() > 1 && !row) {
            // The other properties of the key are below; such a record is a candidate for every key
            // (see candidates()).
            keys_[i].table.add(0, record);
            continue;
        }
        const auto key = row ? keyOfRow(index, *row) : IndexKeys::ofField(field);
        if (key) {
            keys_[i].table.add(*key, record);
        }
    }
}

void EntityChanges::remove(RecordCounter record) {
    updates_.erase(record);
    if (const auto row = rowOf(record)) {
        removed_.resize(inserted_.size(), false);
        removed_[*row] = true;
        ++removedCount_;
        return;
    }
    deletes_.insert(record);
}

EntityChanges::RecordChanges EntityChanges::changesOf(RecordCounter record) const {
    RecordChanges changes;
    changes.insertedRow = rowOf(record);
    if (changes.insertedRow) {
        return changes;
    }
    if (!updates_.empty()) {
        const auto update = updates_.find(record);
        changes.update = update != updates_.end() ? &update->second : nullptr;
    }
    changes.isDeleted = isDeleted(record);
    return changes;
}

void EntityChanges::candidates(const NSEntityDescription& entity, std::size_t index,
                               std::uint64_t key, std::vector<RecordCounter>& found) {
    keys_.resize(entity.indexes.size());
    IndexKeyTable& keys = keys_[index];
    for (; keys.knownRows < inserted_.size(); ++keys.knownRows) {
        if (const auto own = keyOfRow(entity.indexes[index], keys.knownRows)) {
            keys.table.add(*own, inserted_[keys.knownRows]);
        }
    }
    const auto add = [&](RecordCounter record) { found.push_back(record); };
    keys.table.forEachEqual(key, add);
    if (key != 0 && !updates_.empty()) {
        keys.table.forEachEqual(0, add);
    }
}

std::vector<RecordCounter> EntityChanges::insertedRecords() const {
    std::vector<RecordCounter> records;
    records.reserve(insertedCount());
    forEachInserted([&](RecordCounter record, std::size_t) { records.push_back(record); });
    return records;
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
