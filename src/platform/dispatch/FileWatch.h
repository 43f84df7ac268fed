// Notices that a file was replaced, or written to its end, by whoever it belongs to.
//
// Queue: watchFile() on any queue; what it calls runs on a thread of the watch's own, one call at a
// time. Who owns: the returned Observation keeps it up; its end waits for a running call. Owners
// replace their files by renaming, so the folders are watched and not the file, both that of the
// name and that of the file that it links to. A folder that goes is looked for again each second,
// and the file counts as changed when the folder is back. Units: real seconds.
#pragma once

#include <filesystem>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Observation.h"
#include "platform/foundation/Result.h"

namespace tavrion {

/// How long a file is left alone before it counts as settled.
inline constexpr double secondsUntilSettled = 0.5;

/// Calls `changed` each time the file is another one and has settled since. The error says in one
/// line why nothing can be watched.
Result<Observation> watchFile(const std::filesystem::path& file, Work changed,
                              double settleSeconds = secondsUntilSettled);

}  // namespace tavrion
