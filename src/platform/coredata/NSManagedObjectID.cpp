#include "platform/coredata/NSManagedObjectID.h"

#include <fmt/format.h>

#include <charconv>

namespace tavrion {

std::string NSManagedObjectID::text(const NSManagedObjectModel& model) const {
    return fmt::format("{}/{}", model.entity(entity).name, counter);
}

std::optional<NSManagedObjectID> NSManagedObjectID::fromText(const NSManagedObjectModel& model,
                                                             std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) {
        return std::nullopt;
    }
    const std::optional<EntityIndex> entity = model.entityForName(text.substr(0, slash));
    const std::string_view digits = text.substr(slash + 1);
    RecordCounter counter = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), counter);
    // A record has one text: no zero leads.
    if (!entity || error != std::errc() || end != digits.data() + digits.size() ||
        digits.front() == '0') {
        return std::nullopt;
    }
    return NSManagedObjectID{*entity, counter};
}

}  // namespace tavrion
