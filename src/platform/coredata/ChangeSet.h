// Inserts, changes and deletions that are not yet part of a version, and how they are folded into
// one.
//
// Queue: changed by its owner alone; once shared it is immutable. A record that was inserted here
// and deleted again leaves no trace. Folding is property-wise: a changed property wins over the
// version's, the others stay the version's; changes of records that the version no longer has are
// dropped.
#pragma once

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/coredata/StoreVersion.h"

namespace tavrion {

/// Changed properties of one record, each at most once.
using RowUpdate = std::vector<std::pair<PropertyIndex, Field>>;
/// All properties of one record.
using Row = std::vector<Field>;

class EntityChanges {
  public:
    bool empty() const { return insertedRow_.empty() && updates_.empty() && deletes_.empty(); }

    void insert(const NSEntityDescription& entity, RecordCounter record);
    /// `record` is inserted here or exists below.
    void set(const NSEntityDescription& entity, RecordCounter record, PropertyIndex property,
             Field field);
    void remove(RecordCounter record);

    bool isInserted(RecordCounter record) const { return insertedRow_.contains(record); }
    bool isDeleted(RecordCounter record) const { return deletes_.contains(record); }
    /// The field as these changes have it; null when they do not say.
    const Field* find(RecordCounter record, PropertyIndex property) const;
    /// Adds to `found` the records that may have this key in that index.
    void candidates(std::size_t index, std::uint64_t key, std::vector<RecordCounter>& found) const;

    /// In identifier order.
    std::vector<RecordCounter> insertedRecords() const;
    std::vector<RecordCounter> updatedRecords() const;
    std::vector<RecordCounter> deletedRecords() const;
    const Row& insertedRow(RecordCounter record) const { return rows_[insertedRow_.at(record)]; }
    const RowUpdate& update(RecordCounter record) const { return updates_.at(record); }

  private:
    void noteKeys(const NSEntityDescription& entity, RecordCounter record, PropertyIndex changed);

    std::vector<Row> rows_;
    std::unordered_map<RecordCounter, std::uint32_t> insertedRow_;
    std::unordered_map<RecordCounter, RowUpdate> updates_;
    std::unordered_set<RecordCounter> deletes_;
    /// For each index of the entity, keys that records got here. A record may have moved on since;
    /// the caller checks.
    std::vector<std::unordered_multimap<std::uint64_t, RecordCounter>> keys_;
};

class ChangeSet {
  public:
    ChangeSet() = default;
    explicit ChangeSet(const NSManagedObjectModel& model) : entities_(model.entities().size()) {}

    bool empty() const;
    EntityChanges& entity(EntityIndex index) { return entities_[index]; }
    const EntityChanges& entity(EntityIndex index) const { return entities_[index]; }
    std::size_t entityCount() const { return entities_.size(); }

  private:
    std::vector<EntityChanges> entities_;
};

/// Records as a version with changes over it has them. Lives no longer than either.
class ChangedView {
  public:
    ChangedView(const NSManagedObjectModel& model, const StoreVersion& version,
                const ChangeSet& changes)
        : model_(model), version_(version), changes_(changes) {}

    bool sees(NSManagedObjectID id) const {
        const EntityChanges& changes = changes_.entity(id.entity);
        return changes.isInserted(id.counter) ||
               (!changes.isDeleted(id.counter) && version_.find(id).has_value());
    }
    /// Never set when there is no such record.
    FieldView field(NSManagedObjectID id, PropertyIndex property) const {
        if (const Field* field = changes_.entity(id.entity).find(id.counter, property)) {
            return viewOf(*field);
        }
        const std::optional<RowPosition> position = version_.find(id);
        return position ? position->at(property)
                        : unsetView(model_.entity(id.entity).properties[property].type);
    }

  private:
    const NSManagedObjectModel& model_;
    const StoreVersion& version_;
    const ChangeSet& changes_;
};

/// `base` with `changes`.
std::shared_ptr<const StoreVersion> folded(const NSManagedObjectModel& model,
                                           const StoreVersion& base, const ChangeSet& changes);
/// `base` without any record of `entity`.
std::shared_ptr<const StoreVersion> withoutEntity(const NSManagedObjectModel& model,
                                                  const StoreVersion& base, EntityIndex entity);

}  // namespace tavrion
