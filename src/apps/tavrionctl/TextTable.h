// Text for people: local dates, and columns aligned by the width that a terminal gives a character.
//
// Queue: any; pure functions, but for the current zone.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSDate.h"

namespace tavrion::ctl {

/// "2026-03-01 13:00:05" in the current zone.
std::string localText(NSDate date);
/// The text cut or filled to exactly that many columns; a cut ends in "…". Control characters
/// become spaces.
std::string fitted(std::string_view text, std::size_t width);

}  // namespace tavrion::ctl
