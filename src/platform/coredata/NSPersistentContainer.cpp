#include "platform/coredata/NSPersistentContainer.h"

#include <utility>

namespace tavrion {

NSPersistentContainer::NSPersistentContainer(std::string name,
                                             std::shared_ptr<const NSManagedObjectModel> model,
                                             std::shared_ptr<DispatchQueue> mainQueue,
                                             NSPersistentStoreDescription description)
    : name_(std::move(name)),
      model_(std::move(model)),
      mainQueue_(std::move(mainQueue)),
      description_(std::move(description)) {}

void NSPersistentContainer::loadPersistentStoresWithCompletionHandler(
    const std::function<void(const Result<void>&)>& completion) {
    auto store = NSPersistentStore::open(description_.file, model_, description_.format,
                                         description_.access);
    if (!store) {
        completion(store.error());
        return;
    }
    store_ = std::move(store).value();
    viewContext_ = NSManagedObjectContext::overStore(store_, mainQueue_);
    completion({});
}

}  // namespace tavrion
