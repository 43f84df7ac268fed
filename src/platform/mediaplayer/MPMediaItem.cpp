#include "platform/mediaplayer/MPMediaItem.h"

#include <map>

#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSLog.h"
#include "platform/mediaplayer/MPMediaItemProperties.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/Source.h"

namespace tavrion {

namespace {

/// The computed keys. Each registration makes a new map, so that readers only copy a pointer.
class ComputedKeys {
  public:
    using Map = std::map<std::string, MPMediaItem::ComputedKey, std::less<>>;

    static ComputedKeys& shared() {
        static ComputedKeys keys;
        return keys;
    }

    void add(const std::string& name, MPMediaItem::ComputedKey function) {
        const MutexLock lock(mutex_);
        auto changed = std::make_shared<Map>(*map_);
        (*changed)[name] = std::move(function);
        map_ = std::move(changed);
    }

    std::shared_ptr<const Map> map() const {
        const MutexLock lock(mutex_);
        return map_;
    }

  private:
    mutable Mutex mutex_;
    std::shared_ptr<const Map> map_ TAVRION_GUARDED_BY(mutex_) = std::make_shared<Map>();
};

std::optional<std::uint32_t> likedStateOf(const Value& value) {
    const auto* state = value.get<std::int64_t>();
    if (state == nullptr || *state < 0 || *state > 3) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*state);
}

}  // namespace

Value MPMediaItem::valueForProperty(std::string_view property) const {
    const MPMediaItemProperty* found = propertyOfMediaItem(property);
    return found == nullptr ? Value() : found->read(*this);
}

Value MPMediaItem::valueForKey(std::string_view key) const {
    if (const MPMediaItemProperty* found = propertyOfMediaItem(key)) {
        return found->read(*this);
    }
    const auto computed = ComputedKeys::shared().map();
    const auto found = computed->find(key);
    return found == computed->end() ? Value() : found->second(*this);
}

void MPMediaItem::registerComputedKey(const std::string& name, ComputedKey function) {
    ComputedKeys::shared().add(name, std::move(function));
}

bool MPMediaItem::respondsToSetValueForProperty() const {
    const std::shared_ptr<const Source> source = MPMediaLibrary::defaultMediaLibrary().source();
    return source != nullptr && source->capabilities().canWriteLikes;
}

void MPMediaItem::setValueForProperty(const Value& value, std::string_view property) const {
    const auto likedState = likedStateOf(value);
    // One and the same for the question and the writing: another may be set meanwhile.
    const std::shared_ptr<Source> source = MPMediaLibrary::defaultMediaLibrary().source();
    if (property != "likedState" || !likedState || !source ||
        !source->capabilities().canWriteLikes) {
        return;
    }
    const Result<void> written = source->setLiked(persistentID(), *likedState);
    if (!written) {
        NSLog("The liked state of \"{}\" was not written: {}", title().value_or(""),
              written.error().localizedDescription);
    }
}

}  // namespace tavrion
