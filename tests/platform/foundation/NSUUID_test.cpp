#include "platform/foundation/NSUUID.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace tavrion::NSUUID {
namespace {

TEST(NSUUID, identifiersAreWellFormedUpperCaseAndRandom) {
    const std::string text = UUIDString();
    EXPECT_TRUE(stringIsValidUUID(text)) << text;
    EXPECT_TRUE(
        std::none_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; }));
    EXPECT_EQ(text[14], '4') << text;
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
}

TEST(NSUUID, severalThreadsNeverGetTheSame) {
    constexpr std::size_t threadCount = 4;
    constexpr std::size_t each = 500;
    std::vector<std::vector<std::string>> made(threadCount);
    std::vector<std::thread> threads;
    for (auto& list : made) {
        threads.emplace_back([&list] {
            for (std::size_t i = 0; i < each; ++i) {
                list.push_back(UUIDString());
            }
        });
    }
    std::set<std::string> all;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads[i].join();
        all.insert(made[i].begin(), made[i].end());
    }
    EXPECT_EQ(all.size(), threadCount * each);
}

TEST(NSUUID, aForkedProcessGivesOthers) {
    // So that some of the random numbers are already fetched.
    UUIDString();
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    constexpr std::size_t length = 36;
    if (child == 0) {
        const std::string text = UUIDString();
        ::_exit(::write(ends[1], text.data(), length) == length ? 0 : 1);
    }
    std::string childs(length, ' ');
    ASSERT_EQ(::read(ends[0], childs.data(), length), static_cast<ssize_t>(length));
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(stringIsValidUUID(childs));
    EXPECT_NE(childs, UUIDString());
}

TEST(NSUUID, wellFormedOnesAreValid) {
    for (const char* text :
         {"68753A44-4D6F-1226-9C60-0050E4C00067", "68753a44-4d6f-1226-9c60-0050e4c00067",
          "68753A44-4d6F-1226-9c60-0050E4c00067", "00000000-0000-0000-0000-000000000000",
          "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"}) {
        EXPECT_TRUE(stringIsValidUUID(text)) << text;
    }
}

TEST(NSUUID, othersAreNot) {
    for (const char* text :
         {"", "{68753A44-4D6F-1226-9C60-0050E4C00067}",
          "urn:uuid:68753A44-4D6F-1226-9C60-0050E4C00067", "68753A444D6F12269C600050E4C00067",
          " 68753A44-4D6F-1226-9C60-0050E4C00067", "68753A44-4D6F-1226-9C60-0050E4C00067\n",
          "68753A44-4D6F-1226-9C60-0050E4C0006", "68753A44-4D6F-1226-9C60-0050E4C000678",
          "68753A4-44D6F-1226-9C60-0050E4C00067", "68753A44-4D6F-1226-9C600-050E4C00067",
          "68753A44-4D6F-1226-9C60-0050E4C0006G", "0x753A44-4D6F-1226-9C60-0050E4C00067",
          "+8753A44-4D6F-1226-9C60-0050E4C00067", "68 53A44-4D6F-1226-9C60-0050E4C00067"}) {
        EXPECT_FALSE(stringIsValidUUID(text)) << text;
    }
}

}  // namespace
}  // namespace tavrion::NSUUID
