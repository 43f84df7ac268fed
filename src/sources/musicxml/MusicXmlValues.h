// Values of a Library.xml as text.
//
// Queue: any. Stateless. Absent: the text is not such a value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSDate.h"

namespace tavrion {

/// Decimal digits after an optional sign; absent also when the number does not fit.
std::optional<std::int64_t> musicXmlInteger(std::string_view text);
/// 1 to 16 hexadecimal digits.
std::optional<std::uint64_t> musicXmlPersistentID(std::string_view text);
/// "2021-12-19T08:15:00Z" and nothing else.
std::optional<NSDate> musicXmlDate(std::string_view text);
/// Whether a date is what "never" becomes in an export: the ends of a 32-bit count of seconds since
/// 1904, give or take a day for the zone.
bool isNeverInMusicXml(NSDate date);
/// The start of a text of the file, fit for one line: short, cut between two characters, without
/// line ends.
std::string musicXmlTextForPeople(std::string_view text);

}  // namespace tavrion
