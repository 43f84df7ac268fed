// A broken promise inside the program: one line on standard error, then the end of the process.
//
// Queue: any. Use it for what only a mistake in this code can cause; bad input gets a Result or an
// absent value instead.
#pragma once

namespace tavrion {

/// Ends the process with `what`.
[[noreturn]] void endOnBrokenPromise(const char* what) noexcept;

/// Ends the process with `what` when `kept` is false. Active in every build. Inline, so that the
/// compilers' analyses know that what follows holds.
inline void precondition(bool kept, const char* what) noexcept {
    if (!kept) {
        endOnBrokenPromise(what);
    }
}

}  // namespace tavrion
