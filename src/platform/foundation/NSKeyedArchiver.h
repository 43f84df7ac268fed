// Keyed archives: objects as the bytes in which the platform keeps them, so that a value goes from
// one program to another.
//
// Queue: any; stateless. Equal values have equal bytes. Known are an interval and a set of dates.
#pragma once

#include <set>

#include "platform/foundation/NSDateInterval.h"
#include "platform/foundation/Result.h"
#include "platform/foundation/Value.h"

namespace tavrion {

class NSKeyedArchiver {
  public:
    NSKeyedArchiver() = delete;

    static NSData archivedDataWithRootObject(const NSDateInterval& interval);
    static NSData archivedDataWithRootObject(const std::set<NSDate>& dates);
};

class NSKeyedUnarchiver {
  public:
    NSKeyedUnarchiver() = delete;

    /// An NSDateInterval or a std::set<NSDate>. Bytes that are no archive, or an archive of
    /// anything else or with anything else in it, are an error as a whole.
    template <class Object>
    static Result<Object> unarchivedObjectOfClass(const NSData& data);
};

template <>
Result<NSDateInterval> NSKeyedUnarchiver::unarchivedObjectOfClass(const NSData& data);
template <>
Result<std::set<NSDate>> NSKeyedUnarchiver::unarchivedObjectOfClass(const NSData& data);

}  // namespace tavrion
