#include <algorithm>
#include <span>

#include "platform/coredata/ChangeSet.h"
#include "platform/coredata/IndexKeys.h"

namespace tavrion {
namespace {

/// Folds the changes of one entity into its table, leaf by leaf.
class TableFolding {
  public:
    TableFolding(const NSEntityDescription& entity, const TableVersion& base,
                 const EntityChanges& changes)
        : entity_(entity),
          base_(base),
          changes_(changes),
          inserts_(changes.insertedRows()),
          updates_(changes.updatedRecords()),
          deletes_(changes.deletedRecords()),
          writer_(entity),
          removed_(entity.indexes.size()),
          added_(entity.indexes.size()) {}

    std::shared_ptr<const TableVersion> result() {
        const auto& leaves = base_.leaves();
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            const bool isLast = i + 1 == leaves.size();
            foldLeaf(leaves[i], isLast ? 0 : leaves[i + 1]->records->front());
        }
        insertBefore(0);
        auto table = std::make_shared<TableVersion>(writer_.finish());
        std::vector<std::shared_ptr<const SortedIndex>> indexes;
        for (std::size_t i = 0; i < entity_.indexes.size(); ++i) {
            const bool same = removed_[i].empty() && added_[i].empty();
            indexes.push_back(
                same ? base_.indexes()[i]
                     : base_.indexes()[i]->changed(std::move(removed_[i]), std::move(added_[i])));
        }
        table->setIndexes(std::move(indexes));
        return table;
    }

  private:
    using Position = std::vector<RecordCounter>::const_iterator;

    /// How many of the sorted `records` from `next` on are before `bound` (0 is no bound).
    static std::size_t countBefore(Position next, Position end, RecordCounter bound) {
        return static_cast<std::size_t>((bound == 0 ? end : std::lower_bound(next, end, bound)) -
                                        next);
    }

    /// Whether an inserted record comes before `bound` (0 is no bound). It may have been removed
    /// again, which costs a copy of a leaf and nothing else.
    bool insertsBefore(RecordCounter bound) const {
        return nextInsert_ < inserts_.size() && (bound == 0 || inserts_[nextInsert_] < bound);
    }

    void foldLeaf(const std::shared_ptr<const TableLeaf>& leaf, RecordCounter bound);

    /// Moves past deletions of records that are not there.
    bool isNextDelete(RecordCounter record) {
        nextDelete_ = std::lower_bound(nextDelete_, deletes_.cend(), record);
        return nextDelete_ != deletes_.cend() && *nextDelete_ == record;
    }

    /// The leaf with the next `count` updates; columns without a change are shared.
    std::shared_ptr<const TableLeaf> updatedLeaf(const std::shared_ptr<const TableLeaf>& leaf,
                                                 std::size_t count);

    static std::shared_ptr<const Column> changedColumn(
        const Column& column, const std::vector<std::pair<std::size_t, const Field*>>& changed) {
        auto next = std::make_shared<Column>(column.type());
        next->reserve(column.size());
        std::size_t copied = 0;
        for (const auto& [row, field] : changed) {
            next->appendRange(column, copied, row);
            next->append(viewOf(*field));
            copied = row + 1;
        }
        next->appendRange(column, copied, column.size());
        return next;
    }

    /// Writes the inserted records before `bound` (0 is no bound).
    void insertBefore(RecordCounter bound) {
        nextInsert_ =
            changes_.forEachRun(nextInsert_, bound, [&](std::size_t first, std::size_t last) {
                writer_.addDrafts(inserts_, changes_.drafts(), first, last, added_);
            });
    }

    void noteRemoved(const TableLeaf& leaf, std::size_t row) {
        noteKeys(removed_, (*leaf.records)[row],
                 [&](PropertyIndex property) { return leaf.columns[property]->at(row); });
    }

    template <class Read>
    void noteKeys(IndexEntries& entries, RecordCounter record, Read read) {
        for (std::size_t i = 0; i < entity_.indexes.size(); ++i) {
            if (const auto key = IndexKeys::ofRecord(entity_.indexes[i], read)) {
                entries[i].push_back({*key, record});
            }
        }
    }

    void noteChangedKeys(const TableLeaf& leaf, std::size_t row, const RowUpdate& update);

    const NSEntityDescription& entity_;
    const TableVersion& base_;
    const EntityChanges& changes_;
    const std::span<const RecordCounter> inserts_;
    const std::vector<RecordCounter> updates_;
    const std::vector<RecordCounter> deletes_;
    /// A row of the inserts.
    std::size_t nextInsert_ = 0;
    Position nextUpdate_ = updates_.cbegin();
    Position nextDelete_ = deletes_.cbegin();
    TableWriter writer_;
    IndexEntries removed_;
    IndexEntries added_;
};

void TableFolding::foldLeaf(const std::shared_ptr<const TableLeaf>& leaf, RecordCounter bound) {
    const bool inserting = insertsBefore(bound);
    const bool deleting = countBefore(nextDelete_, deletes_.cend(), bound) > 0;
    const std::size_t updating = countBefore(nextUpdate_, updates_.cend(), bound);
    if (!inserting && !deleting && updating == 0) {
        writer_.share(leaf);
        return;
    }
    const std::shared_ptr<const TableLeaf> current =
        updating > 0 ? updatedLeaf(leaf, updating) : leaf;
    if (!inserting && !deleting) {
        writer_.share(current);
        return;
    }
    std::size_t copied = 0;
    for (std::size_t row = 0; row < current->size(); ++row) {
        const RecordCounter record = (*current->records)[row];
        const bool insertsHere = insertsBefore(record);
        const bool deletesHere = isNextDelete(record);
        if (insertsHere || deletesHere) {
            writer_.addRange(*current, copied, row);
            copied = deletesHere ? row + 1 : row;
        }
        if (insertsHere) {
            insertBefore(record);
        }
        if (deletesHere) {
            noteRemoved(*current, row);
        }
    }
    writer_.addRange(*current, copied, current->size());
    if (bound != 0) {
        insertBefore(bound);
        nextDelete_ = std::lower_bound(nextDelete_, deletes_.cend(), bound);
    }
}

std::shared_ptr<const TableLeaf> TableFolding::updatedLeaf(
    const std::shared_ptr<const TableLeaf>& leaf, std::size_t count) {
    std::vector<std::vector<std::pair<std::size_t, const Field*>>> changed(leaf->columns.size());
    const std::vector<RecordCounter>& records = *leaf->records;
    for (; count > 0; --count, ++nextUpdate_) {
        const auto found = std::lower_bound(records.begin(), records.end(), *nextUpdate_);
        if (found == records.end() || *found != *nextUpdate_) {
            continue;
        }
        const auto row = static_cast<std::size_t>(found - records.begin());
        const RowUpdate& update = changes_.update(*nextUpdate_);
        for (const auto& [property, field] : update) {
            changed[property].emplace_back(row, &field);
        }
        noteChangedKeys(*leaf, row, update);
    }
    auto next = std::make_shared<TableLeaf>(*leaf);
    for (std::size_t property = 0; property < changed.size(); ++property) {
        if (!changed[property].empty()) {
            next->columns[property] = changedColumn(*leaf->columns[property], changed[property]);
        }
    }
    return next;
}

void TableFolding::noteChangedKeys(const TableLeaf& leaf, std::size_t row,
                                   const RowUpdate& update) {
    const auto before = [&](PropertyIndex property) { return leaf.columns[property]->at(row); };
    const auto after = [&](PropertyIndex property) {
        const auto changed = std::find_if(update.begin(), update.end(), [&](const auto& entry) {
            return entry.first == property;
        });
        return changed != update.end() ? viewOf(changed->second) : before(property);
    };
    const RecordCounter record = (*leaf.records)[row];
    for (std::size_t i = 0; i < entity_.indexes.size(); ++i) {
        const std::optional<std::uint64_t> old = IndexKeys::ofRecord(entity_.indexes[i], before);
        const std::optional<std::uint64_t> now = IndexKeys::ofRecord(entity_.indexes[i], after);
        if (old == now) {
            continue;
        }
        if (old) {
            removed_[i].push_back({*old, record});
        }
        if (now) {
            added_[i].push_back({*now, record});
        }
    }
}

}  // namespace

std::shared_ptr<const StoreVersion> folded(const NSManagedObjectModel& model,
                                           const StoreVersion& base, const ChangeSet& changes) {
    std::vector<std::shared_ptr<const TableVersion>> tables = base.tables();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const auto entity = static_cast<EntityIndex>(i);
        if (!changes.entity(entity).empty()) {
            tables[i] =
                TableFolding(model.entity(entity), *tables[i], changes.entity(entity)).result();
        }
    }
    return std::make_shared<const StoreVersion>(std::move(tables));
}

std::shared_ptr<const StoreVersion> withoutEntity(const NSManagedObjectModel& model,
                                                  const StoreVersion& base, EntityIndex entity) {
    std::vector<std::shared_ptr<const TableVersion>> tables = base.tables();
    tables[entity] = StoreVersion::empty(model)->tables()[entity];
    return std::make_shared<const StoreVersion>(std::move(tables));
}

}  // namespace tavrion
