// Serial and concurrent queues.
//
// Queue: async() and sync() from any queue. Who owns: queues are shared; work that is queued keeps
// its queue alive. A serial queue runs one piece of work at a time in the order of the calls. Which
// thread runs it is not fixed: ask isCurrent(), never the thread.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "platform/foundation/Executor.h"

namespace tavrion {

class DispatchQueue : public Executor, public std::enable_shared_from_this<DispatchQueue> {
  public:
    static std::shared_ptr<DispatchQueue> serial(std::string label);
    /// Runs up to maxConcurrentWorkCount pieces at a time, begun in the order of the calls. Its
    /// work may wait for other queues, but not for later work of its own.
    static std::shared_ptr<DispatchQueue> concurrent(std::string label);
    static constexpr std::size_t maxConcurrentWorkCount = 64;

    /// Runs `work` as this queue and returns when it has run, inline on the caller's thread once
    /// the queue's turn has come. Called as this queue already, it runs at once. What `work` throws
    /// reaches the caller.
    virtual void sync(const Work& work) = 0;

    bool isCurrent() const override;
    /// Ends the process when the caller does not run as this queue.
    void assertCurrent() const;
    const std::string& label() const { return label_; }

  protected:
    explicit DispatchQueue(std::string label) : label_(std::move(label)) {}

    /// Makes the caller's thread run as the queue for the life of the scope.
    class Running {
      public:
        explicit Running(const DispatchQueue& queue);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

      private:
        friend class DispatchQueue;
        const DispatchQueue& queue_;
        const Running* outer_;
    };

  private:
    std::string label_;
};

}  // namespace tavrion
