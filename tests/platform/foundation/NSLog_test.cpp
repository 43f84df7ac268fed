#include "platform/foundation/NSLog.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <thread>
#include <vector>

namespace tavrion {
namespace {

class KeptLines final : public LogSink {
  public:
    void line(std::string_view text) override { lines.emplace_back(text); }
    std::vector<std::string> lines;
};

/// Standard error goes into a pipe whose packets keep the borders of the writes.
class CaughtStandardError {
  public:
    CaughtStandardError() : before_(::dup(STDERR_FILENO)) {
        EXPECT_EQ(::pipe2(ends_.data(), O_DIRECT), 0);
        ::dup2(ends_[1], STDERR_FILENO);
    }
    ~CaughtStandardError() {
        ::dup2(before_, STDERR_FILENO);
        ::close(before_);
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    /// What one write has written.
    std::string nextWrite() {
        std::array<char, 4096> buffer{};
        const ssize_t count = ::read(ends_[0], buffer.data(), buffer.size());
        return std::string(buffer.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
    }

  private:
    int before_;
    std::array<int, 2> ends_{};
};

TEST(NSLog, putsALineTogetherForThePluggedSink) {
    KeptLines sink;
    const Port<LogSink>::Plug plug(sink);
    NSLog("{} of {} songs", 3, "many");
    EXPECT_EQ(sink.lines, std::vector<std::string>{"3 of many songs"});
}

TEST(NSLog, withNoSinkNothingIsPutTogether) {
    ASSERT_FALSE(Port<LogSink>::isPlugged());
    NSLog("{}", 1);
    KeptLines sink;
    const Port<LogSink>::Plug plug(sink);
    EXPECT_TRUE(sink.lines.empty());
}

TEST(StandardErrorLogSink, writesEachLineAtOnce) {
    StandardErrorLogSink sink;
    CaughtStandardError standardError;
    sink.line("first");
    sink.line("");
    EXPECT_EQ(standardError.nextWrite(), "first\n");
    EXPECT_EQ(standardError.nextWrite(), "\n");
}

TEST(StandardErrorLogSink, linesOfSeveralThreadsStayWhole) {
    StandardErrorLogSink sink;
    CaughtStandardError standardError;
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([&sink, letter] {
            for (int i = 0; i < 3; ++i) {
                sink.line(std::string(100, letter));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < 12; ++i) {
        const std::string line = standardError.nextWrite();
        ASSERT_EQ(line.size(), 101U);
        EXPECT_EQ(line.substr(0, 100), std::string(100, line.front()));
        EXPECT_EQ(line.back(), '\n');
    }
}

}  // namespace
}  // namespace tavrion
