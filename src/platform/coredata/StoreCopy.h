// Copies of a store's file, and drafts of files that appear under their name only when they are
// whole.
//
// Queue: the caller's. Errors are one line that names the file that could not be made.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/foundation/Result.h"
#include "platform/sqlite/SQLiteDatabase.h"

namespace tavrion {

/// A database under way, in a file of the process's own beside the one that it shall be. Gone with
/// this object, whether it was put in place or not.
class StoreDraft {
  public:
    explicit StoreDraft(const std::filesystem::path& file);
    ~StoreDraft();
    StoreDraft(const StoreDraft&) = delete;
    StoreDraft& operator=(const StoreDraft&) = delete;

    const std::filesystem::path& file() const { return draft_; }
    /// Gives the draft its name. Whoever has it already keeps it: false then.
    Result<bool> putInPlace() const;
    /// Gives the draft its name, and takes it from whatever has it.
    Result<void> replace() const;

    /// Removes the drafts that killed processes left behind in the folder. Another process that
    /// makes a file just now keeps its own.
    static void removeThoseOfTheDead(const std::filesystem::path& folder);

  private:
    void remove() const;

    const std::filesystem::path file_;
    const std::filesystem::path draft_;
};

namespace StoreCopy {

/// Writes a compact copy to a file that does not exist yet; it appears there when it is whole,
/// checked and on the disk.
Result<void> make(SQLiteDatabase& database, const std::filesystem::path& copy);
/// The same, in the place of an older copy if there is one: that goes when the new one has been
/// checked.
Result<void> renew(SQLiteDatabase& database, const std::filesystem::path& copy);
/// Whether the copy opens, is whole, and has as many rows in each table as the database. An error
/// says what it lacks.
Result<void> check(SQLiteDatabase& database, const std::filesystem::path& copy);

}  // namespace StoreCopy

}  // namespace tavrion
