#include <fmt/format.h>

#include <cstdio>
#include <exception>

#include "apps/tavrionctl/Command.h"
#include "apps/tavrionctl/Session.h"

namespace tavrion::ctl {
namespace {

void describeGlobalOptions(const CommandSyntax& program, Options& options) {
    program
        .text(
            "--data-dir", options.dataDirectory,
            "Where the data lies (default: TAVRION_DATA_DIR, else tavrion in the user's data home)")
        .valueName("DIR");
    const auto takeNow = [&options](const std::string& text) {
        options.now = dateFromIsoText(text);
        return options.now ? std::nullopt
                           : std::optional("'" + text +
                                           "' is not an instant; write it like "
                                           "2026-03-01T12:00:00Z or with an offset");
    };
    program
        .taken("--now", takeNow, "Let the clock stand at this instant (ISO 8601 with offset or Z)")
        .valueName("INSTANT");
    program.flag("--json", options.json, "Print one JSON value instead of text");
    program.flag("--quiet", options.quiet, "Print no messages but errors");
}

void describeCommands(const CommandSyntax& program, const std::vector<CommandGroup>& groups) {
    program.wantsCommand();
    for (const CommandGroup& group : groups) {
        CommandSyntax parent = program;
        if (!group.name.empty()) {
            parent = program.command(group.name, group.help);
            parent.wantsCommand();
        }
        for (const auto& command : group.commands) {
            command->describe(parent);
        }
    }
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

int runCommandLine(int argumentCount, const char* const* arguments) {
    CommandLineSyntax syntax("tavrionctl",
                             "Keeps the listening history that a music library forgets",
                             "tavrionctl " TAVRION_VERSION);
    Options options;
    std::vector<CommandGroup> groups = allCommands();
    describeGlobalOptions(syntax.program(), options);
    describeCommands(syntax.program(), groups);
    const CommandLineSyntax::Parsed parsed = syntax.parse(argumentCount, arguments);
    if (parsed.isAnswered) {
        return Outcome::done;
    }
    if (parsed.fault) {
        fmt::print(stderr, "tavrionctl: {}; see tavrionctl --help\n", *parsed.fault);
        return Outcome::wrongUsage;
    }
    const Outcome outcome = checkedOutput(runChosen(groups, options));
    if (!outcome.message.empty()) {
        fmt::print(stderr, "tavrionctl: {}\n", outcome.message);
    }
    return outcome.status;
}

}  // namespace tavrion::ctl
