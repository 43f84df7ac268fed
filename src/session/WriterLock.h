// The lock that lets one writer into a data directory.
//
// Queue: the main thread. Who owns: the Writer; it is held until the lock goes, or its process. The
// file names the owner's process id.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/foundation/OpenFile.h"

namespace tavrion {

class WriterLock {
  public:
    enum class Failure { inUse, impossible };
    struct Refusal {
        Failure failure;
        /// One line for people.
        std::string message;
    };

    /// Absent when the lock is taken.
    std::optional<Refusal> take(const std::filesystem::path& file);

  private:
    OpenFile held_;
};

}  // namespace tavrion
