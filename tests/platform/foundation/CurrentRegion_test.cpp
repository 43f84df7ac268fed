#include "platform/foundation/CurrentRegion.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/foundation/NSDateFormatter.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSNumberFormatter.h"

namespace tavrion {
namespace {

Regional region(const std::string& zone, const std::string& locale) {
    return {*NSTimeZone::timeZoneWithName(zone), locale};
}

class CurrentRegionTest : public ::testing::Test {
  protected:
    CurrentRegionTest() {
        for (const std::string& name :
             {NSSystemTimeZoneDidChangeNotification, NSCurrentLocaleDidChangeNotification}) {
            observations_.push_back(centre_.addObserver(name, nullptr, nullptr,
                                                        [this](const NSNotification& notification) {
                                                            posted.push_back(notification.name);
                                                        }));
        }
    }

    Regional now = region("UTC", "en_US");
    std::vector<std::string> posted;

  private:
    NSNotificationCenter centre_;
    const Port<NSNotificationCenter>::Plug plug_{centre_};
    std::vector<Observation> observations_;
};

TEST_F(CurrentRegionTest, reportsAZoneThatIsAnotherOne) {
    CurrentRegion current([this] { return now; });
    EXPECT_FALSE(current.refresh());
    EXPECT_TRUE(posted.empty());
    now = region("Europe/Berlin", "en_US");
    EXPECT_EQ(NSCalendar::currentCalendar().timeZone().name(), "UTC") << "until it is asked";
    EXPECT_TRUE(current.refresh());
    EXPECT_EQ(NSCalendar::currentCalendar().timeZone().name(), "Europe/Berlin");
    EXPECT_EQ(posted, std::vector{NSSystemTimeZoneDidChangeNotification});
    EXPECT_FALSE(current.refresh());
    EXPECT_EQ(posted.size(), 1U);
}

TEST_F(CurrentRegionTest, reportsEachLocaleThatIsAnotherOne) {
    CurrentRegion current([this] { return now; });
    for (const Locales& locales :
         {Locales{"de_DE", "en_US", "en_US"}, Locales{"de_DE", "de_DE", "en_US"},
          Locales{"de_DE", "de_DE", "de_DE"}}) {
        posted.clear();
        now = Regional(NSTimeZone(), locales);
        EXPECT_TRUE(current.refresh());
        EXPECT_EQ(posted, std::vector{NSCurrentLocaleDidChangeNotification});
        EXPECT_EQ(Port<Regional>::current().locales(), locales);
    }
}

TEST_F(CurrentRegionTest, aRegionThatWasReadStaysGood) {
    CurrentRegion current([this] { return now; });
    const std::string& before = Port<Regional>::current().locale();
    for (const char* const locale : {"de_DE", "fr_FR", "en_US", "ja_JP"}) {
        now = region("UTC", locale);
        current.refresh();
    }
    EXPECT_EQ(before, "en_US");
    EXPECT_EQ(Port<Regional>::current().locale(), "ja_JP");
}

TEST_F(CurrentRegionTest, theFormattersOfAThreadFollow) {
    CurrentRegion current([this] { return now; });
    const auto texts = [] {
        NSDateFormatter date;
        date.setLocalizedDateFormatFromTemplate("MMMMd");
        return date.stringFromDate(NSDate::dateWithTimeIntervalSinceReferenceDate(0)) + " " +
               NSNumberFormatter(NSNumberFormatterStyle::decimal).stringFromNumber(1234.5);
    };
    EXPECT_EQ(texts(), "January 1 1,234.5");
    now = region("America/New_York", "de_DE");
    current.refresh();
    EXPECT_EQ(texts(), "31. Dezember 1.234,5");
}

TEST_F(CurrentRegionTest, isReadWhileItChanges) {
    CurrentRegion current([this] { return now; });
    std::atomic<bool> isOver{false};
    std::thread reader([&] {
        while (!isOver) {
            const std::string locale = Port<Regional>::current().locale();
            EXPECT_TRUE(locale == "en_US" || locale == "de_DE");
        }
    });
    for (int i = 0; i < 200; ++i) {
        now = region("UTC", i % 2 == 0 ? "de_DE" : "en_US");
        current.refresh();
    }
    isOver = true;
    reader.join();
}

}  // namespace
}  // namespace tavrion
