// The standard conditions on records.
//
// Queue: any; pure functions. Bounds of a date range are exclusive. Titles, durations and dates
// compare exactly.
#pragma once

#include <optional>
#include <string_view>

#include "platform/coredata/NSManagedObjectID.h"
#include "platform/foundation/NSPredicate.h"

namespace tavrion::RecordPredicates {

NSPredicate eventDateBetween(NSDate start, NSDate end);
NSPredicate eventDateEquals(NSDate date);
/// Only estimates, or only what is not one.
NSPredicate isInterpolated(bool interpolated);
NSPredicate parentHistory(NSManagedObjectID history);
NSPredicate identifier(std::string_view identifier);
NSPredicate titleAndDuration(const std::optional<std::string_view>& title, double duration);
NSPredicate storeID(std::string_view storeID);
NSPredicate libraryID(std::string_view libraryID);
/// Songs that the user has not taken out of trends.
NSPredicate notExcludedFromTrends();

}  // namespace tavrion::RecordPredicates
