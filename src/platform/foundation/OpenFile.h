// A file descriptor, closed with its owner.
//
// Queue: any. Movable; an empty one holds nothing.
#pragma once

#include <filesystem>
#include <utility>

namespace tavrion {

class OpenFile {
  public:
    OpenFile() = default;
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    /// Opens for this process alone, also where a signal interrupts it. Empty, with errno, when
    /// that fails; a new file is for its user alone.
    OpenFile(const std::filesystem::path& file, int flags);
    ~OpenFile();
    OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    OpenFile& operator=(OpenFile&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }

    explicit operator bool() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    /// Waits for the file's lock, which is held until the file is closed; false, with errno, when
    /// that fails.
    bool lock() const;

  private:
    int descriptor_ = -1;
};

}  // namespace tavrion
