#include "platform/mediaplayer/SourceRegistry.h"

#include <algorithm>

#include "platform/foundation/Precondition.h"

namespace tavrion {

void SourceRegistry::registerKind(Kind kind) {
    precondition(kindNamed(kind.name) == nullptr, "a kind of media library is registered once");
    kinds_.push_back(std::move(kind));
}

const SourceRegistry::Kind* SourceRegistry::kindNamed(const std::string& name) const {
    const auto found = std::find_if(kinds_.begin(), kinds_.end(),
                                    [&](const Kind& kind) { return kind.name == name; });
    return found == kinds_.end() ? nullptr : &*found;
}

Result<std::unique_ptr<Source>> SourceRegistry::create(const std::string& kind,
                                                       std::string location) const {
    if (const Kind* found = kindNamed(kind)) {
        return found->create(std::move(location));
    }
    std::string known;
    for (const Kind& candidate : kinds_) {
        known += (known.empty() ? "" : ", ") + candidate.name;
    }
    return NSError{
        "There is no kind of media library named \"" + kind + "\"; use one of: " + known + ".", {}};
}

}  // namespace tavrion
