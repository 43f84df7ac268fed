#include "sources/musicxml/SettledReading.h"

namespace tavrion {

Result<std::shared_ptr<const MediaSnapshot>> readSettled(const std::string& name,
                                                         const ReadStamp& stamp,
                                                         const ReadSnapshot& read) {
    constexpr int attempts = 2;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const Result<FileStamp> before = stamp();
        if (!before) {
            return before.error();
        }
        auto outcome = read();
        const Result<FileStamp> after = stamp();
        if (after && before.value() == after.value()) {
            return outcome;
        }
    }
    return NSError{name +
                       ": the file keeps changing while it is read; wait until the player has "
                       "written it, then try again",
                   {}};
}

}  // namespace tavrion
