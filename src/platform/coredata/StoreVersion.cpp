#include "platform/coredata/StoreVersion.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

#include "platform/coredata/IndexKeys.h"

namespace tavrion {
namespace {

std::uint64_t nextSequence() {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

/// From 1, so that 0 means that nobody has looked.
std::atomic<std::uint64_t>& publicationCount() {
    static std::atomic<std::uint64_t> count{1};
    return count;
}

}  // namespace

void TableVersion::appendLeaf(std::shared_ptr<const TableLeaf> leaf) {
    firsts_.push_back(leaf->records->front());
    size_ += leaf->size();
    leaves_.push_back(std::move(leaf));
}

std::optional<RowPosition> TableVersion::find(RecordCounter record) const {
    const auto after = std::upper_bound(firsts_.begin(), firsts_.end(), record);
    if (after == firsts_.begin()) {
        return std::nullopt;
    }
    const TableLeaf& leaf = *leaves_[static_cast<std::size_t>(after - firsts_.begin()) - 1];
    const std::vector<RecordCounter>& records = *leaf.records;
    // Most leaves have no holes, and the record stands at its distance from the first.
    const std::size_t guess = record - records.front();
    if (guess < records.size() && records[guess] == record) {
        return RowPosition{&leaf, guess};
    }
    const auto found = std::lower_bound(records.begin(), records.end(), record);
    if (found == records.end() || *found != record) {
        return std::nullopt;
    }
    return RowPosition{&leaf, static_cast<std::size_t>(found - records.begin())};
}

StoreVersion::StoreVersion(std::vector<std::shared_ptr<const TableVersion>> tables)
    : tables_(std::move(tables)), sequence_(nextSequence()) {}

std::uint64_t StoreVersion::publications() {
    return publicationCount().load();
}

void StoreVersion::notePublication() {
    publicationCount().fetch_add(1);
}

std::shared_ptr<const StoreVersion> StoreVersion::empty(const NSManagedObjectModel& model) {
    std::vector<std::shared_ptr<const TableVersion>> tables;
    for (const NSEntityDescription& entity : model.entities()) {
        auto table = std::make_shared<TableVersion>();
        table->setIndexes(std::vector<std::shared_ptr<const SortedIndex>>(
            entity.indexes.size(), std::make_shared<const SortedIndex>()));
        tables.push_back(std::move(table));
    }
    return std::make_shared<const StoreVersion>(std::move(tables));
}

void collectKeys(const NSEntityDescription& entity, std::span<const RecordCounter> records,
                 std::span<const Column* const> columns, std::size_t first, std::size_t last,
                 IndexEntries& keys) {
    for (std::size_t i = 0; i < entity.indexes.size(); ++i) {
        const NSIndexDescription& index = entity.indexes[i];
        const Column& column = *columns[index.properties.front()];
        std::vector<SortedIndex::Entry>& entries = keys[i];
        if (index.properties.size() == 1 && column.type() == NSAttributeType::date) {
            const std::span<const double> dates = column.reals();
            for (std::size_t row = first; row < last; ++row) {
                if (!std::isnan(dates[row])) {
                    entries.push_back({IndexKeys::ofNumber(dates[row]), records[row]});
                }
            }
        } else if (index.properties.size() == 1 && column.type() == NSAttributeType::reference) {
            const std::span<const RecordCounter> references = column.references();
            for (std::size_t row = first; row < last; ++row) {
                if (references[row] != 0) {
                    entries.push_back({references[row], records[row]});
                }
            }
        } else {
            for (std::size_t row = first; row < last; ++row) {
                const auto key = IndexKeys::ofRecord(
                    index, [&](PropertyIndex property) { return columns[property]->at(row); });
                if (key) {
                    entries.push_back({*key, records[row]});
                }
            }
        }
    }
}

void collectKeys(const NSEntityDescription& entity, const TableLeaf& leaf, IndexEntries& keys) {
    std::vector<const Column*> columns;
    for (const auto& column : leaf.columns) {
        columns.push_back(column.get());
    }
    collectKeys(entity, *leaf.records, columns, 0, leaf.size(), keys);
}

void TableWriter::addDrafts(std::span<const RecordCounter> records,
                            std::span<const DraftColumn> drafts, std::size_t first,
                            std::size_t last, IndexEntries& keys) {
    while (first < last) {
        open();
        const std::size_t before = records_->size();
        const std::size_t count = std::min(last - first, TableVersion::largestLeaf - before);
        records_->insert(records_->end(), records.begin() + static_cast<std::ptrdiff_t>(first),
                         records.begin() + static_cast<std::ptrdiff_t>(first + count));
        std::vector<const Column*> columns;
        for (std::size_t property = 0; property < columns_.size(); ++property) {
            columns_[property]->appendDrafts(drafts[property], first, first + count);
            columns.push_back(columns_[property].get());
        }
        collectKeys(entity_, *records_, columns, before, before + count, keys);
        first += count;
        closeWhenFull();
    }
}

void TableWriter::open() {
    if (records_) {
        return;
    }
    records_ = std::make_shared<std::vector<RecordCounter>>();
    for (const NSPropertyDescription& property : entity_.properties) {
        columns_.push_back(std::make_shared<Column>(property.type));
    }
}

void TableWriter::close() {
    if (!records_) {
        return;
    }
    auto leaf = std::make_shared<TableLeaf>();
    leaf->records = std::move(records_);
    leaf->columns.assign(columns_.begin(), columns_.end());
    table_.appendLeaf(std::move(leaf));
    records_ = nullptr;
    columns_.clear();
}

void TableWriter::addRange(const TableLeaf& leaf, std::size_t first, std::size_t last) {
    while (first < last) {
        open();
        const std::size_t count =
            std::min(last - first, TableVersion::largestLeaf - records_->size());
        const auto begin = leaf.records->begin() + static_cast<std::ptrdiff_t>(first);
        records_->insert(records_->end(), begin, begin + static_cast<std::ptrdiff_t>(count));
        for (std::size_t property = 0; property < columns_.size(); ++property) {
            columns_[property]->appendRange(*leaf.columns[property], first, first + count);
        }
        first += count;
        closeWhenFull();
    }
}

void TableWriter::share(std::shared_ptr<const TableLeaf> leaf) {
    // A nearly empty leaf is filled from the next one, so that deletions do not leave a trail of
    // slivers.
    if (records_ && records_->size() < TableVersion::largestLeaf / 8) {
        addRange(*leaf, 0, leaf->size());
        return;
    }
    close();
    table_.appendLeaf(std::move(leaf));
}

TableVersion TableWriter::finish() {
    close();
    return std::move(table_);
}

}  // namespace tavrion
