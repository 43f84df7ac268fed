// tavrionctl history: what was played in a range, as the History screen shows it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class HistoryCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string range_;
    std::optional<std::int64_t> bar_;
};

}  // namespace tavrion::ctl
