#include "platform/coredata/NSPersistentStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include "platform/coredata/ChangeWriter.h"
#include "platform/coredata/StoreCheck.h"
#include "platform/coredata/StoreCopy.h"
#include "platform/coredata/StoreFile.h"
#include "platform/coredata/StoreMessages.h"

namespace tavrion {
namespace {

/// The stores that are open in this process, so that a second container of the same file shares the
/// first one's.
struct OpenStores {
    Mutex mutex;
    std::map<std::filesystem::path, std::weak_ptr<NSPersistentStore>> byFile
        TAVRION_GUARDED_BY(mutex);
};

OpenStores& openStores() {
    static OpenStores shared;
    return shared;
}

/// Whether a record can have the number for its counter.
bool isCounter(std::int64_t number) {
    return number > 0 && number < std::numeric_limits<RecordCounter>::max();
}

/// Takes over one value of a row. SQLite reads NULL as 0 and as no text, which is what an unset
/// number, reference and text are.
void appendValue(Column& column, const SQLiteStatement& row, int place) {
    switch (column.type()) {
        case NSAttributeType::boolean:
            column.appendBoolean(row.integer(place) != 0);
            break;
        case NSAttributeType::integer:
            column.appendInteger(row.integer(place));
            break;
        case NSAttributeType::real:
            column.appendReal(row.real(place));
            break;
        case NSAttributeType::date: {
            const double seconds = row.real(place);
            column.appendReal(seconds == 0 && row.isNull(place)
                                  ? std::numeric_limits<double>::quiet_NaN()
                                  : seconds);
            break;
        }
        case NSAttributeType::string:
            column.appendText(row.optionalText(place));
            break;
        case NSAttributeType::binaryData:
            column.appendText(row.isNull(place) ? std::nullopt : std::optional(row.blob(place)));
            break;
        case NSAttributeType::reference: {
            // Cut to a counter's width, what can't be a counter would point to some other record.
            const std::int64_t target = row.integer(place);
            column.appendReference(isCounter(target) ? static_cast<RecordCounter>(target) : 0);
            break;
        }
    }
}

std::vector<std::shared_ptr<const SortedIndex>> indexesOf(const NSEntityDescription& entity,
                                                          const TableVersion& table) {
    IndexEntries keys(entity.indexes.size());
    for (std::vector<SortedIndex::Entry>& entries : keys) {
        entries.reserve(table.size());
    }
    for (const auto& leaf : table.leaves()) {
        collectKeys(entity, *leaf, keys);
    }
    std::vector<std::shared_ptr<const SortedIndex>> indexes;
    indexes.reserve(keys.size());
    for (std::vector<SortedIndex::Entry>& entries : keys) {
        indexes.push_back(SortedIndex::build(std::move(entries)));
    }
    return indexes;
}

}  // namespace

Result<std::shared_ptr<NSPersistentStore>> NSPersistentStore::open(
    const std::filesystem::path& file, std::shared_ptr<const NSManagedObjectModel> model,
    const StoreFormat& format, StoreAccess access) {
    // What was read is not shared: a later reader shall find what has been written since.
    if (access == StoreAccess::reading) {
        return openFile(file, std::move(model), format, access);
    }
    std::error_code failure;
    std::filesystem::path key = std::filesystem::weakly_canonical(file, failure);
    if (failure) {
        key = file;
    }
    MutexLock lock(openStores().mutex);
    if (auto store = openStores().byFile[key].lock()) {
        return store;
    }
    auto store = openFile(file, std::move(model), format, access);
    if (store) {
        openStores().byFile[key] = store.value();
    }
    return store;
}

Result<std::shared_ptr<NSPersistentStore>> NSPersistentStore::openFile(
    const std::filesystem::path& file, std::shared_ptr<const NSManagedObjectModel> model,
    const StoreFormat& format, StoreAccess access) {
    const bool reads = access == StoreAccess::reading;
    auto opened =
        reads ? StoreFile::openForReading(file, format) : StoreFile::open(file, *model, format);
    if (!opened) {
        return opened.error();
    }
    std::optional<StoreCheck> check;
    if (const SQLiteDatabase* database = opened.value().database.get()) {
        check.emplace(database->file(), opened.value().besideIt);
    }
    std::shared_ptr<NSPersistentStore> store(
        new NSPersistentStore(file, format, std::move(model), std::move(opened.value().database)));
    const Result<void> loaded = store->load();
    const std::optional<std::string> damage = check ? check->damage() : std::nullopt;
    if (!loaded || damage) {
        return store->refuse(loaded, damage);
    }
    if (reads) {
        store->letGoOfFile();
    }
    return store;
}

void NSPersistentStore::letGoOfFile() {
    MutexLock lock(writeMutex_);
    if (database_) {
        StoreFile::closeUntouched(std::move(database_));
    }
}

NSPersistentStore::NSPersistentStore(std::filesystem::path file, StoreFormat format,
                                     std::shared_ptr<const NSManagedObjectModel> model,
                                     std::unique_ptr<SQLiteDatabase> database)
    : file_(std::move(file)),
      format_(std::move(format)),
      model_(std::move(model)),
      nextCounters_(model_->entities().size()),
      database_(std::move(database)),
      version_(StoreVersion::empty(*model_)) {
    for (auto& next : nextCounters_) {
        next = 1;
    }
}

NSPersistentStore::~NSPersistentStore() = default;

std::shared_ptr<const StoreVersion> NSPersistentStore::version() const {
    MutexLock lock(versionMutex_);
    return version_;
}

RecordCounter NSPersistentStore::allocate(EntityIndex entity) {
    const RecordCounter counter = nextCounters_[entity].fetch_add(1);
    precondition(isCounter(counter), "a store holds at most 4294967294 records of an entity");
    return counter;
}

NSError NSPersistentStore::refuse(const Result<void>& loaded,
                                  const std::optional<std::string>& damage) {
    MutexLock lock(writeMutex_);
    NSError why = damage ? StoreMessages::damaged(file_, format_, *damage)
                         : StoreMessages::unreadable(*database_, format_, loaded.error());
    StoreFile::closeUntouched(std::move(database_));
    return why;
}

Result<void> NSPersistentStore::load() {
    MutexLock lock(writeMutex_);
    if (!database_) {
        return {};
    }
    // One read transaction, so that all tables are of the same moment though another process may
    // write.
    if (auto begun = database_->execute("BEGIN"); !begun) {
        return begun;
    }
    std::vector<std::shared_ptr<const TableVersion>> tables =
        StoreVersion::empty(*model_)->tables();
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (!model_->entities()[i].isAbstract) {
            if (auto loaded = loadEntity(static_cast<EntityIndex>(i), tables); !loaded) {
                return loaded;
            }
        }
    }
    if (auto ended = database_->execute("COMMIT"); !ended) {
        return ended;
    }
    auto version = std::make_shared<const StoreVersion>(std::move(tables));
    MutexLock versionLock(versionMutex_);
    version_ = std::move(version);
    return {};
}

Result<void> NSPersistentStore::loadEntity(
    EntityIndex index, std::vector<std::shared_ptr<const TableVersion>>& tables) {
    const NSEntityDescription& entity = model_->entity(index);
    std::string columns = "id";
    for (const NSPropertyDescription& property : entity.properties) {
        columns += ", " + property.name;
    }
    auto counter = database_->prepare(
        fmt::format("SELECT next FROM Counter WHERE entity = '{}'", entity.name));
    auto rows =
        database_->prepare(fmt::format("SELECT {} FROM {} ORDER BY id", columns, entity.name));
    if (!counter || !rows) {
        return counter ? rows.error() : counter.error();
    }
    TableWriter writer(entity);
    SQLiteStatement& row = rows.value();
    RecordCounter last = 0;
    for (;;) {
        const Result<bool> more = row.step();
        if (!more) {
            return more.error();
        }
        if (!more.value()) {
            break;
        }
        const std::int64_t id = row.integer(0);
        if (id <= last || !isCounter(id)) {
            return NSError{
                fmt::format("table {} has a record with the identifier {}", entity.name, id), {}};
        }
        last = static_cast<RecordCounter>(id);
        int place = 0;
        for (const std::shared_ptr<Column>& column : writer.beginRow(last)) {
            appendValue(*column, row, ++place);
        }
        writer.endRow();
    }
    auto table = std::make_shared<TableVersion>(writer.finish());
    table->setIndexes(indexesOf(entity, *table));
    tables[index] = std::move(table);
    const Result<bool> hasCounter = counter.value().step();
    if (!hasCounter) {
        return hasCounter.error();
    }
    const std::int64_t stored = hasCounter.value() ? counter.value().integer(0) : 0;
    if (!isCounter(stored)) {
        return NSError{
            fmt::format("the next identifier of table {} is said to be {}", entity.name, stored),
            {}};
    }
    nextCounters_[index] = std::max<RecordCounter>(last + 1, static_cast<RecordCounter>(stored));
    return {};
}

Result<void> NSPersistentStore::write(
    const Commits& commits, const std::function<Unsaved()>& all,
    const std::function<void(const std::shared_ptr<const StoreVersion>&)>& adopt) {
    MutexLock lock(writeMutex_);
    Unsaved unsaved;
    const auto everything = [&]() -> const Commits& {
        unsaved = all();
        return unsaved.commits;
    };
    if (auto written = transact(
            [&]() TAVRION_REQUIRES(writeMutex_) { return writeCommits(commits, everything); });
        !written) {
        return written;
    }
    std::shared_ptr<const StoreVersion> saved = version();
    if (saved == unsaved.before) {
        saved = unsaved.after;
    } else {
        for (const auto& commit : unsaved.commits) {
            saved = folded(*model_, *saved, *commit);
        }
    }
    MutexLock versionLock(versionMutex_);
    version_ = saved;
    adopt(saved);
    StoreVersion::notePublication();
    return {};
}

void NSPersistentStore::shortenLog() {
    MutexLock lock(writeMutex_);
    if (database_) {
        database_->shortenLog();
    }
}

Result<void> NSPersistentStore::transact(const std::function<Result<void>()>& work) {
    if (!database_) {
        return StoreMessages::forReadingAlone(file_);
    }
    const auto unsaved = [&](const NSError& cause) TAVRION_REQUIRES(writeMutex_) {
        return StoreMessages::unsaved(*database_, format_, cause);
    };
    auto transaction = SQLiteTransaction::begin(*database_);
    if (!transaction) {
        return unsaved(transaction.error());
    }
    // Another program may have brought the file to a version of which this one knows nothing.
    const auto version = StoreFile::versionOf(*database_);
    if (!version) {
        return unsaved(version.error());
    }
    if (version.value() > format_.version) {
        return StoreMessages::newer(file_, format_, version.value());
    }
    if (auto worked = work(); !worked) {
        return unsaved(worked.error());
    }
    if (auto committed = transaction.value().commit(); !committed) {
        return unsaved(committed.error());
    }
    return {};
}

Result<void> NSPersistentStore::writeCommits(const Commits& commits,
                                             const std::function<const Commits&()>& all) {
    ChangeWriter writer(*model_, *database_);
    for (const auto& commit : commits) {
        if (auto written = writer.write(*commit); !written) {
            return written;
        }
    }
    const Commits& allCommits = all();
    for (std::size_t i = commits.size(); i < allCommits.size(); ++i) {
        if (auto written = writer.write(*allCommits[i]); !written) {
            return written;
        }
    }
    return writeCounters();
}

Result<void> NSPersistentStore::writeCounters() {
    auto update = database_->prepare("UPDATE Counter SET next = max(next, ?2) WHERE entity = ?1");
    if (!update) {
        return update.error();
    }
    for (std::size_t i = 0; i < nextCounters_.size(); ++i) {
        update.value().bindText(1, model_->entities()[i].name);
        update.value().bindInteger(2, nextCounters_[i].load());
        if (auto updated = update.value().run(); !updated) {
            return updated;
        }
    }
    return {};
}

Result<void> NSPersistentStore::deleteRows(EntityIndex entity) {
    for (const EntityIndex concrete : model_->concreteEntities(entity)) {
        if (auto deleted = database_->execute("DELETE FROM " + model_->entity(concrete).name);
            !deleted) {
            return deleted;
        }
    }
    return writeCounters();
}

Result<void> NSPersistentStore::executeBatchDelete(EntityIndex entity) {
    MutexLock lock(writeMutex_);
    if (auto deleted = transact([&]() TAVRION_REQUIRES(writeMutex_) { return deleteRows(entity); });
        !deleted) {
        return deleted;
    }
    database_->shortenLog();
    const std::shared_ptr<const StoreVersion> before = version();
    std::shared_ptr<const StoreVersion> after = before;
    for (const EntityIndex concrete : model_->concreteEntities(entity)) {
        after = withoutEntity(*model_, *after, concrete);
    }
    // A handful is enough: deleting everything takes one batch delete for each entity.
    constexpr std::size_t keptVersions = 8;
    MutexLock versionLock(versionMutex_);
    version_ = std::move(after);
    removed_.push_back(before);
    if (removed_.size() > keptVersions) {
        removed_.erase(removed_.begin());
    }
    StoreVersion::notePublication();
    return {};
}

Result<void> NSPersistentStore::copyTo(const std::filesystem::path& copy) {
    MutexLock lock(writeMutex_);
    if (!database_) {
        return StoreMessages::forReadingAlone(file_);
    }
    return StoreCopy::make(*database_, copy);
}

std::shared_ptr<const StoreVersion> NSPersistentStore::versionBeforeRemoval(
    NSManagedObjectID id) const {
    MutexLock lock(versionMutex_);
    const auto found = std::find_if(removed_.rbegin(), removed_.rend(), [&](const auto& version) {
        return version->find(id).has_value();
    });
    return found == removed_.rend() ? nullptr : *found;
}

}  // namespace tavrion
