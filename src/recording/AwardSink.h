// What the scan needs of the awards; plugged in from the awards, or a sink that earns nothing.
//
// Queue: earnAchievementWithIdentifier() on the queue of the context that it gets;
// updateAchievements() from any queue.
#pragma once

#include <optional>
#include <string>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/foundation/Port.h"

namespace tavrion {

class AwardSink {
  public:
    static constexpr const char* portName = "an award sink is plugged in";
    virtual ~AwardSink() = default;

    /// Raises the stored tier; true when this call raised it.
    virtual bool earnAchievementWithIdentifier(const std::string& identifier, int tier,
                                               std::optional<NSDate> date,
                                               NSManagedObjectContext& context) = 0;
    /// Starts the award pass and returns at once.
    virtual void updateAchievements() = 0;
};

/// Posted when awards changed.
inline const std::string AchievementsDidChange = "AchievementsDidChange";

/// The user defaults of the awards that lower floors reset.
namespace AwardDefaults {
/// Up to when the award pass has looked.
inline const char* const awardsScanDate = "com.oskelvane.Nerinda.awardsScanDate";
/// Where earlier versions kept the record day; only ever removed.
inline const char* const dailyRecordDate = "com.oskelvane.Nerinda.dailyRecordDate";
}  // namespace AwardDefaults

/// Earns nothing.
class NoAwards final : public AwardSink {
  public:
    bool earnAchievementWithIdentifier(const std::string&, int, std::optional<NSDate>,
                                       NSManagedObjectContext&) override {
        return false;
    }
    void updateAchievements() override {}
};

}  // namespace tavrion
