#include "apps/tavrionctl/BrowseCommand.h"
#include "apps/tavrionctl/Command.h"
#include "apps/tavrionctl/DefaultsCommands.h"
#include "apps/tavrionctl/EntityCommand.h"
#include "apps/tavrionctl/HistoryCommand.h"
#include "apps/tavrionctl/LibraryCommands.h"
#include "apps/tavrionctl/RecordCommands.h"
#include "apps/tavrionctl/ScanCommand.h"
#include "apps/tavrionctl/SearchCommand.h"
#include "apps/tavrionctl/TrendingCommand.h"

namespace tavrion::ctl {
namespace {

template <class... Commands>
CommandGroup group(std::string name, std::string help) {
    CommandGroup group{std::move(name), std::move(help), {}};
    (group.commands.push_back(std::make_unique<Commands>()), ...);
    return group;
}

}  // namespace

std::vector<CommandGroup> allCommands() {
    std::vector<CommandGroup> groups;
    groups.push_back(
        group<LibraryUseCommand, LibraryStatusCommand, LibrarySongsCommand, LibraryForgetCommand>(
            "library", "Choose and look at the music library"));
    groups.push_back(group<ScanCommand, PlaysCommand, HistoriesCommand, HistoryCommand,
                           BrowseCommand, SearchCommand, EntityCommand, TrendingCommand>("", ""));
    groups.push_back(group<DefaultsReadCommand, DefaultsWriteCommand, DefaultsDeleteCommand>(
        "defaults", "Read and write the user defaults"));
    return groups;
}

}  // namespace tavrion::ctl
