// What a scan and a failure show on a terminal.
//
// Queue: as the ports say; the progress is drawn on the queue of the scan.
#pragma once

#include <vector>

#include "persistence/FailurePresenter.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "recording/ScanPresenter.h"

namespace tavrion::ctl {

/// What to do about suspect plays.
enum class SuspectPolicy { keepAll, keepMostRecent, ask };

class TerminalScanPresenter final : public ScanPresenter {
  public:
    void setPolicy(SuspectPolicy policy) { policy_ = policy; }
    /// Whether a progress bar may be drawn. Off until it is set, which is before a scan.
    void setShowsProgress(bool shows);

    void presentProgress() override;
    void ask(const SuspectQuestion& question, std::function<void(SuspectAnswer)> answer) override;
    /// The titles that the last question named.
    const std::vector<std::string>& suspectTitles() const { return suspectTitles_; }

  private:
    void note(float progress);
    void noteFinish();
    void draw(float progress) TAVRION_REQUIRES(mutex_);
    void clear() TAVRION_REQUIRES(mutex_);
    SuspectAnswer answerFromTerminal(const SuspectQuestion& question);

    SuspectPolicy policy_ = SuspectPolicy::keepAll;
    bool showsProgress_ = false;
    std::vector<std::string> suspectTitles_;
    Mutex mutex_;
    /// A scan can be at its end before the main queue comes to present its progress; the bar is
    /// then drawn once, for the eye of who counts on it, and taken away.
    bool isPresented_ TAVRION_GUARDED_BY(mutex_) = false;
    bool hasFinished_ TAVRION_GUARDED_BY(mutex_) = false;
    float progress_ TAVRION_GUARDED_BY(mutex_) = 0;
    int shownPercent_ TAVRION_GUARDED_BY(mutex_) = -1;
    NSNotificationCenter::Observation updates_;
    NSNotificationCenter::Observation finish_;
};

/// One line on standard error, and exit status 1.
class TerminalFailurePresenter final : public FailurePresenter {
  public:
    void presentDataFailure(const NSError& error) override { endProcess(error); }
    void endProcess(const NSError& error) override;
};

}  // namespace tavrion::ctl
