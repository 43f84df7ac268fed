// One property of one record: as an owned value in unsaved changes, and as a view into a column or
// a change.
//
// Queue: any; values. Absent is the empty alternative. A FieldView lives no longer than what it was
// read from.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/coredata/NSManagedObjectID.h"
#include "platform/foundation/NSDate.h"
#include "platform/foundation/Value.h"

namespace tavrion {

/// A reference to a record of the property's destination entity.
struct Link {
    RecordCounter counter = 0;
    bool operator==(const Link&) const = default;
};

/// Texts and binary data both are strings here; the property's type tells which.
using Field = std::variant<std::monostate, bool, std::int64_t, double, NSDate, std::string, Link>;
using FieldView =
    std::variant<std::monostate, bool, std::int64_t, double, NSDate, std::string_view, Link>;

FieldView viewOf(const Field& field);
Field fieldOf(const FieldView& view);

/// A property with a value: to set, or to compare with; absent equals absent.
struct PropertyValue {
    PropertyIndex property = 0;
    FieldView value;
};

/// Whether a property of this type, never set, reads as NO or 0 instead of absent.
bool readsAsZero(NSAttributeType type);
/// The view of a property that was never set.
FieldView unsetView(NSAttributeType type);

/// Whether `view OP value` holds by the rules of NSPredicate. `destination` is the entity of a
/// reference.
bool fieldEquals(const FieldView& view, const Value& value, EntityIndex destination);
Value valueOf(const FieldView& view, NSAttributeType type, EntityIndex destination);

}  // namespace tavrion
