// tavrionctl scan: turns what was played into dated plays.
#pragma once

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class ScanCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    NSDate sinceDate() const;
    void prepareRestore() const;
    void choosePolicy(Session& session) const;

    std::string since_ = "rule";
    bool restore_ = false;
    std::string suspects_ = "ask";
};

}  // namespace tavrion::ctl
