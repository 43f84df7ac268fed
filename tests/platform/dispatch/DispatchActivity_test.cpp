#include "platform/dispatch/DispatchActivity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <latch>
#include <memory>
#include <vector>

#include "platform/dispatch/DispatchQueue.h"
#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DispatchActivityTest : public test::DispatchTest {};

TEST_F(DispatchActivityTest, countsWorkFromTheCallUntilItHasRun) {
    const auto queue = DispatchQueue::serial("counted");
    std::latch go(1);
    queue->async([&] { go.wait(); });
    queue->async([] {});
    EXPECT_EQ(DispatchActivity::count(), 2U);
    go.count_down();
    mainQueue->runUntilIdle();
    EXPECT_EQ(DispatchActivity::count(), 0U);
}

TEST_F(DispatchActivityTest, countsInlineWork) {
    std::size_t inSerial = 0;
    std::size_t inConcurrent = 0;
    DispatchQueue::serial("inline")->sync([&] { inSerial = DispatchActivity::count(); });
    DispatchQueue::concurrent("inline")->sync([&] { inConcurrent = DispatchActivity::count(); });
    EXPECT_EQ(inSerial, 1U);
    EXPECT_EQ(inConcurrent, 1U);
    EXPECT_EQ(DispatchActivity::count(), 0U);
}

TEST_F(DispatchActivityTest, begunOnlyGrows) {
    const auto before = DispatchActivity::begun();
    DispatchActivity::begin();
    EXPECT_EQ(DispatchActivity::begun(), before + 1);
    DispatchActivity::end();
    EXPECT_EQ(DispatchActivity::begun(), before + 1);
}

TEST_F(DispatchActivityTest, tellsTheListenerWhatIsLeft) {
    std::vector<std::size_t> left;
    {
        const DispatchActivity::EndListener listener(
            [&](std::size_t count) { left.push_back(count); });
        DispatchActivity::begin();
        DispatchActivity::begin();
        EXPECT_THAT(left, IsEmpty());
        DispatchActivity::end();
        DispatchActivity::end();
    }
    DispatchActivity::begin();
    DispatchActivity::end();
    EXPECT_THAT(left, ElementsAre(1U, 0U));
}

TEST_F(DispatchActivityTest, listenersComeAndGoInAnyOrder) {
    int first = 0;
    int second = 0;
    auto one = std::make_unique<DispatchActivity::EndListener>([&](std::size_t) { ++first; });
    const DispatchActivity::EndListener two([&](std::size_t) { ++second; });
    DispatchActivity::begin();
    DispatchActivity::end();
    one.reset();
    DispatchActivity::begin();
    DispatchActivity::end();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
}

}  // namespace
}  // namespace tavrion
