// A file for readers that want one, in memory where the system has such a place.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/Require.h"

namespace tavrion::fuzz {

class ScratchFile {
  public:
    explicit ScratchFile(const std::string& name) {
        const std::filesystem::path memory = "/dev/shm";
        std::error_code failure;
        std::string pattern = ((std::filesystem::is_directory(memory, failure)
                                    ? memory
                                    : std::filesystem::temp_directory_path()) /
                               "tavrion-fuzz-XXXXXX")
                                  .string();
        require(::mkdtemp(pattern.data()) != nullptr);
        folder_ = pattern;
        file_ = folder_ / name;
    }
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& path() const { return file_; }
    const std::filesystem::path& folder() const { return folder_; }
    void write(const std::uint8_t* data, std::size_t size) const {
        std::ofstream(file_, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    std::string content() const {
        std::ifstream stream(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

  private:
    std::filesystem::path folder_;
    std::filesystem::path file_;
};

}  // namespace tavrion::fuzz
