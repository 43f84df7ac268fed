// tavrionctl defaults: reads and writes the user defaults.
#pragma once

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class DefaultsReadCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string key_;
};

class DefaultsWriteCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;
};

class DefaultsDeleteCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string key_;
};

}  // namespace tavrion::ctl
