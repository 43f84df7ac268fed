// The identifier of a record: its entity and a counter that the store gives once and never again.
//
// Queue: any; a value. Permanent from the insert on and the same in every later process.
// Identifiers order by entity, then by counter: the order in which records of an entity were made.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/coredata/NSManagedObjectModel.h"
#include "platform/foundation/Value.h"

namespace tavrion {

/// Counts the records of one entity from 1; 0 is no record.
using RecordCounter = std::uint32_t;

struct NSManagedObjectID {
    EntityIndex entity = 0;
    RecordCounter counter = 0;

    auto operator<=>(const NSManagedObjectID&) const = default;
    ObjectReference reference() const { return {(std::uint64_t{entity} << 32U) | counter}; }
    static NSManagedObjectID of(ObjectReference reference) {
        return {static_cast<EntityIndex>(reference.bits >> 32U),
                static_cast<RecordCounter>(reference.bits)};
    }

    /// "PlayEvent/17".
    std::string text(const NSManagedObjectModel& model) const;
    static std::optional<NSManagedObjectID> fromText(const NSManagedObjectModel& model,
                                                     std::string_view text);
};

}  // namespace tavrion

template <>
struct std::hash<tavrion::NSManagedObjectID> {
    std::size_t operator()(const tavrion::NSManagedObjectID& id) const noexcept {
        return id.reference().bits;
    }
};
