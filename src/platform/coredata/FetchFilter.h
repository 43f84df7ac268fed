// A fetch condition with its keys resolved to the properties of one entity.
//
// Queue: any; immutable once made. Every record is tested: look-ups by index are recordsWhere() of
// the context and walks over the indexes of a version.
#pragma once

#include <optional>
#include <vector>

#include "platform/coredata/Field.h"
#include "platform/foundation/NSPredicate.h"

namespace tavrion {

class FetchFilter {
  public:
    /// A key that the entity does not have reads as absent.
    FetchFilter(const NSManagedObjectModel& model, EntityIndex entity,
                const std::optional<NSPredicate>& predicate);

    /// Whether a record matches; `read(property)` gives its fields.
    template <class Read>
    bool matches(Read read) const {
        return !condition_ || holds(*condition_, read);
    }

  private:
    struct Condition {
        NSPredicate::Kind kind = NSPredicate::Kind::all;
        NSPredicate::Operator op = NSPredicate::Operator::equal;
        std::optional<PropertyIndex> property;
        NSAttributeType type = NSAttributeType::string;
        EntityIndex destination = 0;
        Value value;
        std::vector<Condition> parts;
    };

    template <class Read>
    static bool holds(const Condition& condition, Read& read) {
        switch (condition.kind) {
            case NSPredicate::Kind::all:
                for (const Condition& part : condition.parts) {
                    if (!holds(part, read)) {
                        return false;
                    }
                }
                return true;
            case NSPredicate::Kind::any:
                for (const Condition& part : condition.parts) {
                    if (holds(part, read)) {
                        return true;
                    }
                }
                return false;
            case NSPredicate::Kind::comparison:
                return compares(condition,
                                condition.property ? read(*condition.property) : FieldView());
        }
        return false;
    }
    static bool compares(const Condition& condition, const FieldView& field);
    static Condition resolved(const NSManagedObjectModel& model, const NSEntityDescription& entity,
                              const NSPredicate& predicate);

    std::optional<Condition> condition_;
};

}  // namespace tavrion
