#include "tests/support/ProgramRun.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

#include "platform/foundation/Precondition.h"

namespace tavrion {
namespace {

/// "name=value" of everything, the newcomers over the test's own.
std::vector<std::string> mergedEnvironment(ProgramRun::Environment environment) {
    environment.try_emplace("TZ", "UTC");
    environment.try_emplace("LC_ALL", "C");
    std::vector<std::string> merged;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (!environment.contains(text.substr(0, text.find('=')))) {
            merged.push_back(text);
        }
    }
    for (const auto& [name, value] : environment) {
        merged.push_back(name + "=" + value);
    }
    return merged;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::string freshName() {
    static std::atomic<int> runs{0};
    return fmt::format("run-{}", ++runs);
}

}  // namespace

std::string contentOfFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::size_t ProgramEnd::errorLines() const {
    return static_cast<std::size_t>(std::count(err.begin(), err.end(), '\n'));
}

std::string ProgramEnd::told() const {
    return fmt::format("status {}, signal {}, standard error: {}",
                       status ? std::to_string(*status) : "none", signal, err);
}

ProgramRun::ProgramRun(const std::filesystem::path& program,
                       const std::vector<std::string>& arguments,
                       const std::filesystem::path& outputFolder, const Environment& environment) {
    const std::string name = freshName();
    out_ = outputFolder / (name + ".out");
    err_ = outputFolder / (name + ".err");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out_.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err_.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = mergedEnvironment(environment);
    const int failure = ::posix_spawn(&process_, program.c_str(), &actions, nullptr,
                                      pointersTo(words).data(), pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    precondition(failure == 0, "the program under test can be started");
}

ProgramRun::~ProgramRun() {
    if (!waitStatus_) {
        sendSignal(SIGKILL);
        wait();
    }
    std::error_code ignored;
    std::filesystem::remove(out_, ignored);
    std::filesystem::remove(err_, ignored);
}

void ProgramRun::sendSignal(int signal) const {
    if (!waitStatus_) {
        ::kill(process_, signal);
    }
}

void ProgramRun::note(int status) {
    if (WIFEXITED(status) || WIFSIGNALED(status)) {
        waitStatus_ = status;
    }
}

bool ProgramRun::waitUntilStopped() {
    int status = 0;
    precondition(::waitpid(process_, &status, WUNTRACED) == process_,
                 "a program under test can be waited for");
    note(status);
    return WIFSTOPPED(status);
}

bool ProgramRun::endsWithin(double seconds) {
    using namespace std::chrono;
    const auto until = steady_clock::now() + duration<double>(seconds);
    for (;;) {
        int status = 0;
        if (!waitStatus_ && ::waitpid(process_, &status, WNOHANG) == process_) {
            note(status);
        }
        if (waitStatus_ || steady_clock::now() >= until) {
            break;
        }
        std::this_thread::sleep_for(milliseconds(1));
    }
    return waitStatus_.has_value();
}

ProgramEnd ProgramRun::wait() {
    if (!waitStatus_) {
        int status = 0;
        precondition(::waitpid(process_, &status, 0) == process_,
                     "a program under test can be waited for");
        note(status);
    }
    ProgramEnd end;
    if (WIFEXITED(*waitStatus_)) {
        end.status = WEXITSTATUS(*waitStatus_);
    } else {
        end.signal = WTERMSIG(*waitStatus_);
    }
    end.out = contentOfFile(out_);
    end.err = contentOfFile(err_);
    return end;
}

}  // namespace tavrion
