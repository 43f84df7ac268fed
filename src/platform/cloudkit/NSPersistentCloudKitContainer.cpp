#include "platform/cloudkit/NSPersistentCloudKitContainer.h"

#include <utility>

namespace tavrion {

NSPersistentCloudKitContainer::NSPersistentCloudKitContainer(
    const std::string& name, std::shared_ptr<const NSManagedObjectModel> model,
    std::shared_ptr<DispatchQueue> mainQueue, NSPersistentStoreDescription description)
    : NSPersistentContainer(name, std::move(model), std::move(mainQueue), std::move(description)),
      options_(NSPersistentCloudKitContainerOptions{name}) {}

Result<void> NSPersistentCloudKitContainer::initializeCloudKitSchemaWithOptions(unsigned) {
    return Port<MirroringService>::current().initializeSchema(managedObjectModel());
}

void NSPersistentCloudKitContainer::setCloudKitContainerOptions(
    std::optional<NSPersistentCloudKitContainerOptions> options) {
    options_ = std::move(options);
}

void NSPersistentCloudKitContainer::loadMirroredStoresWithCompletionHandler(
    const std::function<void(const Result<void>&)>& completion) {
    loadPersistentStoresWithCompletionHandler([&](const Result<void>& loaded) {
        if (loaded.ok() && options_) {
            Port<MirroringService>::current().start(*options_, persistentStore());
        }
        completion(loaded);
    });
}

}  // namespace tavrion
