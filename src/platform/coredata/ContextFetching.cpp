#include <fmt/format.h>

#include <algorithm>

#include "platform/coredata/FetchFilter.h"
#include "platform/coredata/IndexKeys.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {
namespace {

std::vector<RecordCounter> matchesInTable(const FetchFilter& filter, const TableVersion& table) {
    std::vector<RecordCounter> found;
    for (const auto& leaf : table.leaves()) {
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            if (filter.matches(
                    [&](PropertyIndex property) { return leaf->columns[property]->at(row); })) {
                found.push_back((*leaf->records)[row]);
            }
        }
    }
    return found;
}

/// Whether the predicate names a key that the entity does not have; the first such key.
std::optional<std::string> unknownKey(const NSEntityDescription& entity,
                                      const NSPredicate& predicate) {
    if (predicate.kind() == NSPredicate::Kind::comparison) {
        return entity.propertyNamed(predicate.key()) ? std::nullopt
                                                     : std::optional<std::string>(predicate.key());
    }
    for (const NSPredicate& part : predicate.subpredicates()) {
        if (auto key = unknownKey(entity, part)) {
            return key;
        }
    }
    return std::nullopt;
}

/// Whether `a` comes before `b`; absent values come first.
bool comesBefore(const Value& a, const Value& b) {
    if (a.isAbsent() || b.isAbsent()) {
        return a.isAbsent() && !b.isAbsent();
    }
    return NSPredicate::compare(a, NSPredicate::Operator::less, b);
}

}  // namespace

std::vector<RecordCounter> NSManagedObjectContext::recordsWhere(
    EntityIndex entity, std::span<const PropertyValue> conditions) {
    queue_->assertCurrent();
    refresh();
    const NSEntityDescription& description = model().entity(entity);
    const auto wanted = [&](PropertyIndex property) {
        return std::find_if(conditions.begin(), conditions.end(),
                            [&](const PropertyValue& each) { return each.property == property; });
    };
    const auto index =
        std::find_if(description.indexes.begin(), description.indexes.end(), [&](const auto& each) {
            return std::all_of(each.properties.begin(), each.properties.end(),
                               [&](PropertyIndex p) { return wanted(p) != conditions.end(); });
        });
    precondition(index != description.indexes.end(), "a look-up goes through an index");
    const auto number = static_cast<std::size_t>(index - description.indexes.begin());
    const std::optional<std::uint64_t> key = IndexKeys::ofRecord(
        *index, [&](PropertyIndex property) { return wanted(property)->value; });
    std::vector<RecordCounter> found;
    if (!key) {
        return found;
    }
    MutexLock lock(mutex_);
    settled_->table(entity).indexes()[number]->forEachEqual(
        *key, [&](RecordCounter record) { found.push_back(record); });
    open_.entity(entity).candidates(description, number, *key, found);
    if (found.size() > 1) {
        std::sort(found.begin(), found.end());
        found.erase(std::unique(found.begin(), found.end()), found.end());
    }
    const ChangedView records = view();
    std::erase_if(found, [&](RecordCounter candidate) {
        const auto record = records.record({entity, candidate});
        return !record ||
               !std::all_of(conditions.begin(), conditions.end(), [&](const PropertyValue& each) {
                   return record->at(each.property) == each.value;
               });
    });
    return found;
}

Result<void> NSManagedObjectContext::checkKeys(const NSFetchRequest& request,
                                               EntityIndex entity) const {
    const NSEntityDescription& description = model().entity(entity);
    std::optional<std::string> unknown =
        request.predicate ? unknownKey(description, *request.predicate) : std::nullopt;
    for (const NSSortDescriptor& descriptor : request.sortDescriptors) {
        if (!description.propertyNamed(descriptor.key)) {
            unknown = descriptor.key;
        }
    }
    if (unknown) {
        return NSError{fmt::format("entity {} has no property {}", description.name, *unknown), {}};
    }
    return {};
}

Result<std::vector<NSManagedObjectID>> NSManagedObjectContext::fetchIDs(
    const NSFetchRequest& request) {
    queue_->assertCurrent();
    const std::optional<EntityIndex> entity = model().entityForName(request.entityName);
    if (!entity) {
        return NSError{
            fmt::format("the model {} has no entity {}", model().name(), request.entityName), {}};
    }
    const Version version = snapshot();
    std::vector<NSManagedObjectID> ids;
    for (const EntityIndex concrete : model().concreteEntities(*entity)) {
        if (const auto checked = checkKeys(request, concrete); !checked) {
            return checked.error();
        }
        const FetchFilter filter(model(), concrete, request.predicate);
        for (const RecordCounter record : matchesInTable(filter, version->table(concrete))) {
            ids.push_back({concrete, record});
        }
    }
    if (!request.sortDescriptors.empty()) {
        sort(ids, request.sortDescriptors);
    }
    return ids;
}

void NSManagedObjectContext::sort(std::vector<NSManagedObjectID>& ids,
                                  const std::vector<NSSortDescriptor>& descriptors) {
    const Version version = snapshot();
    struct Sorted {
        std::vector<Value> keys;
        NSManagedObjectID id;
    };
    std::vector<Sorted> rows;
    rows.reserve(ids.size());
    for (const NSManagedObjectID id : ids) {
        const NSEntityDescription& entity = model().entity(id.entity);
        const std::optional<RowPosition> position = version->find(id);
        Sorted row{{}, id};
        for (const NSSortDescriptor& descriptor : descriptors) {
            const PropertyIndex property = *entity.propertyNamed(descriptor.key);
            row.keys.push_back(
                position ? valueOf(position->at(property), entity.properties[property].type, 0)
                         : Value());
        }
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [&](const Sorted& a, const Sorted& b) {
        for (std::size_t i = 0; i < descriptors.size(); ++i) {
            const Sorted& first = descriptors[i].ascending ? a : b;
            const Sorted& second = descriptors[i].ascending ? b : a;
            if (comesBefore(first.keys[i], second.keys[i])) {
                return true;
            }
            if (comesBefore(second.keys[i], first.keys[i])) {
                return false;
            }
        }
        return false;
    });
    std::transform(rows.begin(), rows.end(), ids.begin(), [](const Sorted& row) { return row.id; });
}

Result<std::vector<NSManagedObject>> NSManagedObjectContext::executeFetchRequest(
    const NSFetchRequest& request) {
    auto ids = fetchIDs(request);
    if (!ids) {
        return ids.error();
    }
    std::vector<NSManagedObject> objects;
    objects.reserve(ids.value().size());
    for (const NSManagedObjectID id : ids.value()) {
        objects.emplace_back(*this, id);
    }
    return objects;
}

Result<std::size_t> NSManagedObjectContext::countForFetchRequest(const NSFetchRequest& request) {
    NSFetchRequest unsorted = request;
    unsorted.sortDescriptors.clear();
    const auto ids = fetchIDs(unsorted);
    if (!ids) {
        return ids.error();
    }
    return ids.value().size();
}

std::vector<NSManagedObjectID> NSManagedObjectContext::referringIDs(EntityIndex entity,
                                                                    PropertyIndex property,
                                                                    NSManagedObjectID target) {
    const PropertyValue condition{property, Link{target.counter}};
    std::vector<NSManagedObjectID> ids;
    for (const RecordCounter record : recordsWhere(entity, std::span(&condition, 1))) {
        ids.push_back({entity, record});
    }
    return ids;
}

}  // namespace tavrion
