#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "apps/tavrionctl/Command.h"
#include "apps/tavrionctl/Session.h"

namespace tavrion::ctl {
namespace {

void describeGlobalOptions(CLI::App& app, Options& options) {
    app.set_version_flag("--version", "tavrionctl " TAVRION_VERSION);
    app.add_option(
           "--data-dir", options.dataDirectory,
           "Where the data lies (default: TAVRION_DATA_DIR, else tavrion in the user's data home)")
        ->type_name("DIR");
    app.add_option_function<std::string>(
           "--now",
           [&options](const std::string& text) {
               options.now = dateFromIsoText(text);
               if (!options.now) {
                   throw CLI::ValidationError("--now",
                                              "'" + text +
                                                  "' is not an instant; write it like "
                                                  "2026-03-01T12:00:00Z or with an offset");
               }
           },
           "Let the clock stand at this instant (ISO 8601 with offset or Z)")
        ->type_name("INSTANT");
    app.add_flag("--json", options.json, "Print one JSON value instead of text");
    app.add_flag("--quiet", options.quiet, "Print no messages but errors");
}

Outcome runChosen(std::vector<CommandGroup>& groups, const Options& options) {
    auto session = Session::open(options);
    if (!session) {
        return Outcome::failure(session.error().localizedDescription);
    }
    for (CommandGroup& group : groups) {
        for (const auto& command : group.commands) {
            if (command->isChosen()) {
                return command->execute(*session.value());
            }
        }
    }
    return Outcome::usage("no command was given; see tavrionctl --help");
}

/// Output that did not reach its reader must not pass for done.
Outcome checkedOutput(Outcome outcome) {
    if (outcome.isDone() && (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)) {
        return Outcome::failure(
            "the output can't be written; check the disk or the program that reads it");
    }
    return outcome;
}

}  // namespace

bool Command::isChosen() const {
    return described_ != nullptr && described_->parsed();
}

int runCommandLine(int argumentCount, const char* const* arguments) {
    CLI::App app("Keeps the listening history that a music library forgets", "tavrionctl");
    app.require_subcommand(1);
    app.fallthrough();
    Options options;
    describeGlobalOptions(app, options);
    std::vector<CommandGroup> groups = allCommands();
    for (CommandGroup& group : groups) {
        CLI::App* parent = &app;
        if (!group.name.empty()) {
            parent = app.add_subcommand(group.name, group.help);
            parent->require_subcommand(1);
        }
        for (const auto& command : group.commands) {
            command->describe(*parent);
        }
    }
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            return app.exit(error);
        }
        fmt::print(stderr, "tavrionctl: {}; see tavrionctl --help\n", error.what());
        return Outcome::wrongUsage;
    }
    const Outcome outcome = checkedOutput(runChosen(groups, options));
    if (!outcome.message.empty()) {
        fmt::print(stderr, "tavrionctl: {}\n", outcome.message);
    }
    return outcome.status;
}

}  // namespace tavrion::ctl
