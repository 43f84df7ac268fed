// tavrionctl trending: the songs and collections that were played most.
#pragma once

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class TrendingCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string range_;
    std::string group_;
    std::string by_;
};

}  // namespace tavrion::ctl
