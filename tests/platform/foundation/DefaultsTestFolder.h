// What the tests of the user defaults share: a folder that goes away, and a look at its file.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "platform/foundation/NSUserDefaults.h"

namespace tavrion::test {

class DefaultsTest : public ::testing::Test {
  protected:
    DefaultsTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrion-defaults-XXXXXX").string();
        const char* made = ::mkdtemp(pattern.data());
        EXPECT_NE(made, nullptr);
        folder = std::filesystem::canonical(pattern);
        file = folder / "defaults.plist";
    }
    ~DefaultsTest() override {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }

    /// The defaults of `file`, which is expected to be readable.
    std::unique_ptr<NSUserDefaults> opened() const {
        auto defaults = NSUserDefaults::open(file);
        EXPECT_TRUE(defaults.ok()) << (defaults.ok() ? "" : defaults.error().localizedDescription);
        return std::move(defaults).value();
    }
    std::string bytes() const {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    void writeBytes(const std::string& content) const {
        std::ofstream(file, std::ios::binary) << content;
    }
    struct stat status() const {
        struct stat found {};
        EXPECT_EQ(::stat(file.c_str(), &found), 0);
        return found;
    }

    std::filesystem::path folder;
    std::filesystem::path file;
};

}  // namespace tavrion::test
