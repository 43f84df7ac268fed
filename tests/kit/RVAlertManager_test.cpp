#include "kit/RVAlertManager.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/foundation/NSUserDefaults.h"

namespace tavrion {
namespace {

class RVAlertManagerTest : public testing::Test {
  protected:
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
};

TEST_F(RVAlertManagerTest, aNumberThatWasNeverStoredIsZero) {
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), 0U);
    RVAlertManager::storeValue(3, "browse.groupType");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), 0U);
}

TEST_F(RVAlertManagerTest, allNumbersStandInOneDictionary) {
    RVAlertManager::storeValue(3, "browse.groupType");
    RVAlertManager::storeValue(5, "album.sortType");
    RVAlertManager::storeValue(1, "browse.reverse");
    RVAlertManager::storeValue(2, "browse.groupType");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.groupType"), 2U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("album.sortType"), 5U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.reverse"), 1U);
    const Value::Dictionary all{
        {"com.oskelvane.Nerinda.sortPreferences",
         Value(Value::Dictionary{
             {"browse.groupType", 2}, {"album.sortType", 5}, {"browse.reverse", 1}})}};
    EXPECT_EQ(defaults_->dictionaryRepresentation(), all);
}

TEST_F(RVAlertManagerTest, anyKindOfNumberIsRead) {
    defaults_->setObject(
        RVAlertManager::sortPreferencesKey,
        Value(Value::Dictionary{{"flag", true},
                                {"real", 4.75},
                                {"negative", -1.0},
                                {"endless", std::numeric_limits<double>::infinity()},
                                {"text", "3"}}));
    EXPECT_EQ(RVAlertManager::storedValueForKey("flag"), 1U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("real"), 4U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("negative"), 0U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("endless"), 0U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("text"), 0U);
    const std::uint64_t greatest = std::numeric_limits<std::uint64_t>::max();
    RVAlertManager::storeValue(greatest, "greatest");
    EXPECT_EQ(RVAlertManager::storedValueForKey("greatest"), greatest);
    EXPECT_EQ(RVAlertManager::storedValueForKey("real"), 4U);
}

TEST_F(RVAlertManagerTest, whatIsNoDictionaryIsReplacedByOne) {
    defaults_->setObject(RVAlertManager::sortPreferencesKey, "nonsense");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), 0U);
    RVAlertManager::storeValue(4, "browse.sortType");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), 4U);
}

}  // namespace
}  // namespace tavrion
