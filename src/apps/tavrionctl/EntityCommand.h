// tavrionctl entity: the page of one song, album, artist, genre or playlist.
#pragma once

#include <string>

#include "apps/tavrionctl/Command.h"
#include "apps/tavrionctl/EntityFinder.h"

namespace tavrion::ctl {

class EntityCommand final : public Command {
  public:
    void describe(const CommandSyntax& parent) override;
    Outcome execute(Session& session) override;

  private:
    std::string kind_;
    EntitySearch search_;
    std::string persistentID_;
    std::string sort_;
};

}  // namespace tavrion::ctl
