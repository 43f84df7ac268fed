// What people read for dates, numbers and lengths of time, by the table
// tests/data/formatted-texts.tsv.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/ManualClock.h"
#include "tests/platform/foundation/ZoneText.h"
#include "tests/support/ExpectedTexts.h"

namespace tavrion {
namespace {

using test::ExpectedText;

using Operation = std::function<std::string(const std::string& value)>;

std::optional<NSDate> dateOf(const std::string& value) {
    return value == "absent" ? std::nullopt : std::optional(test::instant(value));
}

Operation ofNumber(std::string (*operation)(double)) {
    return [operation](const std::string& value) {
        return operation(std::strtod(value.c_str(), nullptr));
    };
}

const std::map<std::string, Operation>& operations() {
    using Manager = RVMetadataManager;
    static const std::map<std::string, Operation> named{
        {"formattedDate",
         [](const std::string& value) { return Manager::formattedDate(dateOf(value), false); }},
        {"formattedDate compact",
         [](const std::string& value) { return Manager::formattedDate(dateOf(value), true); }},
        {"formattedEventDate",
         [](const std::string& value) { return Manager::formattedEventDate(dateOf(value)); }},
        {"formattedTimeFromDate",
         [](const std::string& value) {
             return Manager::formattedTimeFromDate(test::instant(value));
         }},
        {"formattedHour",
         [](const std::string& value) { return Manager::formattedHour(std::stoull(value)); }},
        {"formattedMonth",
         [](const std::string& value) { return Manager::formattedMonth(test::instant(value)); }},
        {"formattedCount", ofNumber(&Manager::formattedCount)},
        {"formattedPercentage", ofNumber(&Manager::formattedPercentage)},
        {"formattedDuration", ofNumber(&Manager::formattedDuration)},
        {"formattedPlaybackDuration", ofNumber(&Manager::formattedPlaybackDuration)},
        {"formattedMinutesForDuration", ofNumber(&Manager::formattedMinutesForDuration)},
    };
    return named;
}

class FormattedTexts : public testing::TestWithParam<const char*> {
  protected:
    std::string text(const ExpectedText& row) {
        const std::string& zone = row.cell("zone");
        Regional region(zone == "-" ? NSTimeZone() : test::zoneNamed(zone), GetParam());
        const Port<Regional>::Plug plug(region);
        clock_.set(row.cell("now") == "-" ? NSDate() : test::instant(row.cell("now")));
        std::string name = row.cell("operation");
        const std::string expanded = " expanded";
        const bool isExpanded = name.ends_with(expanded);
        defaults_->setObject(RVMetadataManager::expandedTimeKey, isExpanded);
        name.resize(name.size() - (isExpanded ? expanded.size() : 0));
        const auto found = operations().find(name);
        EXPECT_NE(found, operations().end()) << "there is no operation \"" << name << "\"";
        return found == operations().end() ? std::string() : found->second(row.cell("value"));
    }

  private:
    ManualClock clock_{NSDate()};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
};

TEST_P(FormattedTexts, areThoseOfTheTable) {
    for (const ExpectedText& row : test::expectedTexts("formatted-texts.tsv")) {
        EXPECT_EQ(text(row), row.inLocale(GetParam()))
            << "formatted-texts.tsv:" << row.line << " in " << GetParam();
    }
}

INSTANTIATE_TEST_SUITE_P(InLocale, FormattedTexts, testing::ValuesIn(test::expectedLocales),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
}  // namespace tavrion
