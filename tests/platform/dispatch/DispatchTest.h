// What the tests of the queues share: a main queue, and silence between the tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/dispatch/MainQueue.h"

namespace tavrion::test {

class DispatchTest : public ::testing::Test {
  protected:
    /// A worker counts its work as ended a moment after the test has seen the work's effect.
    DispatchTest() { mainQueue->runUntilIdle(); }
    ~DispatchTest() override { mainQueue->runUntilIdle(); }

    std::shared_ptr<MainQueue> mainQueue = MainQueue::make();
};

}  // namespace tavrion::test
