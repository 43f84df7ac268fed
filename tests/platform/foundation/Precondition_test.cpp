#include "platform/foundation/Precondition.h"

#include <gtest/gtest.h>

namespace tavrion {
namespace {

TEST(PreconditionDeathTest, aBrokenPromiseEndsTheProcessWithItsText) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(precondition(false, "the promise of this test"), "the promise of this test");
}

TEST(Precondition, aKeptPromiseDoesNothing) {
    precondition(true, "the promise of this test");
}

}  // namespace
}  // namespace tavrion
