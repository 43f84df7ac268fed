// The values of the user defaults as this process sees them: the file as it was last read, with
// what is not written yet laid over it.
//
// Queue: any. Who owns: NSUserDefaults; foundation's own, not for other rooms. Every call looks
// first whether the file is another one, and adds to `changes` what became different, in order; the
// caller tells the observers, so that nobody is called under a lock.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/DefaultsFile.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/Result.h"
#include "platform/foundation/Value.h"

namespace tavrion {

class DefaultsStore {
  public:
    /// A key and its new value, absent when it was removed.
    struct Change {
        std::string key;
        Value value;
    };
    using Changes = std::vector<Change>;

    /// In memory only.
    DefaultsStore() = default;
    explicit DefaultsStore(std::filesystem::path file) : file_(std::move(file)) {}
    DefaultsStore(const DefaultsStore&) = delete;
    DefaultsStore& operator=(const DefaultsStore&) = delete;

    Value value(const std::string& key, Changes& changes);
    Value::Dictionary allValues(Changes& changes);
    /// An absent value removes the key. What cannot be written stays in memory, for later tries.
    void store(const std::string& key, Value value, Changes& changes);
    void beginGathering();
    void endGathering(Changes& changes);
    /// Writes what is not in the file yet. The error is that of the write, or of a file that cannot
    /// be read.
    Result<void> synchronize(Changes& changes);

  private:
    Value visibleValue(const std::string& key) const TAVRION_REQUIRES(mutex_);
    Value::Dictionary visibleValues() const TAVRION_REQUIRES(mutex_);
    void refresh(Changes& changes) TAVRION_REQUIRES(mutex_);
    void take(DefaultsFileVersion version, Changes& changes) TAVRION_REQUIRES(mutex_);
    Result<void> write(Changes& changes) TAVRION_EXCLUDES(writing_, mutex_);

    /// Empty for values in memory only.
    const std::filesystem::path file_;
    /// Taken before `mutex_`, and held as long as the other processes and the disk take for a
    /// write; readers need not wait for those.
    Mutex writing_;
    Mutex mutex_;
    DefaultsFileVersion stored_ TAVRION_GUARDED_BY(mutex_);
    /// Of the version that was last looked at, also when it was damaged; absent when the next call
    /// is to look again.
    std::optional<FileStamp> seen_ TAVRION_GUARDED_BY(mutex_);
    /// Why the file as last seen cannot be read. While it stands, nothing is written over it.
    std::optional<NSError> damage_ TAVRION_GUARDED_BY(mutex_);
    /// What is not in the file yet; an absent value waits for the removal of its key.
    Value::Dictionary unwritten_ TAVRION_GUARDED_BY(mutex_);
    int gatherings_ TAVRION_GUARDED_BY(mutex_) = 0;
};

}  // namespace tavrion
