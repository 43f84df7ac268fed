// tavrionctl plays and histories: the records as they are.
#pragma once

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class PlaysCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string range_;
    std::string song_;
};

class HistoriesCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;
};

}  // namespace tavrion::ctl
