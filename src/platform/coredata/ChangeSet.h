// Inserts, changes and deletions that are not yet part of a version, and how they are folded into
// one.
//
// Queue: changed by its owner alone; once shared it is immutable. A record that was inserted here
// and deleted again leaves no trace. Folding is property-wise: a changed property wins over the
// version's, the others stay the version's; changes of records that the version no longer has are
// dropped.
#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/coredata/DraftColumn.h"
#include "platform/coredata/KeyTable.h"
#include "platform/coredata/StoreVersion.h"

namespace tavrion {

/// Changed properties of one record, each at most once.
using RowUpdate = std::vector<std::pair<PropertyIndex, Field>>;

class EntityChanges {
  public:
    bool empty() const { return insertedCount() == 0 && updates_.empty() && deletes_.empty(); }

    /// Records are inserted in the order of their identifiers.
    void insert(const NSEntityDescription& entity, RecordCounter record,
                std::span<const PropertyValue> values);
    /// `record` is inserted here or exists below.
    void set(const NSEntityDescription& entity, RecordCounter record, PropertyIndex property,
             const FieldView& field);
    void remove(RecordCounter record);

    std::size_t insertedCount() const { return inserted_.size() - removedCount_; }
    bool isInserted(RecordCounter record) const { return rowOf(record).has_value(); }
    bool isDeleted(RecordCounter record) const {
        return !deletes_.empty() && deletes_.contains(record);
    }
    /// What these changes say of one record.
    struct RecordChanges {
        /// Of a record that was inserted here.
        std::optional<std::size_t> insertedRow;
        /// Of a record below; null when it is as it was.
        const RowUpdate* update = nullptr;
        bool isDeleted = false;
    };
    RecordChanges changesOf(RecordCounter record) const;
    /// Adds to `found` the records that may have this key in that index.
    void candidates(const NSEntityDescription& entity, std::size_t index, std::uint64_t key,
                    std::vector<RecordCounter>& found);

    /// Calls `visit(record, row)` for each inserted record, in identifier order.
    template <class Visit>
    void forEachInserted(Visit visit) const {
        for (std::size_t row = 0; row < inserted_.size(); ++row) {
            if (!wasRemoved(row)) {
                visit(inserted_[row], row);
            }
        }
    }
    /// Calls `visit(first, last)` for each run of rows from `from` on that are not removed and
    /// whose records come before `bound` (0 is no bound); gives the first row from `bound` on.
    template <class Visit>
    std::size_t forEachRun(std::size_t from, RecordCounter bound, Visit visit) const {
        const auto end =
            bound == 0 ? inserted_.end()
                       : std::lower_bound(inserted_.begin() + static_cast<std::ptrdiff_t>(from),
                                          inserted_.end(), bound);
        const auto last = static_cast<std::size_t>(end - inserted_.begin());
        for (std::size_t row = from; row < last;) {
            std::size_t next = removedCount_ == 0 ? last : row;
            while (next < last && !removed_[next]) {
                ++next;
            }
            if (next > row) {
                visit(row, next);
            }
            row = next + 1;
        }
        return std::max(from, last);
    }
    /// Every record that was ever inserted here, removed ones among them, by row.
    std::span<const RecordCounter> insertedRows() const { return inserted_; }
    std::span<const DraftColumn> drafts() const { return drafts_; }
    /// A property of the inserted record in that row.
    FieldView insertedField(std::size_t row, PropertyIndex property) const {
        return drafts_[property].at(row);
    }
    /// In identifier order.
    std::vector<RecordCounter> insertedRecords() const;
    std::vector<RecordCounter> updatedRecords() const;
    std::vector<RecordCounter> deletedRecords() const;
    const RowUpdate& update(RecordCounter record) const { return updates_.at(record); }

  private:
    struct IndexKeyTable {
        KeyTable table;
        /// So many of the inserted rows are in the table; the others follow when somebody asks.
        std::size_t knownRows = 0;
    };
    std::optional<std::size_t> rowOf(RecordCounter record) const;
    bool wasRemoved(std::size_t row) const { return removedCount_ > 0 && removed_[row]; }
    void noteKeys(const NSEntityDescription& entity, RecordCounter record, PropertyIndex changed,
                  const FieldView& field);
    std::optional<std::uint64_t> keyOfRow(const NSIndexDescription& index, std::size_t row) const;

    /// Rising; a row of `drafts_` each.
    std::vector<RecordCounter> inserted_;
    /// Rows that were deleted again; filled up to the last such row.
    std::vector<bool> removed_;
    std::size_t removedCount_ = 0;
    std::vector<DraftColumn> drafts_;
    std::unordered_map<RecordCounter, RowUpdate> updates_;
    std::unordered_set<RecordCounter> deletes_;
    /// For each index of the entity, keys that records got here. A record may have moved on since;
    /// the caller checks.
    std::vector<IndexKeyTable> keys_;
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

/// One record as a version with changes over it has it. Lives no longer than either; a record that
/// neither has reads as never set.
class ChangedRecord {
  public:
    ChangedRecord(const NSEntityDescription& entity, std::optional<RowPosition> below)
        : entity_(entity), below_(below) {}
    ChangedRecord(const NSEntityDescription& entity, const EntityChanges& changes,
                  const EntityChanges::RecordChanges& record, std::optional<RowPosition> below)
        : entity_(entity), changes_(&changes), record_(record), below_(below) {}

    FieldView at(PropertyIndex property) const {
        if (record_.insertedRow) {
            return changes_->insertedField(*record_.insertedRow, property);
        }
        if (record_.update != nullptr) {
            for (const auto& [changed, field] : *record_.update) {
                if (changed == property) {
                    return viewOf(field);
                }
            }
        }
        return below_ ? below_->at(property) : unsetView(entity_.properties[property].type);
    }

  private:
    const NSEntityDescription& entity_;
    const EntityChanges* changes_ = nullptr;
    EntityChanges::RecordChanges record_;
    std::optional<RowPosition> below_;
};

/// Records as a version with changes over it has them. Lives no longer than either.
class ChangedView {
  public:
    ChangedView(const NSManagedObjectModel& model, const StoreVersion& version,
                const ChangeSet& changes)
        : model_(model), version_(version), changes_(changes) {}

    /// Nothing when there is no such record.
    std::optional<ChangedRecord> record(NSManagedObjectID id) const {
        const EntityChanges& changes = changes_.entity(id.entity);
        const EntityChanges::RecordChanges own = changes.changesOf(id.counter);
        if (own.insertedRow) {
            return ChangedRecord(model_.entity(id.entity), changes, own, std::nullopt);
        }
        const std::optional<RowPosition> below = own.isDeleted ? std::nullopt : version_.find(id);
        return below ? std::optional<ChangedRecord>(std::in_place, model_.entity(id.entity),
                                                    changes, own, below)
                     : std::nullopt;
    }
    bool sees(NSManagedObjectID id) const { return record(id).has_value(); }

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
