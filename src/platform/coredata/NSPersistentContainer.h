// A store with its main context, as one object to ask for both.
//
// Queue: made and loaded on any queue; viewContext() belongs to the main queue. Who owns: the
// container keeps its store and its context. Two containers of one file share the store and have a
// main context each.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/coredata/NSManagedObjectContext.h"

namespace tavrion {

/// Keep a history of the store's changes.
inline const std::string NSPersistentHistoryTrackingKey = "NSPersistentHistoryTrackingKey";

/// How a store is to be opened.
class NSPersistentStoreDescription {
  public:
    NSPersistentStoreDescription(std::filesystem::path storeFile, StoreFormat storeFormat)
        : file(std::move(storeFile)), format(std::move(storeFormat)) {}

    std::filesystem::path file;
    StoreFormat format;
    StoreAccess access = StoreAccess::writing;

    void setOption(bool value, const std::string& key) { options_[key] = value; }
    bool option(const std::string& key) const {
        const auto found = options_.find(key);
        return found != options_.end() && found->second;
    }

  private:
    std::map<std::string, bool> options_;
};

class NSPersistentContainer {
  public:
    NSPersistentContainer(std::string name, std::shared_ptr<const NSManagedObjectModel> model,
                          std::shared_ptr<DispatchQueue> mainQueue,
                          NSPersistentStoreDescription description);
    virtual ~NSPersistentContainer() = default;

    const std::string& name() const { return name_; }
    const NSManagedObjectModel& managedObjectModel() const { return *model_; }
    NSPersistentStoreDescription& persistentStoreDescription() { return description_; }

    /// Opens the store and calls `completion` before it returns.
    void loadPersistentStoresWithCompletionHandler(
        const std::function<void(const Result<void>&)>& completion);
    /// Only after a good load; null before.
    const std::shared_ptr<NSManagedObjectContext>& viewContext() const { return viewContext_; }
    const std::shared_ptr<NSPersistentStore>& persistentStore() const { return store_; }

  private:
    const std::string name_;
    const std::shared_ptr<const NSManagedObjectModel> model_;
    const std::shared_ptr<DispatchQueue> mainQueue_;
    NSPersistentStoreDescription description_;
    std::shared_ptr<NSPersistentStore> store_;
    std::shared_ptr<NSManagedObjectContext> viewContext_;
};

}  // namespace tavrion
