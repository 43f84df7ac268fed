#include "platform/sqlite/testing/FaultyDisk.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>
#include <string_view>

#include "platform/foundation/Mutex.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {

namespace {

/// Which operations fail, and how.
class DiskFault {
  public:
    enum class Operation { write, sync, truncate, remove, map };

    void arm(std::size_t operations, DiskError error, bool forGood) {
        MutexLock lock(mutex_);
        left_ = operations;
        error_ = error;
        forGood_ = forGood;
        armed_ = true;
        failed_.clear();
    }
    void disarm() {
        MutexLock lock(mutex_);
        armed_ = false;
    }
    std::string failed() const {
        MutexLock lock(mutex_);
        return failed_;
    }

    /// The code with which the operation fails; SQLITE_OK lets it through.
    int failure(Operation operation, const char* file) {
        MutexLock lock(mutex_);
        const bool counts = error_ == DiskError::inputOutput || failed_.empty() ||
                            operation == Operation::write || operation == Operation::map;
        if (!armed_ || !counts) {
            return SQLITE_OK;
        }
        if (left_ > 0) {
            --left_;
            return SQLITE_OK;
        }
        if (!failed_.empty() && !forGood_) {
            return SQLITE_OK;
        }
        if (failed_.empty()) {
            failed_ = nameOf(operation) + std::filesystem::path(file).filename().string();
        }
        errno = error_ == DiskError::noSpace ? ENOSPC : EIO;
        return codeOf(operation);
    }

  private:
    int codeOf(Operation operation) const TAVRION_REQUIRES(mutex_) {
        switch (operation) {
            case Operation::write:
                // Only here SQLite tells a full disk from a broken one.
                return error_ == DiskError::noSpace ? SQLITE_FULL : SQLITE_IOERR_WRITE;
            case Operation::sync:
                return SQLITE_IOERR_FSYNC;
            case Operation::truncate:
                return SQLITE_IOERR_TRUNCATE;
            case Operation::remove:
                return SQLITE_IOERR_DELETE;
            case Operation::map:
                return SQLITE_IOERR_SHMSIZE;
        }
        return SQLITE_IOERR;
    }
    static std::string nameOf(Operation operation) {
        switch (operation) {
            case Operation::write:
                return "write ";
            case Operation::sync:
                return "sync ";
            case Operation::truncate:
                return "truncate ";
            case Operation::remove:
                return "delete ";
            case Operation::map:
                return "extend the index of ";
        }
        return "";
    }

    mutable Mutex mutex_;
    bool armed_ TAVRION_GUARDED_BY(mutex_) = false;
    std::size_t left_ TAVRION_GUARDED_BY(mutex_) = 0;
    DiskError error_ TAVRION_GUARDED_BY(mutex_) = DiskError::noSpace;
    bool forGood_ TAVRION_GUARDED_BY(mutex_) = false;
    std::string failed_ TAVRION_GUARDED_BY(mutex_);
};

}  // namespace

/// The file system that SQLite sees, over the true one.
class FaultyDisk::FileSystem {
  public:
    FileSystem() : real_(sqlite3_vfs_find(nullptr)), shown_(*real_) {
        shown_.pNext = nullptr;
        shown_.zName = "faulty";
        shown_.pAppData = this;
        shown_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
        shown_.xOpen = open;
        shown_.xDelete = remove;
        const int code = sqlite3_vfs_register(&shown_, 1);
        precondition(code == SQLITE_OK, "SQLite takes another file system");
    }
    ~FileSystem() {
        sqlite3_vfs_unregister(&shown_);
        sqlite3_vfs_register(real_, 1);
    }
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;

    DiskFault& fault() { return fault_; }

  private:
    using Operation = DiskFault::Operation;

    /// What SQLite holds of an open file. Behind it is the true one.
    struct File {
        sqlite3_file base;
        FileSystem* owner;
        const char* name;

        static File& of(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }
        static sqlite3_file* real(sqlite3_file* file) {
            return reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(file) + sizeof(File));
        }
        static const sqlite3_io_methods& call(sqlite3_file* file) { return *real(file)->pMethods; }
    };

    static FileSystem& of(sqlite3_vfs* shown) { return *static_cast<FileSystem*>(shown->pAppData); }

    static int open(sqlite3_vfs* shown, sqlite3_filename name, sqlite3_file* file, int flags,
                    int* outFlags) {
        FileSystem& owner = of(shown);
        ::new (static_cast<void*>(file)) File{{nullptr}, &owner, name != nullptr ? name : ""};
        sqlite3_file* const real = File::real(file);
        std::memset(real, 0, static_cast<std::size_t>(owner.real_->szOsFile));
        const int code = owner.real_->xOpen(owner.real_, name, real, flags, outFlags);
        if (real->pMethods != nullptr) {
            file->pMethods = &methods();
        }
        return code;
    }
    static int remove(sqlite3_vfs* shown, const char* name, int syncFolder) {
        FileSystem& owner = of(shown);
        const int code = owner.fault_.failure(Operation::remove, name);
        return code != SQLITE_OK ? code : owner.real_->xDelete(owner.real_, name, syncFolder);
    }

    static int write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
        const int code =
            File::of(file).owner->fault_.failure(Operation::write, File::of(file).name);
        const int written = code == SQLITE_OK ? length : length / 2;
        const int done = File::call(file).xWrite(File::real(file), bytes, written, offset);
        return code != SQLITE_OK ? code : done;
    }
    static int truncate(sqlite3_file* file, sqlite3_int64 size) {
        const int code =
            File::of(file).owner->fault_.failure(Operation::truncate, File::of(file).name);
        return code != SQLITE_OK ? code : File::call(file).xTruncate(File::real(file), size);
    }
    static int sync(sqlite3_file* file, int flags) {
        const int code = File::of(file).owner->fault_.failure(Operation::sync, File::of(file).name);
        return code != SQLITE_OK ? code : File::call(file).xSync(File::real(file), flags);
    }
    static int map(sqlite3_file* file, int region, int size, int extends, void volatile** memory) {
        const int code =
            extends != 0 ? File::of(file).owner->fault_.failure(Operation::map, File::of(file).name)
                         : SQLITE_OK;
        return code != SQLITE_OK
                   ? code
                   : File::call(file).xShmMap(File::real(file), region, size, extends, memory);
    }

    /// The four that change the disk are ours, the others the true file's.
    static const sqlite3_io_methods& methods() {
        static const sqlite3_io_methods shared = [] {
            sqlite3_io_methods m{};
            // Version 2: no access to the file through mapped memory, which no fault could reach.
            m.iVersion = 2;
            m.xClose = [](sqlite3_file* f) { return File::call(f).xClose(File::real(f)); };
            m.xRead = [](sqlite3_file* f, void* bytes, int length, sqlite3_int64 offset) {
                return File::call(f).xRead(File::real(f), bytes, length, offset);
            };
            m.xWrite = write;
            m.xTruncate = truncate;
            m.xSync = sync;
            m.xFileSize = [](sqlite3_file* f, sqlite3_int64* size) {
                return File::call(f).xFileSize(File::real(f), size);
            };
            m.xLock = [](sqlite3_file* f, int kind) {
                return File::call(f).xLock(File::real(f), kind);
            };
            m.xUnlock = [](sqlite3_file* f, int kind) {
                return File::call(f).xUnlock(File::real(f), kind);
            };
            m.xCheckReservedLock = [](sqlite3_file* f, int* out) {
                return File::call(f).xCheckReservedLock(File::real(f), out);
            };
            m.xFileControl = [](sqlite3_file* f, int operation, void* argument) {
                return File::call(f).xFileControl(File::real(f), operation, argument);
            };
            m.xSectorSize = [](sqlite3_file* f) {
                return File::call(f).xSectorSize(File::real(f));
            };
            m.xDeviceCharacteristics = [](sqlite3_file* f) {
                return File::call(f).xDeviceCharacteristics(File::real(f));
            };
            m.xShmMap = map;
            m.xShmLock = [](sqlite3_file* f, int offset, int count, int flags) {
                return File::call(f).xShmLock(File::real(f), offset, count, flags);
            };
            m.xShmBarrier = [](sqlite3_file* f) { File::call(f).xShmBarrier(File::real(f)); };
            m.xShmUnmap = [](sqlite3_file* f, int deletes) {
                return File::call(f).xShmUnmap(File::real(f), deletes);
            };
            return m;
        }();
        return shared;
    }

    sqlite3_vfs* const real_;
    sqlite3_vfs shown_;
    DiskFault fault_;
};

FaultyDisk::FaultyDisk() : fileSystem_(std::make_unique<FileSystem>()) {}
FaultyDisk::~FaultyDisk() = default;

void FaultyDisk::failAfter(std::size_t operations, DiskError error, bool forGood) {
    fileSystem_->fault().arm(operations, error, forGood);
}
void FaultyDisk::repair() {
    fileSystem_->fault().disarm();
}
bool FaultyDisk::hasFailed() const {
    return !fileSystem_->fault().failed().empty();
}
std::string FaultyDisk::failedOperation() const {
    return fileSystem_->fault().failed();
}

}  // namespace tavrion
