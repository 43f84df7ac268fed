#include "platform/foundation/Precondition.h"

#include <cstdio>
#include <cstdlib>

namespace tavrion {

void endOnBrokenPromise(const char* what) noexcept {
    std::fprintf(stderr, "tavrion: broken promise: %s\n", what);
    std::abort();
}

}  // namespace tavrion
