// Writers and readers at once; its report under ThreadSanitizer is the point.

#include <atomic>
#include <thread>

#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

using ConcurrencyTest = CoreDataTest;

TEST_F(ConcurrencyTest, fourWritersAndEightReadersWhileMainSaves) {
    constexpr int writers = 4;
    constexpr int readers = 8;
    constexpr int rounds = 25;
    const auto writerQueue = DispatchQueue::serial("writer");
    Song counted = Song::insert(*main, "of main");
    Play::insert(*main, -1, counted);
    Play::insert(*main, -2, counted);
    save(*main);
    std::atomic<int> writing{writers};
    std::atomic<bool> consistent{true};
    std::vector<std::thread> threads;
    for (int w = 0; w < writers; ++w) {
        threads.emplace_back([&, w] {
            for (int round = 0; round < rounds; ++round) {
                const auto context = NSManagedObjectContext::below(main);
                context->performBlockAndWait([&] {
                    const Song song = Song::insert(*context, "song " + std::to_string(w), round);
                    Play::insert(*context, round, song);
                    Play::insert(*context, round + 0.5, song);
                    save(*context);
                });
            }
            --writing;
        });
    }
    for (int r = 0; r < readers; ++r) {
        threads.emplace_back([&] {
            const auto context = NSManagedObjectContext::below(main);
            while (writing > 0) {
                context->performBlockAndWait([&] {
                    // A save is seen whole or not at all.
                    const auto version = context->snapshot();
                    if (version->table(TestEntity::Play).size() !=
                        2 * version->table(TestEntity::Song).size()) {
                        consistent = false;
                    }
                    titles(*context);
                });
            }
        });
    }
    while (writing > 0) {
        // Unsaved work of the main context is seen by its children, half done or not; a change of a
        // count leaves what they compare alone.
        counted.setCount(counted.count() + 1);
        main->saveInBackground(*writerQueue, [](const Result<void>& saved) { EXPECT_TRUE(saved); });
        mainQueue->runUntilIdle();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(consistent);
    save(*main);
    reopen();
    EXPECT_EQ(countOf(*main, "Song"), static_cast<std::size_t>(writers * rounds + 1));
    EXPECT_EQ(countOf(*main, "Play"), static_cast<std::size_t>(2 * (writers * rounds + 1)));
}

}  // namespace
}  // namespace tavrion
