// Which pattern (UTS #35) a locale uses for a date.
//
// Queue: any. Stateless; foundation's own, not for other rooms.
#pragma once

#include <unicode/unistr.h>

#include "platform/foundation/NSDateFormatter.h"

namespace tavrion::DatePatterns {

/// Empty when there is neither a date nor a time.
icu::UnicodeString ofForm(const NSDateForm& form);
/// Whether texts of the pattern tell their offset from UTC.
bool tellsOffset(const icu::UnicodeString& pattern);

}  // namespace tavrion::DatePatterns
