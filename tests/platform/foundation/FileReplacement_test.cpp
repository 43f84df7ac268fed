#include "platform/foundation/FileReplacement.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

class FileReplacementTest : public ::testing::Test {
  protected:
    std::filesystem::path file() const { return folder_.path() / "list"; }
    std::filesystem::path draft() const { return folder_.path() / "list.new"; }
    std::string content() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    mode_t mode() const {
        struct stat status {};
        EXPECT_EQ(::stat(file().c_str(), &status), 0);
        return status.st_mode & 07777;
    }

  private:
    const TestFolder folder_;
};

/// While it lives, no file of this process grows beyond that size.
class SmallFiles {
  public:
    explicit SmallFiles(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~SmallFiles() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

TEST_F(FileReplacementTest, putsANewFileInThePlaceOfTheOldOne) {
    EXPECT_FALSE(FileReplacement::replace(file(), "first and long"));
    EXPECT_FALSE(FileReplacement::replace(file(), "second"));
    EXPECT_EQ(content(), "second");
    EXPECT_FALSE(std::filesystem::exists(draft()));
}

TEST_F(FileReplacementTest, changesNothingBeforeItIsFinished) {
    ASSERT_FALSE(FileReplacement::replace(file(), "old"));
    {
        FileReplacement replacement(file());
        replacement.write("new");
        EXPECT_EQ(content(), "old");
    }
    EXPECT_EQ(content(), "old");
    EXPECT_FALSE(std::filesystem::exists(draft()));
}

TEST_F(FileReplacementTest, isForTheUserAloneUnlessSaid) {
    const mode_t before = ::umask(0);
    ASSERT_FALSE(FileReplacement::replace(file(), "a"));
    EXPECT_EQ(mode(), 0600U);
    ASSERT_FALSE(FileReplacement::replace(file(), "a", 0640));
    EXPECT_EQ(mode(), 0640U);
    ::umask(before);
}

TEST_F(FileReplacementTest, writesOverWhatAKilledWriterLeft) {
    std::ofstream(draft()) << "half of something that was much longer";
    ::chmod(draft().c_str(), 0644);
    ASSERT_FALSE(FileReplacement::replace(file(), "whole"));
    EXPECT_EQ(content(), "whole");
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(FileReplacementTest, leavesTheOldFileAndNothingElseWhenTheDiskIsFull) {
    ASSERT_FALSE(FileReplacement::replace(file(), "old"));
    {
        const SmallFiles limit(4096);
        const auto failure = FileReplacement::replace(file(), std::string(10000, 'x'));
        EXPECT_EQ(failure, std::errc::file_too_large);
    }
    EXPECT_EQ(content(), "old");
    EXPECT_FALSE(std::filesystem::exists(draft()));
}

TEST_F(FileReplacementTest, reportsWhyItCannotBegin) {
    ASSERT_FALSE(FileReplacement::replace(file(), "a file"));
    EXPECT_EQ(FileReplacement::replace(file() / "below", "x"), std::errc::not_a_directory);
    std::filesystem::create_directory(draft());
    EXPECT_EQ(FileReplacement::replace(file(), "x"), std::errc::is_a_directory);
    EXPECT_TRUE(std::filesystem::is_directory(draft())) << "it is not this writer's to remove";
}

TEST_F(FileReplacementTest, followsNoLinkInThePlaceOfItsDraft) {
    std::filesystem::create_symlink("elsewhere", draft());
    EXPECT_TRUE(FileReplacement::replace(file(), "x"));
    EXPECT_FALSE(std::filesystem::exists(file().parent_path() / "elsewhere"));
}

TEST_F(FileReplacementTest, doesNotWaitForAPipeInThePlaceOfItsDraft) {
    ASSERT_EQ(::mkfifo(draft().c_str(), 0600), 0);
    EXPECT_TRUE(FileReplacement::replace(file(), "x"));
}

TEST_F(FileReplacementTest, writersComeOneAfterTheOther) {
    std::vector<std::thread> writers;
    for (char letter = 'a'; letter < 'e'; ++letter) {
        writers.emplace_back([this, letter] {
            for (int i = 0; i < 50; ++i) {
                FileReplacement replacement(file());
                for (int part = 0; part < 20; ++part) {
                    replacement.write(std::string(100, letter));
                }
                EXPECT_FALSE(replacement.finish(FileReplacement::Durability::remakeable));
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    const std::string text = content();
    ASSERT_EQ(text.size(), 2000U);
    EXPECT_EQ(text, std::string(2000, text.front())) << "one writer's, whole";
    EXPECT_FALSE(std::filesystem::exists(draft()));
}

TEST_F(FileReplacementTest, givesTheNewFileToWhoGoesOnWithIt) {
    FileReplacement replacement(file());
    replacement.write("a");
    ASSERT_FALSE(replacement.finish());
    const OpenFile open = replacement.takeFile();
    struct stat here {};
    struct stat named {};
    ASSERT_EQ(::fstat(open.descriptor(), &here), 0);
    ASSERT_EQ(::stat(file().c_str(), &named), 0);
    EXPECT_EQ(here.st_ino, named.st_ino);
}

}  // namespace
}  // namespace tavrion
