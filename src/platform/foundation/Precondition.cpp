#include "platform/foundation/Precondition.h"

#include <cstdio>
#include <cstdlib>

namespace tavrion {

void precondition(bool kept, const char* what) noexcept {
    if (kept) {
        return;
    }
    std::fprintf(stderr, "tavrion: broken promise: %s\n", what);
    std::abort();
}

}  // namespace tavrion
