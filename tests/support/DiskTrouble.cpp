// A library to be loaded before a program (LD_PRELOAD): it stands between the program and the
// system calls that change files of one folder, counts them, and lets something happen at the n-th.
//
// The environment of the program says what:
//   TAVRION_TROUBLE_FOLDER   the calls that concern files below it are counted, from 1
//   TAVRION_TROUBLE_REPORT   gets a line for each: "17 pwrite Nerinda.sqlite-wal"
//   TAVRION_TROUBLE          KIND:N or KIND:N:stays, or not there at all
//     kill     the process is killed in the place of the call
//     torn     the process is killed after it; of a write only the first half is done
//     stop     the process is stopped before the call
//     enospc   the call fails as on a full disk; with "stays" so do all later writes
//     eio      the call fails as on a broken disk; with "stays" so do all later calls
//
// It asks the kernel itself, since other libraries that stand in the way (those of sanitizers) are
// not the matter here, and it allocates nothing.

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

enum class Kind { none, kill, torn, stop, noSpace, inputOutput };

struct Orders {
    const char* folder = std::getenv("TAVRION_TROUBLE_FOLDER");
    Kind kind = Kind::none;
    long number = 0;
    bool stays = false;
    int report = -1;

    Orders() {
        if (const char* name = std::getenv("TAVRION_TROUBLE_REPORT"); name != nullptr) {
            report = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, name,
                                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
        }
        if (const char* text = std::getenv("TAVRION_TROUBLE"); text != nullptr) {
            read(text);
        }
    }

  private:
    void read(const char* text) {
        constexpr struct {
            const char* name;
            Kind kind;
        } kinds[] = {{"kill:", Kind::kill},
                     {"torn:", Kind::torn},
                     {"stop:", Kind::stop},
                     {"enospc:", Kind::noSpace},
                     {"eio:", Kind::inputOutput}};
        for (const auto& candidate : kinds) {
            const std::size_t length = std::strlen(candidate.name);
            if (std::strncmp(text, candidate.name, length) == 0) {
                kind = candidate.kind;
                char* rest = nullptr;
                number = std::strtol(text + length, &rest, 10);
                stays = std::strcmp(rest, ":stays") == 0;
            }
        }
    }
};

const Orders& orders() {
    static const Orders read;
    return read;
}

bool concerns(const char* path) {
    const char* folder = orders().folder;
    return folder != nullptr && std::strncmp(path, folder, std::strlen(folder)) == 0;
}

void report(long number, const char* call, const char* path) {
    if (orders().report < 0) {
        return;
    }
    const char* slash = std::strrchr(path, '/');
    char line[PATH_MAX];
    const int length = std::snprintf(line, sizeof line, "%ld %s %s\n", number, call,
                                     slash != nullptr ? slash + 1 : path);
    if (length > 0 && static_cast<std::size_t>(length) < sizeof line) {
        ::syscall(SYS_write, orders().report, line, length);
    }
}

/// One counted call.
class Call {
  public:
    Call(const char* name, const char* path, bool isWrite) {
        if (concerns(path)) {
            begin(name, path, isWrite);
        }
    }
    Call(const char* name, int descriptor, bool isWrite) {
        char link[64];
        char path[PATH_MAX];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
        const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
        path[length > 0 ? length : 0] = '\0';
        if (concerns(path)) {
            begin(name, path, isWrite);
        }
    }
    ~Call() {
        if (diesAfter_) {
            ::syscall(SYS_kill, ::syscall(SYS_getpid), SIGKILL);
        }
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// The error with which it fails, or 0.
    int failure() const { return failure_; }
    /// How much of so many bytes is written.
    std::size_t part(std::size_t length) const { return diesAfter_ ? length / 2 : length; }

  private:
    void begin(const char* name, const char* path, bool isWrite) {
        static std::atomic<long> calls{0};
        const long number = ++calls;
        report(number, name, path);
        const Orders& given = orders();
        const bool isNow = number == given.number;
        switch (given.kind) {
            case Kind::none:
                break;
            case Kind::kill:
            case Kind::stop:
                if (isNow) {
                    ::syscall(SYS_kill, ::syscall(SYS_getpid),
                              given.kind == Kind::kill ? SIGKILL : SIGSTOP);
                }
                break;
            case Kind::torn:
                diesAfter_ = isNow;
                break;
            case Kind::noSpace:
                if (isNow || (given.stays && isWrite && number > given.number)) {
                    failure_ = ENOSPC;
                }
                break;
            case Kind::inputOutput:
                if (isNow || (given.stays && number > given.number)) {
                    failure_ = EIO;
                }
                break;
        }
    }

    bool diesAfter_ = false;
    int failure_ = 0;
};

/// Carries a call out unless it is to fail.
template <class Do>
long carriedOut(const Call& call, Do carryOut) {
    if (call.failure() != 0) {
        errno = call.failure();
        return -1;
    }
    return carryOut();
}

long positionedWrite(int descriptor, const void* bytes, std::size_t length, long offset) {
    const Call call("pwrite", descriptor, true);
    return carriedOut(call, [&] {
        return ::syscall(SYS_pwrite64, descriptor, bytes, call.part(length), offset);
    });
}

long truncation(int descriptor, long length) {
    const Call call("ftruncate", descriptor, false);
    return carriedOut(call, [&] { return ::syscall(SYS_ftruncate, descriptor, length); });
}

long removal(const char* name, const char* path) {
    const Call call(name, path, false);
    return carriedOut(call, [&] {
        const long code = ::syscall(SYS_unlinkat, AT_FDCWD, path, 0);
        return code != 0 && errno == EISDIR ? ::syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR)
                                            : code;
    });
}

}  // namespace

// The calls themselves, under their own names.
extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t length) {
    const Call call("write", descriptor, true);
    return carriedOut(call,
                      [&] { return ::syscall(SYS_write, descriptor, bytes, call.part(length)); });
}

ssize_t pwrite(int descriptor, const void* bytes, size_t length, off_t offset) {
    return positionedWrite(descriptor, bytes, length, offset);
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t length, off64_t offset) {
    return positionedWrite(descriptor, bytes, length, offset);
}

int fsync(int descriptor) {
    const Call call("fsync", descriptor, false);
    return static_cast<int>(carriedOut(call, [&] { return ::syscall(SYS_fsync, descriptor); }));
}

int fdatasync(int descriptor) {
    const Call call("fdatasync", descriptor, false);
    return static_cast<int>(carriedOut(call, [&] { return ::syscall(SYS_fdatasync, descriptor); }));
}

int ftruncate(int descriptor, off_t length) noexcept {
    return static_cast<int>(truncation(descriptor, length));
}

int ftruncate64(int descriptor, off64_t length) noexcept {
    return static_cast<int>(truncation(descriptor, length));
}

int rename(const char* from, const char* to) noexcept {
    const Call call("rename", to, false);
    return static_cast<int>(carriedOut(
        call, [&] { return ::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0); }));
}

int link(const char* from, const char* to) noexcept {
    const Call call("link", to, false);
    return static_cast<int>(
        carriedOut(call, [&] { return ::syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0); }));
}

int unlink(const char* path) noexcept {
    return static_cast<int>(removal("unlink", path));
}

int remove(const char* path) noexcept {
    return static_cast<int>(removal("remove", path));
}
}
