// tavrionctl browse: the library as one list, or its eight statistics.
#pragma once

#include <optional>
#include <string>

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class BrowseCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::optional<std::string> group_;
    std::optional<std::string> sort_;
    bool reverse_ = false;
    bool tiles_ = false;
};

}  // namespace tavrion::ctl
