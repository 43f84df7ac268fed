// The kinds of media libraries that the program can read.
//
// Queue: filled by the composition root at the start, then read from any queue.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Result.h"
#include "platform/mediaplayer/Source.h"

namespace tavrion {

class SourceRegistry {
  public:
    using Create = std::function<Result<std::unique_ptr<Source>>(std::string location)>;
    struct Kind {
        std::string name;
        /// One line for people: what it reads and what the location is.
        std::string help;
        Create create;
        /// Whether the location may be the path of a file, which is then kept whole.
        bool locationIsPath = true;
    };

    /// A second kind of one name is a mistake in the program.
    void registerKind(Kind kind);
    /// In the order of their registration.
    const std::vector<Kind>& kinds() const { return kinds_; }
    /// Null for an unknown kind.
    const Kind* kindNamed(const std::string& name) const;
    /// A source of that kind; an unknown kind is an error that lists the known ones.
    Result<std::unique_ptr<Source>> create(const std::string& kind, std::string location) const;

  private:
    std::vector<Kind> kinds_;
};

}  // namespace tavrion
