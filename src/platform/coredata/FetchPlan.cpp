#include "platform/coredata/FetchPlan.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace tavrion {
namespace {

EntityIndex destinationOf(const NSManagedObjectModel& model,
                          const NSPropertyDescription& property) {
    return model.entityForName(property.destinationEntity).value_or(0);
}

/// The number of a bool, an integer or a real; absent for everything else.
std::optional<double> numberOf(const Value& value) {
    if (const auto* real = value.get<double>()) {
        return *real;
    }
    if (const auto* integer = value.get<std::int64_t>()) {
        return static_cast<double>(*integer);
    }
    return std::nullopt;
}

}  // namespace

std::optional<FieldView> fieldForKey(const Value& value, NSAttributeType type) {
    switch (type) {
        case NSAttributeType::string:
            if (const auto* text = value.get<std::string>()) {
                return FieldView(std::string_view(*text));
            }
            return std::nullopt;
        case NSAttributeType::real:
            if (const auto number = numberOf(value)) {
                return FieldView(*number);
            }
            return std::nullopt;
        case NSAttributeType::date:
            if (const auto* date = value.get<NSDate>()) {
                return FieldView(*date);
            }
            return std::nullopt;
        case NSAttributeType::reference:
            if (const auto* reference = value.get<ObjectReference>()) {
                return FieldView(Link{NSManagedObjectID::of(*reference).counter});
            }
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

FetchPlan::FetchPlan(const NSManagedObjectModel& model, EntityIndex entity,
                     const std::optional<NSPredicate>& predicate)
    : model_(model), entity_(model.entity(entity)) {
    if (predicate) {
        condition_ = resolved(*predicate);
        points_ = pointsOf(*condition_);
        if (!points_) {
            range_ = rangeOf(*condition_);
        }
    }
}

FetchPlan::Condition FetchPlan::resolved(const NSPredicate& predicate) const {
    Condition condition;
    condition.kind = predicate.kind();
    if (predicate.kind() == NSPredicate::Kind::comparison) {
        condition.op = predicate.op();
        condition.value = predicate.value();
        condition.property = entity_.propertyNamed(predicate.key());
        if (condition.property) {
            const NSPropertyDescription& property = entity_.properties[*condition.property];
            condition.type = property.type;
            condition.destination = destinationOf(model_, property);
        }
        return condition;
    }
    for (const NSPredicate& part : predicate.subpredicates()) {
        Condition inner = resolved(part);
        // An AND within an AND is one list, so that an index over several properties finds them
        // all.
        if (condition.kind == NSPredicate::Kind::all && inner.kind == NSPredicate::Kind::all) {
            std::move(inner.parts.begin(), inner.parts.end(), std::back_inserter(condition.parts));
        } else {
            condition.parts.push_back(std::move(inner));
        }
    }
    return condition;
}

bool FetchPlan::compares(const Condition& condition, const FieldView& field) {
    switch (condition.op) {
        case NSPredicate::Operator::equal:
            if (std::holds_alternative<std::string_view>(field)) {
                return fieldEquals(field, condition.value, condition.destination);
            }
            break;
        case NSPredicate::Operator::greater:
        case NSPredicate::Operator::less:
            if (const auto* date = std::get_if<NSDate>(&field)) {
                const auto* bound = condition.value.get<NSDate>();
                return bound != nullptr &&
                       (condition.op == NSPredicate::Operator::less ? *date < *bound
                                                                    : *date > *bound);
            }
            break;
        default:
            break;
    }
    return NSPredicate::compare(valueOf(field, condition.type, condition.destination), condition.op,
                                condition.value);
}

std::optional<std::vector<FetchPlan::Point>> FetchPlan::pointsOf(const Condition& condition) const {
    if (condition.kind == NSPredicate::Kind::any) {
        std::vector<Point> all;
        for (const Condition& part : condition.parts) {
            const auto points = pointsOf(part);
            if (!points) {
                return std::nullopt;
            }
            all.insert(all.end(), points->begin(), points->end());
        }
        return all;
    }
    const Condition* const begin =
        condition.kind == NSPredicate::Kind::comparison ? &condition : condition.parts.data();
    const Condition* const end = condition.kind == NSPredicate::Kind::comparison
                                     ? &condition + 1
                                     : begin + condition.parts.size();
    for (std::size_t i = 0; i < entity_.indexes.size(); ++i) {
        const auto equalTo = [&](PropertyIndex property) -> std::optional<FieldView> {
            const Condition* part = std::find_if(begin, end, [&](const Condition& candidate) {
                return candidate.kind == NSPredicate::Kind::comparison &&
                       candidate.property == property &&
                       candidate.op == NSPredicate::Operator::equal;
            });
            return part == end ? std::nullopt : fieldForKey(part->value, part->type);
        };
        const std::vector<PropertyIndex>& properties = entity_.indexes[i].properties;
        if (std::all_of(properties.begin(), properties.end(),
                        [&](PropertyIndex p) { return equalTo(p).has_value(); })) {
            const auto key = IndexKeys::ofRecord(entity_.indexes[i],
                                                 [&](PropertyIndex p) { return *equalTo(p); });
            return std::vector<Point>{{i, key.value_or(0)}};
        }
    }
    for (const Condition* part = begin; condition.kind == NSPredicate::Kind::all && part != end;
         ++part) {
        if (part->kind == NSPredicate::Kind::any) {
            if (auto points = pointsOf(*part)) {
                return points;
            }
        }
    }
    return std::nullopt;
}

std::optional<FetchPlan::Range> FetchPlan::rangeOf(const Condition& condition) const {
    if (condition.kind != NSPredicate::Kind::all) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < entity_.indexes.size(); ++i) {
        const std::vector<PropertyIndex>& properties = entity_.indexes[i].properties;
        if (properties.size() != 1 ||
            entity_.properties[properties.front()].type != NSAttributeType::date) {
            continue;
        }
        Range range{i, 0, std::numeric_limits<std::uint64_t>::max()};
        bool bounded = false;
        for (const Condition& part : condition.parts) {
            const auto* date = part.value.get<NSDate>();
            if (part.kind != NSPredicate::Kind::comparison || part.property != properties.front() ||
                date == nullptr || std::isnan(date->timeIntervalSinceReferenceDate())) {
                continue;
            }
            const std::uint64_t key = IndexKeys::ofDate(*date);
            // Bounds stay inclusive here; the exact test is made on each candidate.
            if (part.op == NSPredicate::Operator::greater ||
                part.op == NSPredicate::Operator::greaterOrEqual) {
                range.low = std::max(range.low, key);
                bounded = true;
            } else if (part.op == NSPredicate::Operator::less ||
                       part.op == NSPredicate::Operator::lessOrEqual) {
                range.high = std::min(range.high, key);
                bounded = true;
            }
        }
        if (bounded) {
            return range;
        }
    }
    return std::nullopt;
}

}  // namespace tavrion
