#include "platform/coredata/FetchFilter.h"

namespace tavrion {

FetchFilter::FetchFilter(const NSManagedObjectModel& model, EntityIndex entity,
                         const std::optional<NSPredicate>& predicate) {
    if (predicate) {
        condition_ = resolved(model, model.entity(entity), *predicate);
    }
}

FetchFilter::Condition FetchFilter::resolved(const NSManagedObjectModel& model,
                                             const NSEntityDescription& entity,
                                             const NSPredicate& predicate) {
    Condition condition;
    condition.kind = predicate.kind();
    if (predicate.kind() == NSPredicate::Kind::comparison) {
        condition.op = predicate.op();
        condition.value = predicate.value();
        condition.property = entity.propertyNamed(predicate.key());
        if (condition.property) {
            const NSPropertyDescription& property = entity.properties[*condition.property];
            condition.type = property.type;
            condition.destination = model.entityForName(property.destinationEntity).value_or(0);
        }
        return condition;
    }
    for (const NSPredicate& part : predicate.subpredicates()) {
        condition.parts.push_back(resolved(model, entity, part));
    }
    return condition;
}

bool FetchFilter::compares(const Condition& condition, const FieldView& field) {
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

}  // namespace tavrion
