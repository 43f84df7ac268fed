// Which pattern (UTS #35) a locale uses for a date.
//
// Queue: any. Stateless; foundation's own, not for other rooms.
#pragma once

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include "platform/foundation/NSDateFormatter.h"

namespace tavrion::DatePatterns {

/// The locale with the calendar of the days, months and years here, which is one for all: the words
/// and digits are the locale's, its own calendar is not asked.
icu::Locale gregorianLocale(const std::string& name);
/// Empty when there is neither a date nor a time.
icu::UnicodeString ofForm(const NSDateForm& form);
/// Whether texts of the pattern tell their offset from UTC.
bool tellsOffset(const icu::UnicodeString& pattern);

}  // namespace tavrion::DatePatterns
