// tavrionctl search: artists, albums, songs and playlists by what they are called.
#pragma once

#include <string>

#include "apps/tavrionctl/Command.h"

namespace tavrion::ctl {

class SearchCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string term_;
    bool showsAll_ = false;
};

}  // namespace tavrion::ctl
