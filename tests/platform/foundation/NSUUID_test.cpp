#include "platform/foundation/NSUUID.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace tavrion::NSUUID {
namespace {

TEST(NSUUID, IdentifiersAreWellFormedUpperCaseAndRandom) {
    const std::string text = UUIDString();
    EXPECT_TRUE(stringIsValidUUID(text)) << text;
    EXPECT_TRUE(
        std::none_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; }));
    EXPECT_EQ(text[14], '4') << text;
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
}

TEST(NSUUID, SeveralThreadsNeverGetTheSame) {
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

TEST(NSUUID, WellFormedOnesAreValid) {
    for (const char* text :
         {"68753A44-4D6F-1226-9C60-0050E4C00067", "68753a44-4d6f-1226-9c60-0050e4c00067",
          "68753A44-4d6F-1226-9c60-0050E4c00067", "00000000-0000-0000-0000-000000000000",
          "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"}) {
        EXPECT_TRUE(stringIsValidUUID(text)) << text;
    }
}

TEST(NSUUID, OthersAreNot) {
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
