// One command of the command line: its name, its description, its options, and what it does.
//
// Queue: the main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/tavrionctl/CommandSyntax.h"
#include "apps/tavrionctl/Options.h"

namespace tavrion::ctl {

class Session;

class Command {
  public:
    virtual ~Command() = default;

    /// Adds the command below `parent`.
    virtual void describe(const CommandSyntax& parent) = 0;
    /// Whether the command line names this command. After parsing.
    bool isChosen() const { return described_.isChosen(); }
    virtual Outcome execute(Session& session) = 0;

  protected:
    CommandSyntax described_;
};

/// Every command, with its group.
struct CommandGroup {
    /// Empty for commands that stand alone.
    std::string name;
    std::string help;
    std::vector<std::unique_ptr<Command>> commands;
};
std::vector<CommandGroup> allCommands();

/// Parses the command line, runs the command and gives the exit status.
int runCommandLine(int argumentCount, const char* const* arguments);

}  // namespace tavrion::ctl
