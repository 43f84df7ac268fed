#include "apps/tavrionctl/Presenters.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "apps/tavrionctl/Options.h"
#include "recording/DataProcess.h"

namespace tavrion::ctl {

void TerminalScanPresenter::setShowsProgress(bool shows) {
    showsProgress_ = shows;
    if (!shows) {
        updates_ = {};
        finish_ = {};
        return;
    }
    NSNotificationCenter& centre = NSNotificationCenter::defaultCenter();
    updates_ = centre.addObserver(
        DataProcess::didUpdate, nullptr, nullptr, [this](const NSNotification& notification) {
            if (const float* progress = notification.info<float>(DataProcess::progressKey)) {
                note(*progress);
            }
        });
    finish_ = centre.addObserver(DataProcess::didFinish, nullptr, nullptr,
                                 [this](const NSNotification&) { noteFinish(); });
}

void TerminalScanPresenter::presentProgress() {
    if (!showsProgress_) {
        return;
    }
    MutexLock lock(mutex_);
    draw(progress_);
    isPresented_ = !hasFinished_;
    if (hasFinished_) {
        clear();
    }
}

void TerminalScanPresenter::note(float progress) {
    MutexLock lock(mutex_);
    hasFinished_ = false;
    progress_ = progress;
    if (isPresented_) {
        draw(progress);
    }
}

void TerminalScanPresenter::noteFinish() {
    MutexLock lock(mutex_);
    isPresented_ = false;
    hasFinished_ = true;
    clear();
}

void TerminalScanPresenter::draw(float progress) {
    constexpr int width = 40;
    // A progress that is not a number compares as not larger, and is left out by that.
    const bool larger = progress * 100 >= static_cast<float>(shownPercent_ + 1);
    if (!larger) {
        return;
    }
    shownPercent_ = static_cast<int>(progress * 100);
    const int filled = shownPercent_ * width / 100;
    fmt::print(stderr, "\r[{:#<{}}{:.<{}}] {:3}%", "", filled, "", width - filled, shownPercent_);
    std::fflush(stderr);
}

void TerminalScanPresenter::clear() {
    if (shownPercent_ >= 0) {
        fmt::print(stderr, "\r{:60}\r", "");
        shownPercent_ = -1;
    }
}

void TerminalScanPresenter::ask(const SuspectQuestion& question,
                                std::function<void(SuspectAnswer)> answer) {
    {
        MutexLock lock(mutex_);
        clear();
    }
    suspectTitles_ = question.songTitles;
    switch (policy_) {
        case SuspectPolicy::keepAll:
            answer(SuspectAnswer::keepAll);
            break;
        case SuspectPolicy::keepMostRecent:
            answer(SuspectAnswer::keepMostRecent);
            break;
        case SuspectPolicy::ask:
            answer(answerFromTerminal(question));
            break;
    }
}

SuspectAnswer TerminalScanPresenter::answerFromTerminal(const SuspectQuestion& question) {
    fmt::print(stderr, "{}\n\n{}\n\n", question.title, question.message);
    for (;;) {
        fmt::print(stderr, "[1] {}  [2] {}: ", question.keepAll, question.keepMostRecent);
        std::fflush(stderr);
        std::string line;
        if (!std::getline(std::cin, line) || line == "1") {
            return SuspectAnswer::keepAll;
        }
        if (line == "2") {
            return SuspectAnswer::keepMostRecent;
        }
    }
}

void TerminalFailurePresenter::endProcess(const NSError& error) {
    fmt::print(stderr, "tavrionctl: {}\n", error.localizedDescription);
    std::fflush(nullptr);
    // Other queues may still run; nothing of theirs may be torn down under them.
    std::_Exit(Outcome::failed);
}

}  // namespace tavrion::ctl
