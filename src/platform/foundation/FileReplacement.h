// Puts a new file in the place of an old one, whole or not at all.
//
// Queue: any; one object on one thread. What is written is beside the file, under its name with
// ".new" behind it, until finish() has brought it to the disk and renamed it. Several writers of
// one file, in this process or in others, come one after the other; what a killed one left behind
// is written over. A replacement that goes without finish() leaves nothing, and the old file as it
// was.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/foundation/OpenFile.h"

namespace tavrion {

class FileReplacement {
  public:
    /// What can be made again need not wait for the disk: after a power cut it may be gone.
    enum class Durability { lasting, remakeable };

    /// `mode` is what the new file allows to whom; the user alone, if not said.
    explicit FileReplacement(std::filesystem::path file, mode_t mode = 0600);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Puts bytes behind what was written. After a failure nothing more is written.
    void write(std::string_view bytes);
    /// Replaces the file. The error is the first one of all that was done; absent (0) when the new
    /// file is in place.
    std::error_code finish(Durability durability = Durability::lasting);
    /// The new file, for who wants to go on with it after finish().
    OpenFile takeFile() { return std::move(draft_); }

    /// All in one; absent (0) when done.
    static std::error_code replace(const std::filesystem::path& file, std::string_view bytes,
                                   mode_t mode = 0600);

  private:
    void openDraft(mode_t mode);
    void fail();

    const std::filesystem::path file_;
    const std::filesystem::path draftName_;
    OpenFile draft_;
    std::error_code error_;
    bool isInPlace_ = false;
};

}  // namespace tavrion
