// What a record store holds: entities with their properties and the indexes over them.
//
// Queue: any; immutable once built. Property positions are the order in which a model names them
// and serve as keys inside the process; on disk properties go by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrion {

enum class NSAttributeType : std::uint8_t {
    /// Reads NO when never set.
    boolean,
    /// Reads 0 when never set.
    integer,
    /// Reads 0 when never set.
    real,
    /// Can be absent, as the following.
    date,
    string,
    binaryData,
    /// A to-one relationship.
    reference
};

using PropertyIndex = std::uint8_t;
using EntityIndex = std::uint16_t;

struct NSPropertyDescription {
    std::string name;
    NSAttributeType type = NSAttributeType::string;
    /// Of a reference: the entity that it points to.
    std::string destinationEntity = {};
};

/// Equal values of these properties together are found without a walk; a single date is also found
/// by range.
struct NSIndexDescription {
    std::vector<PropertyIndex> properties;
};

struct NSEntityDescription {
    std::string name;
    /// Objects of an abstract entity are those of its sub-entities.
    bool isAbstract = false;
    std::string superentity = {};
    std::vector<NSPropertyDescription> properties = {};
    std::vector<NSIndexDescription> indexes = {};

    std::optional<PropertyIndex> propertyNamed(std::string_view propertyName) const;
    /// The position of the index over exactly these properties.
    std::optional<std::size_t> indexOver(const std::vector<PropertyIndex>& properties) const;
};

class NSManagedObjectModel {
  public:
    NSManagedObjectModel(std::string name, std::vector<NSEntityDescription> entities);

    const std::string& name() const { return name_; }
    const std::vector<NSEntityDescription>& entities() const { return entities_; }
    const NSEntityDescription& entity(EntityIndex index) const { return entities_[index]; }
    std::optional<EntityIndex> entityForName(std::string_view name) const;
    /// The entities whose objects a fetch of `entity` gives: itself and its sub-entities, without
    /// abstract ones.
    std::vector<EntityIndex> concreteEntities(EntityIndex entity) const;

  private:
    std::string name_;
    std::vector<NSEntityDescription> entities_;
};

}  // namespace tavrion
