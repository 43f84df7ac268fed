// One record per award identifier.
//
// Queue: that of its context.
#pragma once

#include "platform/coredata/NSFetchRequest.h"
#include "platform/coredata/NSManagedObject.h"
#include "recording/NerindaModel.h"

namespace tavrion {

class NSManagedObjectContext;

class Achievement : public NSManagedObject {
  public:
    explicit Achievement(const NSManagedObject& object) : NSManagedObject(object) {}
    static Achievement insert(NSManagedObjectContext& context);
    static NSFetchRequest fetchRequest() {
        return NSFetchRequest::fetchRequestWithEntityName("Achievement");
    }

    std::optional<std::string> identifier() const { return text(AchievementKey::identifier); }
    void setIdentifier(const std::optional<std::string_view>& value) {
        setText(AchievementKey::identifier, value);
    }
    /// The highest tier reached; 0 is not yet earned.
    std::int16_t tier() const { return static_cast<std::int16_t>(integer(AchievementKey::tier)); }
    void setTier(std::int16_t value) { setInteger(AchievementKey::tier, value); }
    /// An archive of a set of dates.
    std::optional<NSData> dates() const { return data(AchievementKey::dates); }
    void setDates(std::optional<NSData> value) { setData(AchievementKey::dates, std::move(value)); }
};

}  // namespace tavrion
