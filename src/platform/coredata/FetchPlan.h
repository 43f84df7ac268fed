// A fetch condition with its keys resolved to the properties of one entity, and the index look-ups
// that can answer it.
//
// Queue: any; immutable once made. A plan with points finds its candidates by equality in indexes,
// one with a range by the order of a date index; each candidate is then tested by matches(). A plan
// with neither walks the table.
#pragma once

#include <optional>
#include <vector>

#include "platform/coredata/Field.h"
#include "platform/coredata/IndexKeys.h"
#include "platform/foundation/NSPredicate.h"

namespace tavrion {

class FetchPlan {
  public:
    /// One equality look-up.
    struct Point {
        std::size_t index = 0;
        std::uint64_t key = 0;
    };
    /// A span of keys of one index, both ends included.
    struct Range {
        std::size_t index = 0;
        std::uint64_t low = 0;
        std::uint64_t high = 0;
    };

    /// A key that the entity does not have reads as absent.
    FetchPlan(const NSManagedObjectModel& model, EntityIndex entity,
              const std::optional<NSPredicate>& predicate);

    /// Look-ups that together find every match; absent when equality alone cannot.
    const std::optional<std::vector<Point>>& points() const { return points_; }
    const std::optional<Range>& range() const { return range_; }

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

    Condition resolved(const NSPredicate& predicate) const;
    std::optional<std::vector<Point>> pointsOf(const Condition& condition) const;
    std::optional<Range> rangeOf(const Condition& condition) const;

    const NSManagedObjectModel& model_;
    const NSEntityDescription& entity_;
    std::optional<Condition> condition_;
    std::optional<std::vector<Point>> points_;
    std::optional<Range> range_;
};

/// `value` as a field of that type, for the key of an equality look-up. Absent when the value is
/// absent or of another type. Lives no longer than `value`.
std::optional<FieldView> fieldForKey(const Value& value, NSAttributeType type);

}  // namespace tavrion
