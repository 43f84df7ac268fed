#include "platform/foundation/Result.h"

#include <gtest/gtest.h>

#include <memory>

namespace tavrion {
namespace {

TEST(Result, holdsAValueOrAnError) {
    const Result<int> good(7);
    EXPECT_TRUE(good.ok());
    EXPECT_TRUE(static_cast<bool>(good));
    EXPECT_EQ(good.value(), 7);
    const Result<int> bad(NSError{"no number", "detail"});
    EXPECT_FALSE(bad.ok());
    EXPECT_FALSE(static_cast<bool>(bad));
    EXPECT_EQ(bad.error().localizedDescription, "no number");
    EXPECT_EQ(bad.error().userInfo, "detail");
}

TEST(Result, givesUpAValueThatCannotBeCopied) {
    Result<std::unique_ptr<int>> result(std::make_unique<int>(7));
    *result.value() = 8;
    const std::unique_ptr<int> taken = std::move(result).value();
    EXPECT_EQ(*taken, 8);
}

TEST(Result, ofNothingIsDoneOrAnError) {
    const Result<void> good;
    EXPECT_TRUE(good.ok());
    const Result<void> bad(NSError{"not done", ""});
    EXPECT_FALSE(static_cast<bool>(bad));
    EXPECT_EQ(bad.error().localizedDescription, "not done");
}

TEST(ResultDeathTest, theOtherSideIsNotThere) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Result<int>(NSError{"no number", ""}).value(), "failed Result");
    EXPECT_DEATH(static_cast<void>(Result<int>(7).error()), "good Result");
    EXPECT_DEATH(static_cast<void>(Result<void>().error()), "good Result");
}

}  // namespace
}  // namespace tavrion
