// All records at one moment: immutable tables of columns with their indexes.
//
// Queue: any; immutable and shared. A later version shares every leaf that did not change. Rows
// stand in identifier order. A version made later has the higher sequence number.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/coredata/Column.h"
#include "platform/coredata/SortedIndex.h"

namespace tavrion {

/// A run of rows. Columns stand in the order of the entity's properties.
struct TableLeaf {
    std::shared_ptr<const std::vector<RecordCounter>> records;
    std::vector<std::shared_ptr<const Column>> columns;

    std::size_t size() const { return records->size(); }
};

/// Where a record stands; lives no longer than its table version.
struct RowPosition {
    const TableLeaf* leaf = nullptr;
    std::size_t row = 0;
    FieldView at(PropertyIndex property) const { return leaf->columns[property]->at(row); }
};

/// The records of one entity.
class TableVersion {
  public:
    /// How many rows a leaf may hold.
    static constexpr std::size_t largestLeaf = 2048;

    std::size_t size() const { return size_; }
    const std::vector<std::shared_ptr<const TableLeaf>>& leaves() const { return leaves_; }
    /// In the order of the entity's indexes.
    const std::vector<std::shared_ptr<const SortedIndex>>& indexes() const { return indexes_; }
    std::optional<RowPosition> find(RecordCounter record) const;

    /// For whoever puts a version together: leaves in order, none of them empty.
    void appendLeaf(std::shared_ptr<const TableLeaf> leaf);
    void setIndexes(std::vector<std::shared_ptr<const SortedIndex>> indexes) {
        indexes_ = std::move(indexes);
    }

  private:
    std::vector<std::shared_ptr<const TableLeaf>> leaves_;
    std::vector<RecordCounter> firsts_;
    std::vector<std::shared_ptr<const SortedIndex>> indexes_;
    std::size_t size_ = 0;
};

class StoreVersion {
  public:
    /// A version with an empty table for every entity of the model.
    static std::shared_ptr<const StoreVersion> empty(const NSManagedObjectModel& model);
    /// Tables stand in the order of the model's entities.
    explicit StoreVersion(std::vector<std::shared_ptr<const TableVersion>> tables);

    std::uint64_t sequence() const { return sequence_; }
    /// Counts how often somebody in the process began to show another version. Whoever finds the
    /// same count as before has nothing new to look for; the count rises after the version is
    /// there.
    static std::uint64_t publications();
    static void notePublication();
    const TableVersion& table(EntityIndex entity) const { return *tables_[entity]; }
    const std::vector<std::shared_ptr<const TableVersion>>& tables() const { return tables_; }
    std::optional<RowPosition> find(NSManagedObjectID id) const {
        return tables_[id.entity]->find(id.counter);
    }

  private:
    std::vector<std::shared_ptr<const TableVersion>> tables_;
    std::uint64_t sequence_;
};

/// For each index of an entity, entries in any order.
using IndexEntries = std::vector<std::vector<SortedIndex::Entry>>;

/// Adds the keys of the rows from `first` to before `last` of columns that stand in the order of
/// the entity's properties.
void collectKeys(const NSEntityDescription& entity, std::span<const RecordCounter> records,
                 std::span<const Column* const> columns, std::size_t first, std::size_t last,
                 IndexEntries& keys);
/// The keys of a whole leaf.
void collectKeys(const NSEntityDescription& entity, const TableLeaf& leaf, IndexEntries& keys);

/// Cuts rows into leaves. Rows come in identifier order.
class TableWriter {
  public:
    explicit TableWriter(const NSEntityDescription& entity) : entity_(entity) {}

    /// Opens a row; the caller appends exactly one value to each column and calls endRow().
    std::span<const std::shared_ptr<Column>> beginRow(RecordCounter record) {
        open();
        records_->push_back(record);
        return columns_;
    }
    void endRow() { closeWhenFull(); }
    /// Adds the drafts of rows from `first` to before `last`, whose records are `records`, and to
    /// `keys` their keys by index.
    void addDrafts(std::span<const RecordCounter> records, std::span<const DraftColumn> drafts,
                   std::size_t first, std::size_t last, IndexEntries& keys);
    /// Adds rows of a leaf as they are.
    void addRange(const TableLeaf& leaf, std::size_t first, std::size_t last);
    /// Takes over a whole leaf, shared.
    void share(std::shared_ptr<const TableLeaf> leaf);
    TableVersion finish();

  private:
    void open();
    void close();
    void closeWhenFull() {
        if (records_->size() == TableVersion::largestLeaf) {
            close();
        }
    }

    const NSEntityDescription& entity_;
    TableVersion table_;
    std::shared_ptr<std::vector<RecordCounter>> records_;
    std::vector<std::shared_ptr<Column>> columns_;
};

}  // namespace tavrion
