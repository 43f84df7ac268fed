#include "platform/foundation/Mutex.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace tavrion {
namespace {

struct Counter {
    Mutex mutex;
    ConditionVariable changed;
    int count TAVRION_GUARDED_BY(mutex) = 0;
};

TEST(Mutex, letsOneThreadInAtATime) {
    Counter counter;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&counter] {
            for (int step = 0; step < 1000; ++step) {
                const MutexLock lock(counter.mutex);
                counter.count += 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const MutexLock lock(counter.mutex);
    EXPECT_EQ(counter.count, 4000);
}

TEST(ConditionVariable, wakesThoseWhoWait) {
    Counter counter;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&counter] {
            const MutexLock lock(counter.mutex);
            while (counter.count == 0) {
                counter.changed.wait(counter.mutex);
            }
        });
    }
    {
        const MutexLock lock(counter.mutex);
        counter.count = 1;
        counter.changed.notifyAll();
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
}

TEST(ConditionVariable, wakesOneWhoWaitsForALimitedTime) {
    Counter counter;
    std::thread waiter([&counter] {
        const MutexLock lock(counter.mutex);
        while (counter.count == 0) {
            counter.changed.waitFor(counter.mutex, 3600);
        }
    });
    {
        const MutexLock lock(counter.mutex);
        counter.count = 1;
    }
    counter.changed.notifyOne();
    waiter.join();
}

TEST(ConditionVariable, aWaitForALimitedTimeEndsByItself) {
    Counter counter;
    const MutexLock lock(counter.mutex);
    counter.changed.waitFor(counter.mutex, 0.001);
    EXPECT_EQ(counter.count, 0) << "the lock is held again";
}

}  // namespace
}  // namespace tavrion
