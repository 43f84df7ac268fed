// The user defaults: named values that last, in one property list file shared by all processes of a
// user.
//
// Queue: any. Who owns: the composition root opens the file and plugs the object;
// standardUserDefaults() gives it. A missing key reads as absent, NO, or 0; nothing is registered.
// A write takes the lock beside the file, reads the file again, changes its one key and renames the
// new file into place, so that writers in several processes lose nothing; writing the value that is
// already there writes nothing. Readers notice another process's write at their next read. Dates
// keep all their digits. A file that is damaged while it is in use is never written over: this
// process keeps the values it has seen and those it sets, and synchronize() says what is wrong.
// Text that is not UTF-8, and a zero byte in a text, becomes U+FFFD, because a property list cannot
// hold it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Observation.h"
#include "platform/foundation/Port.h"
#include "platform/foundation/Result.h"
#include "platform/foundation/Value.h"

namespace tavrion {

class NSUserDefaults {
  public:
    static constexpr const char* portName = "user defaults are plugged in";
    /// Told the key and the new value (absent after a removal).
    using Observer = std::function<void(const std::string& key, const Value& value)>;

    using Observation = tavrion::Observation;

    /// Opens the list in `file`; a missing file is an empty list and is made by the first write. A
    /// file that cannot be read as a property list with a dictionary at its top is an error that
    /// names the file, and stays as it is.
    static Result<std::unique_ptr<NSUserDefaults>> open(const std::filesystem::path& file);
    /// Defaults that live in memory only.
    static std::unique_ptr<NSUserDefaults> inMemory();
    static NSUserDefaults& standardUserDefaults() { return Port<NSUserDefaults>::current(); }
    ~NSUserDefaults();

    Value objectForKey(const std::string& key) const;
    /// A number other than 0, or the bool itself; false for everything else.
    bool boolForKey(const std::string& key) const;
    /// 0 when missing or not a number; a real is cut towards zero.
    std::int64_t integerForKey(const std::string& key) const;
    std::optional<NSDate> dateForKey(const std::string& key) const;
    std::optional<std::string> stringForKey(const std::string& key) const;
    std::optional<NSData> dataForKey(const std::string& key) const;
    std::optional<Value::Array> arrayForKey(const std::string& key) const;
    std::optional<Value::Dictionary> dictionaryForKey(const std::string& key) const;
    /// All keys with their values.
    Value::Dictionary dictionaryRepresentation() const;

    /// Stores the value; an absent one removes the key. An ObjectReference cannot be stored and is
    /// a broken promise, and so is an absent member of an array; an absent member of a dictionary
    /// is left out. A dictionary with the one key "NS.time" and a real is how an instant is kept,
    /// and reads back as one. A failed write keeps the value in memory for this process. Later
    /// writes and synchronize() try it again, and synchronize() tells when it still fails.
    void setObject(const std::string& key, Value value);
    void removeObject(const std::string& key);

    /// Writes gathered until endGathering() (calls nest): the file is written once at the end.
    /// Reads in this process see the new values at once.
    void beginGathering();
    void endGathering();
    /// Writes what is not yet in the file, and reports what could not be written since the last
    /// call.
    Result<void> synchronize();

    /// Tells `observer` of every change of `key`, on `queue`, or on the writer's queue when `queue`
    /// is null. A change made by another process is reported when this process first notices it.
    /// The changes of two writers at once may be reported in either order.
    [[nodiscard]] Observation addObserver(const std::string& key, Executor* queue,
                                          Observer observer);

  private:
    struct State;
    explicit NSUserDefaults(std::shared_ptr<State> state);
    std::shared_ptr<State> state_;
};

/// Gathers the writes of a scope.
class GatheredDefaultsWrites {
  public:
    explicit GatheredDefaultsWrites(NSUserDefaults& defaults) : defaults_(defaults) {
        defaults_.beginGathering();
    }
    ~GatheredDefaultsWrites() { defaults_.endGathering(); }
    GatheredDefaultsWrites(const GatheredDefaultsWrites&) = delete;
    GatheredDefaultsWrites& operator=(const GatheredDefaultsWrites&) = delete;

  private:
    NSUserDefaults& defaults_;
};

}  // namespace tavrion
