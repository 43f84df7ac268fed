#include "platform/coredata/NSManagedObjectModel.h"

#include <utility>

namespace tavrion {

std::optional<PropertyIndex> NSEntityDescription::propertyNamed(
    std::string_view propertyName) const {
    for (std::size_t i = 0; i < properties.size(); ++i) {
        if (properties[i].name == propertyName) {
            return static_cast<PropertyIndex>(i);
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> NSEntityDescription::indexOver(
    const std::vector<PropertyIndex>& wanted) const {
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        if (indexes[i].properties == wanted) {
            return i;
        }
    }
    return std::nullopt;
}

NSManagedObjectModel::NSManagedObjectModel(std::string name,
                                           std::vector<NSEntityDescription> entities)
    : name_(std::move(name)), entities_(std::move(entities)) {}

std::optional<EntityIndex> NSManagedObjectModel::entityForName(std::string_view name) const {
    for (std::size_t i = 0; i < entities_.size(); ++i) {
        if (entities_[i].name == name) {
            return static_cast<EntityIndex>(i);
        }
    }
    return std::nullopt;
}

std::vector<EntityIndex> NSManagedObjectModel::concreteEntities(EntityIndex entity) const {
    std::vector<EntityIndex> found;
    for (std::size_t i = 0; i < entities_.size(); ++i) {
        std::optional<EntityIndex> ancestor = static_cast<EntityIndex>(i);
        while (ancestor && *ancestor != entity) {
            ancestor = entityForName(entities_[*ancestor].superentity);
        }
        if (ancestor && !entities_[i].isAbstract) {
            found.push_back(static_cast<EntityIndex>(i));
        }
    }
    return found;
}

}  // namespace tavrion
