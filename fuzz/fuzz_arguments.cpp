// Feeds any text to the readers of what stands on the command line: instants, ranges of days,
// identifiers of records, values of defaults. The first byte chooses the reader.
#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "apps/tavrionctl/DefaultsValue.h"
#include "apps/tavrionctl/RangeArgument.h"
#include "fuzz/Require.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/PropertyList.h"
#include "recording/NerindaModel.h"

using namespace tavrion;
using fuzz::require;

namespace {

/// What the readers ask: a clock that stands still, a zone, and defaults in memory.
struct Surroundings {
    FixedClock clock{NSDate::dateWithTimeIntervalSinceReferenceDate(794059200)};
    Port<Clock>::Plug clockPlug{clock};
    Regional region{NSTimeZone(), "en_US"};
    Port<Regional>::Plug regionPlug{region};
    std::unique_ptr<NSUserDefaults> defaults = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug{*defaults};
};

void checkInstant(std::string_view text) {
    const auto instant = dateFromIsoText(text);
    if (!instant) {
        return;
    }
    // Shown again it is the same to the millisecond, rounded down.
    const auto again = dateFromIsoText(isoTextOfDate(*instant));
    require(again.has_value());
    const double difference = instant->timeIntervalSinceDate(*again);
    require(difference >= 0 && difference < 0.0011);
}

void checkRange(const std::string& text) {
    const auto range = ctl::dateRange(text);
    if (range.ok()) {
        const NSDateInterval interval = range.value().interval();
        require(interval.startDate() <= interval.endDate());
        require(DateRange(range.value().object()).interval() == interval);
    }
    require(range.ok() || !range.error().localizedDescription.empty());
}

void checkIdentifier(std::string_view text) {
    const auto model = nerindaModel();
    if (const auto id = NSManagedObjectID::fromText(*model, text)) {
        require(id->text(*model) == text);
    }
}

void checkDefault(const char* type, const std::string& text) {
    if (const auto value = ctl::defaultsValue(type, {text})) {
        const Value storable = PropertyList::storableValue(*value);
        require(PropertyList::dictionaryOf(PropertyList::binaryOf({{"key", storable}})).ok());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Surroundings surroundings;
    if (size == 0) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0]) {
        case 'i':
            checkInstant(text);
            break;
        case 'r':
            checkRange(text);
            break;
        case 'o':
            checkIdentifier(text);
            break;
        case 'a':
            checkDefault("-array", text);
            break;
        case 'd':
            checkDefault("-dict", text);
            break;
        case 'b':
            checkDefault("-data", text);
            break;
        case 'n':
            checkDefault("-int", text);
            break;
        default:
            break;
    }
    return 0;
}
