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
    /// Whether a progress bar may be drawn. Off until it is set.
    void setShowsProgress(bool shows) { showsProgress_ = shows; }

    void presentProgress() override;
    void ask(const SuspectQuestion& question, std::function<void(SuspectAnswer)> answer) override;
    /// The titles that the last question named.
    const std::vector<std::string>& suspectTitles() const { return suspectTitles_; }

  private:
    void draw(float progress);
    void clear();
    SuspectAnswer answerFromTerminal(const SuspectQuestion& question);

    SuspectPolicy policy_ = SuspectPolicy::keepAll;
    bool showsProgress_ = false;
    std::vector<std::string> suspectTitles_;
    Mutex mutex_;
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
