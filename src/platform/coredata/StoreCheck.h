// Looks through a store's file for damage while the caller reads it.
//
// Queue: made and asked on one queue; the check has a thread and a connection of its own, which
// writes nothing. Looking for damage takes almost as long as reading, so that it is done beside the
// reading and costs the start next to nothing where a second core is free.
#pragma once

#include <filesystem>
#include <future>
#include <optional>
#include <string>

#include "platform/foundation/Result.h"
#include "platform/sqlite/SQLiteDatabase.h"

namespace tavrion {

class StoreCheck {
  public:
    /// Begins at once. The caller has the file open until the check is over; its end is waited for
    /// by the destructor too.
    explicit StoreCheck(std::filesystem::path file,
                        SQLiteDatabase::Mode mode = SQLiteDatabase::Mode::readOnly);

    /// Once. Waits for the end: the first damage that was found, in a few words, or nothing. A file
    /// that could not be looked through for another reason than damage is not found damaged;
    /// whoever reads it meets the same trouble.
    std::optional<std::string> damage();

  private:
    std::future<std::optional<std::string>> outcome_;
};

}  // namespace tavrion
