// A container whose store can be mirrored to other devices.
//
// Queue: as NSPersistentContainer. What mirrors is behind the port MirroringService; without
// mirroring options the store stays local.
#pragma once

#include <optional>
#include <string>

#include "platform/coredata/NSPersistentContainer.h"
#include "platform/foundation/Port.h"

namespace tavrion {

/// Where a store is mirrored to.
struct NSPersistentCloudKitContainerOptions {
    std::string containerIdentifier;
};

/// What mirrors a store. Called on the queue that loads the container.
class MirroringService {
  public:
    static constexpr const char* portName = "a mirroring service is plugged in";
    virtual ~MirroringService() = default;
    virtual Result<void> initializeSchema(const NSManagedObjectModel& model) = 0;
    virtual void start(const NSPersistentCloudKitContainerOptions& options,
                       const std::shared_ptr<NSPersistentStore>& store) = 0;
};

/// Mirrors nothing: the store stays on this computer.
class LocalOnlyMirroring final : public MirroringService {
  public:
    Result<void> initializeSchema(const NSManagedObjectModel&) override { return {}; }
    void start(const NSPersistentCloudKitContainerOptions&,
               const std::shared_ptr<NSPersistentStore>&) override {}
};

class NSPersistentCloudKitContainer final : public NSPersistentContainer {
  public:
    NSPersistentCloudKitContainer(const std::string& name,
                                  std::shared_ptr<const NSManagedObjectModel> model,
                                  std::shared_ptr<DispatchQueue> mainQueue,
                                  NSPersistentStoreDescription description);

    Result<void> initializeCloudKitSchemaWithOptions(unsigned options);
    /// Absent switches mirroring off.
    void setCloudKitContainerOptions(std::optional<NSPersistentCloudKitContainerOptions> options);
    const std::optional<NSPersistentCloudKitContainerOptions>& cloudKitContainerOptions() const {
        return options_;
    }
    /// Opens the store, and starts the mirroring where it is on.
    void loadMirroredStoresWithCompletionHandler(
        const std::function<void(const Result<void>&)>& completion);

  private:
    std::optional<NSPersistentCloudKitContainerOptions> options_;
};

}  // namespace tavrion
