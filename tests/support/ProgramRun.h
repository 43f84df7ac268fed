// A program as a test runs it: started with arguments and an environment, waited for or killed, its
// output read from files.
//
// Queue: the test's thread. Who owns: the run keeps its output files, below a folder of the test's;
// a run that nobody waited for is killed with its owner.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrion {

/// How a program ended, and what it said.
struct ProgramEnd {
    /// The exit status; absent after a signal.
    std::optional<int> status;
    /// The signal that ended it, or 0.
    int signal = 0;
    std::string out;
    std::string err;
    bool isDone() const { return status == 0; }
    std::size_t errorLines() const;
    /// For the message of a failed expectation.
    std::string told() const;
};

class ProgramRun {
  public:
    using Environment = std::map<std::string, std::string>;

    /// Starts it with the test's own environment and what `environment` sets over it; the locale is
    /// C and the zone UTC unless set. Standard input is empty.
    ProgramRun(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& outputFolder, const Environment& environment = {});
    ~ProgramRun();
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    pid_t process() const { return process_; }
    void sendSignal(int signal) const;
    /// Whether it has stopped by a signal; false when it has ended instead. Waits for either.
    bool waitUntilStopped();
    /// Waits for the end at most so long; whether it has come.
    bool endsWithin(double seconds);
    ProgramEnd wait();

  private:
    void note(int status);
    std::filesystem::path out_;
    std::filesystem::path err_;
    pid_t process_ = -1;
    std::optional<int> waitStatus_;
};

/// What stands in the file; empty when there is none.
std::string contentOfFile(const std::filesystem::path& file);

}  // namespace tavrion
