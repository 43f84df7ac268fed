// Locks that clang's thread-safety analysis can follow.
//
// Queue: any. Guard a field with TAVRION_GUARDED_BY(mutex_), state a needed lock with
// TAVRION_REQUIRES(mutex_), and take it with MutexLock. Nothing is called out while a lock is held.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define TAVRION_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define TAVRION_THREAD_ANNOTATION(x)
#endif

#define TAVRION_CAPABILITY(x) TAVRION_THREAD_ANNOTATION(capability(x))
#define TAVRION_SCOPED_CAPABILITY TAVRION_THREAD_ANNOTATION(scoped_lockable)
#define TAVRION_GUARDED_BY(x) TAVRION_THREAD_ANNOTATION(guarded_by(x))
#define TAVRION_REQUIRES(...) TAVRION_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define TAVRION_EXCLUDES(...) TAVRION_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define TAVRION_ACQUIRE(...) TAVRION_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TAVRION_RELEASE(...) TAVRION_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

namespace tavrion {

/// A mutual exclusion lock; not recursive.
class TAVRION_CAPABILITY("mutex") Mutex {
  public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() TAVRION_ACQUIRE() { mutex_.lock(); }
    void unlock() TAVRION_RELEASE() { mutex_.unlock(); }

  private:
    friend class ConditionVariable;
    std::mutex mutex_;
};

/// Holds a Mutex for the life of the scope.
class TAVRION_SCOPED_CAPABILITY MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) TAVRION_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~MutexLock() TAVRION_RELEASE() { mutex_.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

  private:
    Mutex& mutex_;
};

/// Waits for a condition under a Mutex. The caller loops: a wait may end without a reason.
class ConditionVariable {
  public:
    void wait(Mutex& mutex) TAVRION_REQUIRES(mutex) {
        std::unique_lock<std::mutex> held(mutex.mutex_, std::adopt_lock);
        condition_.wait(held);
        held.release();
    }
    /// Seconds are real seconds, whatever the injected clock shows.
    void waitFor(Mutex& mutex, double seconds) TAVRION_REQUIRES(mutex) {
        std::unique_lock<std::mutex> held(mutex.mutex_, std::adopt_lock);
        // Reckoned on the system clock: ThreadSanitizer of this compiler knows that wait and not
        // the steady one.
        const auto until = std::chrono::system_clock::now() +
                           std::chrono::duration_cast<std::chrono::system_clock::duration>(
                               std::chrono::duration<double>(seconds));
        condition_.wait_until(held, until);
        held.release();
    }
    void notifyOne() { condition_.notify_one(); }
    void notifyAll() { condition_.notify_all(); }

  private:
    std::condition_variable condition_;
};

}  // namespace tavrion
