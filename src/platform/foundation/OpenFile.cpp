#include "platform/foundation/OpenFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace tavrion {

OpenFile::OpenFile(const std::filesystem::path& file, int flags) {
    do {
        descriptor_ = ::open(file.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR);
    } while (descriptor_ < 0 && errno == EINTR);
}

OpenFile::~OpenFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

bool OpenFile::lock() const {
    int outcome = -1;
    do {
        outcome = ::flock(descriptor_, LOCK_EX);
    } while (outcome != 0 && errno == EINTR);
    return outcome == 0;
}

}  // namespace tavrion
