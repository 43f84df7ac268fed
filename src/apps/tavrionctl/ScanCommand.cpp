#include "apps/tavrionctl/ScanCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "platform/foundation/NSDate+Extended.h"
#include "recording/DataProcess.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion::ctl {
namespace {

/// The awards that wait to be announced.
Value::Array pendingAwards() {
    return NSUserDefaults::standardUserDefaults()
        .arrayForKey(ScanDefaults::pendingAchievementIdentifiers)
        .value_or(Value::Array());
}

/// Watches a scan from outside and counts what it did.
class ScanReport {
  public:
    explicit ScanReport(Session& session) : session_(session) {
        NSNotificationCenter& centre = NSNotificationCenter::defaultCenter();
        updates_ = centre.addObserver(DataProcess::didUpdate, nullptr, nullptr,
                                      [this](const NSNotification&) { ++songsMatched_; });
        saves_ =
            centre.addObserver(NSManagedObjectContextDidSaveObjectIDsNotification, nullptr, nullptr,
                               [this](const NSNotification& notification) { note(notification); });
    }

    std::size_t songsMatched() const { return songsMatched_; }
    /// What was queued for announcement meanwhile.
    Value::Array awardsEarned() const {
        Value::Array earned = pendingAwards();
        std::erase_if(earned, [&](const Value& award) {
            return std::find(pendingBefore_.begin(), pendingBefore_.end(), award) !=
                   pendingBefore_.end();
        });
        return earned;
    }
    /// What the scan inserted and the clean-up left.
    std::size_t created(EntityIndex entity) const {
        const std::shared_ptr<const StoreVersion> records = session_.records();
        MutexLock lock(mutex_);
        std::size_t count = 0;
        for (const NSManagedObjectID id : inserted_) {
            count += id.entity == entity && records->find(id).has_value() ? 1 : 0;
        }
        return count;
    }

  private:
    void note(const NSNotification& notification) {
        const SavedObjectIDs* ids = notification.info<SavedObjectIDs>(NSInsertedObjectIDsKey);
        // The main context saves again what its children gave it.
        if (ids != nullptr && notification.object != session_.data().mainContext().get()) {
            MutexLock lock(mutex_);
            inserted_.insert(inserted_.end(), (*ids)->begin(), (*ids)->end());
        }
    }

    Session& session_;
    const Value::Array pendingBefore_ = pendingAwards();
    std::atomic<std::size_t> songsMatched_{0};
    mutable Mutex mutex_;
    std::vector<NSManagedObjectID> inserted_ TAVRION_GUARDED_BY(mutex_);
    NSNotificationCenter::Observation updates_;
    NSNotificationCenter::Observation saves_;
};

void writeReport(Session& session, const ScanReport& report, NSDate since) {
    const std::vector<std::string>& suspects = session.scanPresenter().suspectTitles();
    const std::size_t events = report.created(NerindaEntity::PlayEvent);
    const std::size_t histories = report.created(NerindaEntity::PlaybackHistory);
    if (!session.options().json) {
        fmt::print("{} songs played since {}; {} new songs, {} new plays\n", report.songsMatched(),
                   localText(since), histories, events);
        return;
    }
    JsonWriter json(stdout);
    json.beginObject().key("since").instant(since);
    json.key("songsMatched").unsignedInteger(report.songsMatched());
    json.key("historiesCreated").unsignedInteger(histories);
    json.key("eventsCreated").unsignedInteger(events);
    json.key("suspectTitles").beginArray();
    for (const std::string& title : suspects) {
        json.text(title);
    }
    json.endArray().key("awardsEarned").value(report.awardsEarned());
    json.key("scanDate").instant(RVPlaybackHistoryManager::previousScanDate()).endObject().finish();
}

}  // namespace

void ScanCommand::describe(const CommandSyntax& parent) {
    described_ =
        parent.command("scan", "Read the library and record what was played since the last scan");
    described_
        .text("--since", since_,
              "Which songs are looked at: rule (the last two days, or back to the "
              "installation after a gap), installation, or all")
        .oneOf({"rule", "installation", "all"});
    described_.flag("--restore", restore_,
                    "Take the installation back to the start of this year and look at all songs");
    described_
        .text("--suspects", suspects_,
              "Estimates of songs with five or more new plays: keep-all, "
              "keep-most-recent, or ask (on a terminal, else keep-all)")
        .oneOf({"keep-all", "keep-most-recent", "ask"});
}

NSDate ScanCommand::sinceDate() const {
    if (restore_ || since_ == "all") {
        return NSDate::distantPast();
    }
    return since_ == "installation" ? RVPlaybackHistoryManager::installationDate()
                                    : RVPlaybackHistoryManager::sinceDateByRule();
}

void ScanCommand::prepareRestore() const {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    const NSDate startOfYear = Extended::startOfDay(
        calendar.dateFromYear(calendar.timeZone().civilTime(NSDate::date()).year));
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setObject(ScanDefaults::installationDate, startOfYear);
    defaults.setObject(AwardDefaults::awardsScanDate, startOfYear);
}

void ScanCommand::choosePolicy(Session& session) const {
    const bool canAsk = ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
    session.scanPresenter().setPolicy(suspects_ == "keep-most-recent"
                                          ? SuspectPolicy::keepMostRecent
                                      : suspects_ == "ask" && canAsk ? SuspectPolicy::ask
                                                                     : SuspectPolicy::keepAll);
}

Outcome ScanCommand::execute(Session& session) {
    for (const auto step : {&Session::becomeWriter, &Session::openLibrary, &Session::openStore}) {
        if (Outcome outcome = (session.*step)(); !outcome.isDone()) {
            return outcome;
        }
    }
    choosePolicy(session);
    if (restore_) {
        prepareRestore();
    }
    // Both dates get their values before the scan asks for them, as at any first start.
    RVPlaybackHistoryManager::installationDate();
    RVPlaybackHistoryManager::previousScanDate();
    const NSDate since = sinceDate();
    const ScanReport report(session);
    std::atomic<bool> completed{false};
    RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(since, true,
                                                             [&completed] { completed = true; });
    if (const Result<void> ended = session.writer().resignActive(); !ended) {
        return Outcome::failure(ended.error().localizedDescription);
    }
    if (!completed) {
        return Outcome::failure("the scan did not come to its end; run it again");
    }
    if (report.songsMatched() == 0) {
        session.say(fmt::format(
            "No song was played since {}. To look at all songs: tavrionctl scan --since all",
            localText(since)));
    }
    writeReport(session, report, since);
    return {};
}

}  // namespace tavrion::ctl
