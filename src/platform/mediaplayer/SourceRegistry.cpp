#include "platform/mediaplayer/SourceRegistry.h"

#include <algorithm>

#include "platform/foundation/Precondition.h"

namespace tavrion {

void SourceRegistry::registerKind(Kind kind) {
    const bool isNew = std::none_of(kinds_.begin(), kinds_.end(),
                                    [&](const Kind& known) { return known.name == kind.name; });
    precondition(isNew, "a kind of media library is registered once");
    kinds_.push_back(std::move(kind));
}

Result<std::unique_ptr<Source>> SourceRegistry::create(const std::string& kind,
                                                       std::string location) const {
    std::string known;
    for (const Kind& candidate : kinds_) {
        if (candidate.name == kind) {
            return candidate.create(std::move(location));
        }
        known += (known.empty() ? "" : ", ") + candidate.name;
    }
    return NSError{
        "There is no kind of media library named \"" + kind + "\"; use one of: " + known + ".", {}};
}

}  // namespace tavrion
