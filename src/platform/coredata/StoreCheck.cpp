#include "platform/coredata/StoreCheck.h"

#include <utility>

namespace tavrion {
namespace {

std::optional<std::string> firstDamage(const std::filesystem::path& file,
                                       SQLiteDatabase::Mode mode) {
    auto database = SQLiteDatabase::open(file, mode);
    if (!database) {
        return std::nullopt;
    }
    database.value()->setBusyTimeout(10);
    auto found = database.value()->quickCheck();
    if (found) {
        return std::move(found).value();
    }
    return database.value()->lastFailure() == SQLiteFailure::damage
               ? std::optional(found.error().localizedDescription)
               : std::nullopt;
}

}  // namespace

// Where no thread is to be had, the check runs when its outcome is asked for. A worker of the
// queues would stay behind in a process that only wants to read and end.
StoreCheck::StoreCheck(std::filesystem::path file, SQLiteDatabase::Mode mode)
    : outcome_(std::async(std::launch::async | std::launch::deferred, firstDamage, std::move(file),
                          mode)) {}

std::optional<std::string> StoreCheck::damage() {
    return outcome_.get();
}

}  // namespace tavrion
