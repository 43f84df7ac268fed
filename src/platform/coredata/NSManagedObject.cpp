#include "platform/coredata/NSManagedObject.h"

#include "platform/coredata/NSManagedObjectContext.h"

namespace tavrion {
namespace {

template <class T>
T valueOr(const FieldView& field, T otherwise) {
    const T* value = std::get_if<T>(&field);
    return value != nullptr ? *value : otherwise;
}

EntityIndex destinationOf(const NSManagedObjectModel& model, NSManagedObjectID id,
                          PropertyIndex property) {
    return model.entityForName(model.entity(id.entity).properties[property].destinationEntity)
        .value_or(0);
}

}  // namespace

bool NSManagedObject::isDeleted() const {
    return !context_->existingObjectWithID(id_).has_value();
}

std::optional<std::string> NSManagedObject::text(PropertyIndex property) const {
    return context_->withField(
        id_, property, [](const FieldView& field) -> std::optional<std::string> {
            const auto* value = std::get_if<std::string_view>(&field);
            return value != nullptr ? std::optional<std::string>(*value) : std::nullopt;
        });
}

std::optional<NSDate> NSManagedObject::date(PropertyIndex property) const {
    return context_->withField(id_, property, [](const FieldView& field) -> std::optional<NSDate> {
        const auto* value = std::get_if<NSDate>(&field);
        return value != nullptr ? std::optional<NSDate>(*value) : std::nullopt;
    });
}

std::optional<NSData> NSManagedObject::data(PropertyIndex property) const {
    std::optional<std::string> bytes = text(property);
    return bytes ? std::optional<NSData>(NSData{std::move(*bytes)}) : std::nullopt;
}

double NSManagedObject::real(PropertyIndex property) const {
    return context_->withField(id_, property,
                               [](const FieldView& field) { return valueOr<double>(field, 0); });
}

std::int64_t NSManagedObject::integer(PropertyIndex property) const {
    return context_->withField(
        id_, property, [](const FieldView& field) { return valueOr<std::int64_t>(field, 0); });
}

bool NSManagedObject::boolean(PropertyIndex property) const {
    return context_->withField(id_, property,
                               [](const FieldView& field) { return valueOr<bool>(field, false); });
}

std::optional<NSManagedObject> NSManagedObject::reference(PropertyIndex property) const {
    const Link link = context_->withField(
        id_, property, [](const FieldView& field) { return valueOr<Link>(field, {}); });
    if (link.counter == 0) {
        return std::nullopt;
    }
    return context_->existingObjectWithID(
        {destinationOf(context_->model(), id_, property), link.counter});
}

std::vector<NSManagedObject> NSManagedObject::referringObjects(EntityIndex entity,
                                                               PropertyIndex property) const {
    std::vector<NSManagedObject> objects;
    for (const NSManagedObjectID id : context_->referringIDs(entity, property, id_)) {
        objects.emplace_back(*context_, id);
    }
    return objects;
}

void NSManagedObject::setText(PropertyIndex property,
                              const std::optional<std::string_view>& value) {
    context_->setField(id_, property, value ? FieldView(*value) : FieldView());
}

void NSManagedObject::setDate(PropertyIndex property, std::optional<NSDate> value) {
    context_->setField(id_, property, value ? FieldView(*value) : FieldView());
}

void NSManagedObject::setData(PropertyIndex property, std::optional<NSData> value) {
    context_->setField(id_, property,
                       value ? FieldView(std::string_view(value->bytes)) : FieldView());
}

void NSManagedObject::setReal(PropertyIndex property, double value) {
    context_->setField(id_, property, value);
}

void NSManagedObject::setInteger(PropertyIndex property, std::int64_t value) {
    context_->setField(id_, property, value);
}

void NSManagedObject::setBoolean(PropertyIndex property, bool value) {
    context_->setField(id_, property, value);
}

void NSManagedObject::setReference(PropertyIndex property,
                                   const std::optional<NSManagedObjectID>& value) {
    context_->setField(id_, property, value ? FieldView(Link{value->counter}) : FieldView());
}

void NSManagedObject::readRecord(void (*use)(void*, const ChangedRecord&), void* user) const {
    context_->withRecord(id_, [&](const ChangedRecord& record) { use(user, record); });
}

}  // namespace tavrion
