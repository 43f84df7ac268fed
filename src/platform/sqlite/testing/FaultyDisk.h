// A disk under SQLite that fails when a test says so: the n-th write, sync, truncation or deletion,
// once or from then on.
//
// Queue: made and unmade on the test's thread while no database is open; armed and asked from any
// thread. While it lives, every database of the process is on it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace tavrion {

/// How the disk fails, by the system's name for it.
enum class DiskError {
    /// ENOSPC. A disk that stays full refuses writes only.
    noSpace,
    /// EIO. A disk that stays broken refuses everything that changes it.
    inputOutput
};

class FaultyDisk {
  public:
    FaultyDisk();
    ~FaultyDisk();
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;

    /// Lets `operations` changes of the disk succeed and fails the next one, or all from then on. A
    /// write that fails has written its first half.
    void failAfter(std::size_t operations, DiskError error, bool forGood);
    /// From now on nothing fails. What was noted stays.
    void repair();
    /// Whether something failed since failAfter().
    bool hasFailed() const;
    /// What failed first, such as "write Nerinda.sqlite-wal"; empty when nothing did.
    std::string failedOperation() const;

  private:
    class FileSystem;
    const std::unique_ptr<FileSystem> fileSystem_;
};

}  // namespace tavrion
