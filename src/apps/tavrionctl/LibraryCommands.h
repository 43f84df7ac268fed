// tavrionctl library: which music library is read.
#pragma once

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class LibraryUseCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    /// Warns and copies the store when its records come from another library.
    Outcome guardExistingRecords(Session& session, const std::string& kind,
                                 const std::string& location);
    std::string kind_;
    std::string location_;
};

class LibraryStatusCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;
};

class LibrarySongsCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    bool withNonLibrarySongs_ = false;
};

class LibraryForgetCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;
};

}  // namespace tavrion::ctl
