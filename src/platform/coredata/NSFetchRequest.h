// What to fetch: an entity, a condition, an order.
//
// Queue: any; a value. Without sort descriptors objects come in identifier order, and equal ones
// keep that order. An absent value sorts before all others.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/NSPredicate.h"

namespace tavrion {

struct NSSortDescriptor {
    std::string key;
    bool ascending = true;
};

struct NSFetchRequest {
    static NSFetchRequest fetchRequestWithEntityName(std::string name) {
        NSFetchRequest request;
        request.entityName = std::move(name);
        return request;
    }
    NSFetchRequest& where(NSPredicate condition) {
        predicate = std::move(condition);
        return *this;
    }

    std::string entityName;
    /// Absent means every object.
    std::optional<NSPredicate> predicate;
    std::vector<NSSortDescriptor> sortDescriptors;
};

}  // namespace tavrion
