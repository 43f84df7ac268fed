#include "apps/tavrionctl/Session.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <utility>

namespace tavrion::ctl {
namespace {

bool wantsLog() {
    const char* log = std::getenv("TAVRION_LOG");
    return log != nullptr && std::string_view(log) == "stderr";
}

Outcome outcomeOf(const Result<void>& result) {
    return result ? Outcome() : Outcome::failure(result.error().localizedDescription);
}

}  // namespace

Result<std::unique_ptr<Session>> Session::open(const Options& options) {
    auto session = std::unique_ptr<Session>(new Session(options));
    auto core =
        tavrion::Session::open({options.dataDirectory, options.now, TAVRION_LOCALE_DIRECTORY},
                               {session->scanPresenter_, session->failurePresenter_,
                                wantsLog() ? &session->logSink_ : nullptr});
    if (!core) {
        return core.error();
    }
    session->core_ = std::move(core).value();
    session->scanPresenter_.setShowsProgress(!options.quiet && !options.json &&
                                             ::isatty(STDERR_FILENO) == 1);
    for (const std::string& notice : session->core_->notices()) {
        session->say(notice);
    }
    return session;
}

Outcome Session::becomeWriter() {
    auto writer = core_->becomeWriter();
    if (const auto* refusal = std::get_if<WriterLock::Refusal>(&writer)) {
        return {refusal->failure == WriterLock::Failure::inUse ? Outcome::inUse : Outcome::failed,
                refusal->message};
    }
    writer_ = std::get<Writer*>(writer);
    return {};
}

Outcome Session::openStore() {
    // The failure presenter has reported why, and ended the process.
    return core_->openStore() ? Outcome() : Outcome::failure("the store can't be opened");
}

Outcome Session::openLibrary() {
    return outcomeOf(core_->openLibrary());
}

void Session::publish(std::unique_ptr<Source> source,
                      std::shared_ptr<const MediaSnapshot> snapshot) {
    core_->publish(std::move(source), std::move(snapshot));
}

void Session::say(const std::string& line) const {
    if (!options_.quiet) {
        fmt::print(stderr, "{}\n", line);
    }
}

}  // namespace tavrion::ctl
