#include "platform/dispatch/FileWatch.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/foundation/OpenFile.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t whole = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
constexpr std::uint32_t underWay = IN_MODIFY | IN_ATTRIB | IN_CREATE;
constexpr std::uint32_t folderGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT;
constexpr int millisecondsBetweenLooks = 1000;

/// A folder and the name in it for which it is watched.
struct Place {
    fs::path folder;
    std::string name;
    /// Negative while the folder is not watched.
    int watch = -1;
};

Place placeOf(const fs::path& file) {
    const fs::path folder = file.parent_path();
    return {folder.empty() ? fs::path(".") : folder, file.filename().string()};
}

/// Where the file can change: at its name, and where the name links to.
std::vector<Place> placesOf(const fs::path& file) {
    std::vector<Place> places{placeOf(file)};
    std::error_code failure;
    const fs::path target = fs::canonical(file, failure);
    if (!failure && fs::is_symlink(file, failure)) {
        places.push_back(placeOf(target));
    }
    return places;
}

class FileWatch final : public Observation::Registration,
                        public std::enable_shared_from_this<FileWatch> {
  public:
    FileWatch(const fs::path& file, Work changed, double settleSeconds)
        : places_(placesOf(file)),
          changed_(std::move(changed)),
          settleMilliseconds_(static_cast<int>(settleSeconds * 1000)),
          events_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
          stop_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}
    ~FileWatch() override {
        // Only where the observer ended itself: its own thread then lets go of it last.
        if (thread_.joinable()) {
            thread_.detach();
        }
    }

    bool canWatch() const { return events_ && stop_; }
    void start() {
        watchFolders();
        thread_ = std::thread([self = shared_from_this()] { self->run(); });
    }
    void remove() override {
        isOver_ = true;
        const std::uint64_t one = 1;
        // The counter can't be full: it is written once.
        [[maybe_unused]] const auto written = ::write(stop_.descriptor(), &one, sizeof one);
    }
    void forget() override {
        thread_.join();
        changed_ = nullptr;
    }

  private:
    void run() {
        while (!isOver_) {
            std::array<pollfd, 2> waits{
                {{events_.descriptor(), POLLIN, 0}, {stop_.descriptor(), POLLIN, 0}}};
            const int found = ::poll(waits.data(), waits.size(), patience());
            if (isOver_) {
                return;
            }
            if (found > 0) {
                readEvents();
            } else if (found == 0 && isUnsettled_) {
                isUnsettled_ = false;
                call();
            }
            watchFolders();
        }
    }

    int patience() const {
        if (isUnsettled_) {
            return settleMilliseconds_;
        }
        for (const Place& place : places_) {
            if (place.watch < 0) {
                return millisecondsBetweenLooks;
            }
        }
        return -1;
    }

    void call() {
        const ObserverGate::Stay stay(gate);
        if (stay) {
            changed_();
        }
    }

    /// Takes up the folders that are not watched, if they are there.
    void watchFolders() {
        for (Place& place : places_) {
            if (place.watch < 0) {
                place.watch = ::inotify_add_watch(
                    events_.descriptor(), place.folder.c_str(),
                    whole | underWay | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
                isUnsettled_ = isUnsettled_ || (hasBegun_ && place.watch >= 0);
            }
        }
        hasBegun_ = true;
    }

    void readEvents() {
        alignas(inotify_event) std::array<char, 16384> room{};
        ssize_t count = 0;
        while ((count = ::read(events_.descriptor(), room.data(), room.size())) > 0) {
            for (ssize_t at = 0; at < count;) {
                const auto* event = reinterpret_cast<const inotify_event*>(room.data() + at);
                take(*event);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
    }

    void take(const inotify_event& event) {
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            isUnsettled_ = true;
            return;
        }
        for (Place& place : places_) {
            if (place.watch != event.wd) {
                continue;
            }
            if ((event.mask & folderGone) != 0) {
                // A moved folder would go on to be watched under its new name.
                ::inotify_rm_watch(events_.descriptor(), place.watch);
                place.watch = -1;
            } else if (event.len > 0 && place.name == event.name) {
                isUnsettled_ = isUnsettled_ || (event.mask & whole) != 0;
            }
        }
    }

    std::vector<Place> places_;
    Work changed_;
    const int settleMilliseconds_;
    const OpenFile events_;
    const OpenFile stop_;
    std::atomic<bool> isOver_{false};
    /// Of the thread alone once it runs.
    bool hasBegun_ = false;
    bool isUnsettled_ = false;
    std::thread thread_;
};

}  // namespace

Result<Observation> watchFile(const fs::path& file, Work changed, double settleSeconds) {
    auto watch = std::make_shared<FileWatch>(file, std::move(changed), settleSeconds);
    if (!watch->canWatch()) {
        return NSError{fmt::format("{}: the file can't be watched ({}); close other programs that "
                                   "watch files",
                                   file.string(), std::generic_category().message(errno)),
                       {}};
    }
    watch->start();
    return Observation(std::move(watch));
}

}  // namespace tavrion
