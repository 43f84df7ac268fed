// One SQLite file with all records, and the version of them that was saved last.
//
// Queue: version(), allocate() and the rest from any queue; writes are one after the other behind a
// lock of their own. Who owns: the containers that opened the file share one object, so that a file
// is in memory once however often it is opened in a process. Errors are one line that names the
// file and says what to do; the file then is as it was.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/coredata/ChangeSet.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/Result.h"
#include "platform/sqlite/SQLiteDatabase.h"

namespace tavrion {

/// What the file of a store must carry.
struct StoreFormat {
    /// SQLite's application_id: tells the program's files from others.
    std::int32_t applicationID = 0;
    /// SQLite's user_version: the newest version of the tables that this program knows. At least 1.
    std::int32_t version = 1;
    /// What people call the file and the program in a message.
    std::string programName;
    /// SQL that takes a file from version i + 1 to version i + 2; one entry less than `version`.
    std::vector<std::string> steps = {};
    /// The folder beside the file where its safety copies are; empty when there is none.
    std::string safetyCopies = {};
};

/// What a store is opened for.
enum class StoreAccess {
    writing,
    /// The file is read and let go again: nothing is made, changed or brought up to date.
    reading
};

class NSPersistentStore {
  public:
    using Commits = std::vector<std::shared_ptr<const ChangeSet>>;

    /// Opens the file, makes it when missing, and reads all records. A file that is open in this
    /// process for writing already gives the same object. The directory must exist. Older versions
    /// are brought up to date after a copy beside the file. Opened for reading, a missing file has
    /// no records, an older one is refused, and every object shows the file as it was found.
    static Result<std::shared_ptr<NSPersistentStore>> open(
        const std::filesystem::path& file, std::shared_ptr<const NSManagedObjectModel> model,
        const StoreFormat& format, StoreAccess access = StoreAccess::writing);
    ~NSPersistentStore();

    const NSManagedObjectModel& model() const { return *model_; }
    const std::filesystem::path& file() const { return file_; }
    /// What is saved.
    std::shared_ptr<const StoreVersion> version() const;
    /// A counter that no record of the entity has had or will have.
    RecordCounter allocate(EntityIndex entity);

    /// Changes over a version, and what they make of it.
    struct Unsaved {
        Commits commits;
        std::shared_ptr<const StoreVersion> before;
        std::shared_ptr<const StoreVersion> after;
    };
    /// Writes changes in one transaction. When they are written, `all` is asked for everything that
    /// this transaction shall hold: these changes and those that came after them meanwhile. When
    /// `before` is still what is saved, `after` becomes it without being worked out again. `adopt`
    /// gets the new saved version in the same moment in which version() begins to give it; neither
    /// may call back.
    Result<void> write(
        const Commits& commits, const std::function<Unsaved()>& all,
        const std::function<void(const std::shared_ptr<const StoreVersion>&)>& adopt);
    /// For after a write, when nobody waits any more: what is saved goes from the write-ahead log
    /// to its place in the file once the log is long. A next write waits for it.
    void shortenLog();
    /// Deletes every record of the entity and its sub-entities from the file at once.
    Result<void> executeBatchDelete(EntityIndex entity);
    /// Writes a compact copy of what is saved to a file that does not exist yet.
    Result<void> copyTo(const std::filesystem::path& copy);
    /// The latest version in which a batch delete found the record; null when none did.
    std::shared_ptr<const StoreVersion> versionBeforeRemoval(NSManagedObjectID id) const;

  private:
    NSPersistentStore(std::filesystem::path file, StoreFormat format,
                      std::shared_ptr<const NSManagedObjectModel> model,
                      std::unique_ptr<SQLiteDatabase> database);
    static Result<std::shared_ptr<NSPersistentStore>> openFile(
        const std::filesystem::path& file, std::shared_ptr<const NSManagedObjectModel> model,
        const StoreFormat& format, StoreAccess access);
    Result<void> load();
    /// After the reading: nothing is written to the file.
    void letGoOfFile();
    /// Why the store can't be used, after it was read and looked through; its file is closed as it
    /// is there.
    NSError refuse(const Result<void>& loaded, const std::optional<std::string>& damage);
    Result<void> loadEntity(EntityIndex entity,
                            std::vector<std::shared_ptr<const TableVersion>>& tables)
        TAVRION_REQUIRES(writeMutex_);
    /// Does `work` in one transaction, all or nothing, on a file of the version that it had when it
    /// was opened.
    Result<void> transact(const std::function<Result<void>()>& work) TAVRION_REQUIRES(writeMutex_);
    Result<void> writeCommits(const Commits& commits, const std::function<const Commits&()>& all)
        TAVRION_REQUIRES(writeMutex_);
    Result<void> deleteRows(EntityIndex entity) TAVRION_REQUIRES(writeMutex_);
    Result<void> writeCounters() TAVRION_REQUIRES(writeMutex_);

    const std::filesystem::path file_;
    const StoreFormat format_;
    const std::shared_ptr<const NSManagedObjectModel> model_;
    std::vector<std::atomic<RecordCounter>> nextCounters_;

    Mutex writeMutex_;
    /// Null once a store that was opened for reading has been read.
    std::unique_ptr<SQLiteDatabase> database_ TAVRION_GUARDED_BY(writeMutex_);

    mutable Mutex versionMutex_;
    std::shared_ptr<const StoreVersion> version_ TAVRION_GUARDED_BY(versionMutex_);
    /// The last versions before batch deletes, for handles that outlive their records.
    std::vector<std::shared_ptr<const StoreVersion>> removed_ TAVRION_GUARDED_BY(versionMutex_);
};

}  // namespace tavrion
