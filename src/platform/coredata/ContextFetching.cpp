#include <fmt/format.h>

#include <algorithm>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {
namespace {

/// A range that holds more than this part of the table is walked row by row instead of through the
/// index.
constexpr std::size_t rangeWorthAnIndex = 8;

std::vector<RecordCounter> matchesInTable(const FetchPlan& plan, const TableVersion& table) {
    std::vector<RecordCounter> found;
    for (const auto& leaf : table.leaves()) {
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            if (plan.matches(
                    [&](PropertyIndex property) { return leaf->columns[property]->at(row); })) {
                found.push_back((*leaf->records)[row]);
            }
        }
    }
    return found;
}

std::vector<RecordCounter> matchesInRange(const FetchPlan& plan, const TableVersion& table) {
    std::vector<RecordCounter> found;
    const FetchPlan::Range& range = *plan.range();
    table.indexes()[range.index]->forEachBetween(
        range.low, range.high, [&](std::uint64_t, RecordCounter record) {
            const std::optional<RowPosition> position = table.find(record);
            if (position &&
                plan.matches([&](PropertyIndex property) { return position->at(property); })) {
                found.push_back(record);
            }
        });
    std::sort(found.begin(), found.end());
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

std::vector<RecordCounter> NSManagedObjectContext::matchesOfPoints(const FetchPlan& plan,
                                                                   EntityIndex entity) {
    std::vector<RecordCounter> candidates;
    const TableVersion& table = settled_->table(entity);
    for (const FetchPlan::Point& point : *plan.points()) {
        table.indexes()[point.index]->forEachEqual(
            point.key, [&](RecordCounter record) { candidates.push_back(record); });
        open_.entity(entity).candidates(model().entity(entity), point.index, point.key, candidates);
    }
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    const ChangedView records = view();
    std::erase_if(candidates, [&](RecordCounter candidate) {
        const auto record = records.record({entity, candidate});
        return !record ||
               !plan.matches([&](PropertyIndex property) { return record->at(property); });
    });
    return candidates;
}

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

std::vector<RecordCounter> NSManagedObjectContext::matches(const FetchPlan& plan,
                                                           EntityIndex entity) {
    Version version;
    {
        MutexLock lock(mutex_);
        if (plan.points()) {
            return matchesOfPoints(plan, entity);
        }
        seal();
        version = settled_;
    }
    const TableVersion& table = version->table(entity);
    if (plan.range()) {
        const FetchPlan::Range& range = *plan.range();
        const std::size_t inRange =
            table.indexes()[range.index]->countBetween(range.low, range.high);
        if (inRange <= table.size() / rangeWorthAnIndex) {
            return matchesInRange(plan, table);
        }
    }
    return matchesInTable(plan, table);
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
    refresh();
    std::vector<NSManagedObjectID> ids;
    for (const EntityIndex concrete : model().concreteEntities(*entity)) {
        if (const auto checked = checkKeys(request, concrete); !checked) {
            return checked.error();
        }
        const FetchPlan plan(model(), concrete, request.predicate);
        for (const RecordCounter record : matches(plan, concrete)) {
            ids.push_back({concrete, record});
        }
    }
    if (!request.sortDescriptors.empty()) {
        sort(ids, request.sortDescriptors);
    }
    if (request.fetchLimit != 0 && ids.size() > request.fetchLimit) {
        ids.resize(request.fetchLimit);
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
    queue_->assertCurrent();
    const std::string& key = model().entity(entity).properties[property].name;
    const FetchPlan plan(
        model(), entity,
        NSPredicate::comparison(key, NSPredicate::Operator::equal, Value(target.reference())));
    std::vector<NSManagedObjectID> ids;
    for (const RecordCounter record : matches(plan, entity)) {
        ids.push_back({entity, record});
    }
    return ids;
}

}  // namespace tavrion
