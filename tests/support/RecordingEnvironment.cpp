#include "tests/support/RecordingEnvironment.h"

#include <algorithm>
#include <cstdlib>

#include "platform/foundation/NSUUID.h"
#include "platform/foundation/Precondition.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion {
namespace {

std::filesystem::path makeDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tavrion-recording-XXXXXX").string();
    const char* made = ::mkdtemp(pattern.data());
    precondition(made != nullptr, "a test has a directory of its own");
    return made;
}

}  // namespace

bool RecordingAwards::earnAchievementWithIdentifier(const std::string& identifier, int tier,
                                                    std::optional<NSDate> date,
                                                    NSManagedObjectContext& context) {
    precondition(context.queue().isCurrent(), "awards are earned on the scan's queue");
    precondition(tier == 1 && !date, "the scan earns the first tier and gives no date");
    asked.push_back(identifier);
    return earned.insert(identifier).second || earnsAgain;
}

void RecordingAwards::updateAchievements() {
    ++updates;
    scanDateAtUpdate =
        NSUserDefaults::standardUserDefaults().dateForKey(ScanDefaults::playbackHistoryScanDate);
    if (whenUpdating) {
        whenUpdating();
    }
}

void RecordingScanPresenter::ask(const SuspectQuestion& question,
                                 std::function<void(SuspectAnswer)> answer) {
    questions.push_back(question);
    if (answerAtOnce) {
        answer(*answerAtOnce);
    } else {
        pendingAnswer = std::move(answer);
    }
}

RecordingEnvironment::RecordingEnvironment(NSDate now, const std::string& zone)
    : directory_(makeDirectory()),
      clock(now),
      region(*NSTimeZone::timeZoneWithName(zone), "en_US"),
      wiring({.clock = clock,
              .defaults = *defaults,
              .notifications = centre,
              .mainQueue = mainQueue,
              .timers = timers,
              .library = library.library(),
              .awards = awards,
              .mirroring = mirroring,
              .scanPresenter = presenter,
              .failurePresenter = failures,
              .log = &log},
             storeFile()),
      data(&wiring.data()) {}

RecordingEnvironment::~RecordingEnvironment() {
    wiring.closeStore();
    std::filesystem::remove_all(directory_);
}

bool RecordingEnvironment::scan(NSDate since, bool popup) {
    // Shared with a completion that may come after this has returned.
    const auto completed = std::make_shared<std::atomic<bool>>(false);
    RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(since, popup,
                                                             [completed] { *completed = true; });
    runUntilIdle();
    return *completed;
}

bool RecordingEnvironment::scanByRule(bool popup) {
    const auto completed = std::make_shared<std::atomic<bool>>(false);
    RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(popup,
                                                             [completed] { *completed = true; });
    runUntilIdle();
    return *completed;
}

std::vector<RecordedPlay> RecordingEnvironment::plays() {
    std::vector<RecordedPlay> plays;
    for (const NSManagedObject& object :
         main().executeFetchRequest(PlayEvent::fetchRequest()).value()) {
        const PlayEvent event(object);
        const std::optional<PlaybackHistory> song = event.parentHistory();
        plays.push_back({event.eventDate()->timeIntervalSinceReferenceDate(),
                         event.isInterpolated(),
                         song ? song->title().value_or("(absent)") : "(no song)"});
    }
    std::sort(plays.begin(), plays.end());
    return plays;
}

std::vector<PlaybackHistory> RecordingEnvironment::histories() {
    std::vector<PlaybackHistory> histories;
    for (const NSManagedObject& object :
         main().executeFetchRequest(PlaybackHistory::fetchRequest()).value()) {
        histories.emplace_back(object);
    }
    return histories;
}

PlaybackHistory RecordingEnvironment::history(const std::string& title) {
    for (const PlaybackHistory& candidate : histories()) {
        if (candidate.title() == title) {
            return candidate;
        }
    }
    precondition(false, "the test's record exists");
    return histories().front();
}

PlaybackHistory RecordingEnvironment::makeHistory(const std::string& title, double duration,
                                                  const std::string& storeID,
                                                  const std::string& libraryID) {
    PlaybackHistory history = PlaybackHistory::insert(main());
    history.setTitle(title);
    history.setDuration(duration);
    history.setStoreID(storeID.empty() ? NSUUID::UUIDString() : storeID);
    history.setLibraryID(libraryID.empty() ? NSUUID::UUIDString() : libraryID);
    return history;
}

PlayEvent RecordingEnvironment::makePlay(PlaybackHistory& history, double seconds,
                                         bool isInterpolated) {
    PlayEvent event = PlayEvent::insert(main());
    event.setEventDate(at(seconds));
    event.setIsInterpolated(isInterpolated);
    history.addPlaysObject(event);
    return event;
}

void RecordingEnvironment::saveMain() {
    data->saveMainContext();
    runUntilIdle();
}

}  // namespace tavrion
