// A folder of a test's own that goes away with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/foundation/Precondition.h"

namespace tavrion {

class TestFolder {
  public:
    TestFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tavrion-XXXXXX").string();
        precondition(::mkdtemp(pattern.data()) != nullptr, "a test has a folder of its own");
        path_ = std::filesystem::canonical(pattern);
    }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

}  // namespace tavrion
