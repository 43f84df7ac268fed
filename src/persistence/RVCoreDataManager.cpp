#include "persistence/RVCoreDataManager.h"

#include <utility>

#include "persistence/FailurePresenter.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSUUID.h"
#include "platform/foundation/Precondition.h"
#include "recording/AwardSink.h"
#include "recording/DataProcess.h"
#include "recording/PlayEvent.h"

namespace tavrion {
namespace {

const std::string cloudSyncEnabled = "CloudSyncEnabled";

void endProcess(const NSError& error) {
    NSLog("Unresolved error {}, {}", error.localizedDescription, error.userInfo);
    Port<FailurePresenter>::current().endProcess(error);
}

/// Plays that nobody had saved were not in the file, and their songs were.
void deletePlaysWithoutTheirSong(NSManagedObjectContext& context) {
    const auto plays = context.executeFetchRequest(PlayEvent::fetchRequest());
    if (!plays) {
        return;
    }
    for (const NSManagedObject& object : plays.value()) {
        if (PlayEvent(object).lacksItsSong()) {
            context.deleteObject(object);
        }
    }
    if (const Result<void> saved = context.save(); !saved) {
        RVCoreDataManager::handle_CoreDataFailure(saved.error());
    }
}

}  // namespace

RVCoreDataManager::RVCoreDataManager(std::filesystem::path file,
                                     std::shared_ptr<MainQueue> mainQueue)
    : file_(std::move(file)),
      mainQueue_(std::move(mainQueue)),
      cleanUpQueue_(DispatchQueue::serial("clean-up")),
      writerQueue_(DispatchQueue::serial("store writer")) {
    operationQueue_.setMaxConcurrentOperationCount(1);
    syncObservation_ = NSUserDefaults::standardUserDefaults().addObserver(
        cloudSyncEnabled, nullptr,
        [this](const std::string& key, const Value&) { observeValueForKeyPath(key); });
}

RVCoreDataManager::~RVCoreDataManager() = default;

bool RVCoreDataManager::stringIsValidUUID(std::string_view text) {
    return NSUUID::stringIsValidUUID(text);
}

void RVCoreDataManager::handle_CoreDataFailure(const NSError& error) {
    NSLog("Error saving context: {}\n{}", error.localizedDescription, error.userInfo);
    Port<MainQueue>::current().async(
        [error] { Port<FailurePresenter>::current().presentDataFailure(error); });
}

void RVCoreDataManager::observeValueForKeyPath(const std::string& keyPath) {
    if (keyPath == cloudSyncEnabled) {
        loadPersistentContainer();
    }
}

void RVCoreDataManager::setAccess(StoreAccess access) {
    MutexLock lock(mutex_);
    precondition(!persistentContainer_ || access_ == access,
                 "a store stays open for what it was opened for");
    access_ = access;
}

std::shared_ptr<NSPersistentCloudKitContainer> RVCoreDataManager::persistentContainer() {
    MutexLock loading(loadingMutex_);
    {
        MutexLock lock(mutex_);
        if (persistentContainer_) {
            return persistentContainer_;
        }
    }
    loadPersistentContainer();
    MutexLock lock(mutex_);
    return persistentContainer_;
}

void RVCoreDataManager::loadPersistentContainer() {
    auto container = std::make_shared<NSPersistentCloudKitContainer>(
        "Nerinda", nerindaModel(), mainQueue_,
        NSPersistentStoreDescription(file_, nerindaStoreFormat()));
    container->initializeCloudKitSchemaWithOptions(0).ignore();
    container->persistentStoreDescription().setOption(true, NSPersistentHistoryTrackingKey);
    container->persistentStoreDescription().access = access_;
    if (!NSUserDefaults::standardUserDefaults().boolForKey(cloudSyncEnabled)) {
        container->setCloudKitContainerOptions(std::nullopt);
    }
    container->loadMirroredStoresWithCompletionHandler([&](const Result<void>& loaded) {
        if (!loaded) {
            endProcess(loaded.error());
            return;
        }
        install(container);
    });
}

void RVCoreDataManager::install(std::shared_ptr<NSPersistentCloudKitContainer> container) {
    // Each load leaves exactly one observation: the old one goes when the new one takes its place.
    auto observation = NSNotificationCenter::defaultCenter().addObserver(
        NSManagedObjectContextDidSaveObjectIDsNotification, nullptr, nullptr,
        [this](const NSNotification& notification) { handle_Duplication(notification); });
    {
        MutexLock lock(mutex_);
        std::swap(saveObservation_, observation);
        persistentContainer_ = std::move(container);
    }
}

std::shared_ptr<NSManagedObjectContext> RVCoreDataManager::mainContext() {
    const std::shared_ptr<NSPersistentCloudKitContainer> container = persistentContainer();
    MutexLock lock(mutex_);
    if (!mainContext_ && container) {
        mainContext_ = container->viewContext();
    }
    return mainContext_;
}

std::shared_ptr<NSManagedObjectContext> RVCoreDataManager::privateContext() {
    return NSManagedObjectContext::below(mainContext());
}

void RVCoreDataManager::saveMainContext(std::function<void()> whenSaved) {
    mainQueue_->async([this, whenSaved = std::move(whenSaved)]() mutable {
        writeMainContext(std::move(whenSaved));
    });
}

void RVCoreDataManager::writeMainContext(std::function<void()> whenSaved) {
    const auto saved = [whenSaved = std::move(whenSaved)](const Result<void>& result) {
        if (!result) {
            endProcess(result.error());
            return;
        }
        NSLog("successfully saved Nerinda core data store.");
        if (whenSaved) {
            whenSaved();
        }
    };
    const std::shared_ptr<NSManagedObjectContext> context = mainContext();
    if (context->hasChanges()) {
        // The clean-up of what was handed over goes on meanwhile and belongs to the same
        // transaction.
        context->saveInBackground(*writerQueue_, saved,
                                  [queue = cleanUpQueue_] { queue->sync([] {}); });
    } else {
        saved({});
    }
}

void RVCoreDataManager::deleteAllData() {
    const std::shared_ptr<NSPersistentCloudKitContainer> container = persistentContainer();
    const std::shared_ptr<NSManagedObjectContext> context = privateContext();
    dataWasDeleted_ = true;
    context->performBlock([container, context] {
        const std::size_t entities = container->managedObjectModel().entities().size();
        for (std::size_t i = 0; i < entities; ++i) {
            const Result<void> deleted =
                container->persistentStore()->executeBatchDelete(static_cast<EntityIndex>(i));
            if (!deleted) {
                handle_CoreDataFailure(deleted.error());
            }
            if (context->hasChanges()) {
                if (const Result<void> saved = context->save(); !saved) {
                    handle_CoreDataFailure(saved.error());
                }
            }
            NSUserDefaults::standardUserDefaults().removeObject(AwardDefaults::dailyRecordDate);
            NSNotificationCenter::defaultCenter().postNotificationName(AchievementsDidChange);
            DataProcess::postFinish();
        }
        deletePlaysWithoutTheirSong(*context);
    });
}

}  // namespace tavrion
