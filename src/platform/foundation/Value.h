// A value of a property that is reached by its name: what key-value reading, predicates and user
// defaults deal in.
//
// Queue: any; a value. Absent is the empty alternative (isAbsent()).
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/foundation/NSDate.h"

namespace tavrion {

/// Bytes without a meaning of their own here.
struct NSData {
    std::string bytes;
    bool operator==(const NSData&) const = default;
};

/// Another object, by an opaque number that its owner gives and understands (the record store packs
/// identifiers here).
struct ObjectReference {
    std::uint64_t bits = 0;
    bool operator==(const ObjectReference&) const = default;
};

class Value {
  public:
    using Array = std::vector<Value>;
    using Dictionary = std::map<std::string, Value>;
    using Alternatives = std::variant<std::monostate, bool, std::int64_t, double, NSDate,
                                      std::string, NSData, ObjectReference, Array, Dictionary>;

    Value() = default;
    Value(bool value) : alternatives_(value) {}  // NOLINT: implicit by design
    Value(int value) : alternatives_(static_cast<std::int64_t>(value)) {}  // NOLINT
    Value(std::int64_t value) : alternatives_(value) {}                    // NOLINT
    /// Counts above the signed range keep their bits.
    Value(std::uint64_t value) : alternatives_(static_cast<std::int64_t>(value)) {}  // NOLINT
    Value(double value) : alternatives_(value) {}                                    // NOLINT
    Value(NSDate value) : alternatives_(value) {}                                    // NOLINT
    Value(const char* value) : alternatives_(std::string(value)) {}                  // NOLINT
    Value(std::string value) : alternatives_(std::move(value)) {}                    // NOLINT
    Value(NSData value) : alternatives_(std::move(value)) {}                         // NOLINT
    Value(ObjectReference value) : alternatives_(value) {}                           // NOLINT
    Value(Array value) : alternatives_(std::move(value)) {}                          // NOLINT
    Value(Dictionary value) : alternatives_(std::move(value)) {}                     // NOLINT
    template <class T>
    Value(std::optional<T> value) {  // NOLINT
        if (value) {
            *this = Value(std::move(*value));
        }
    }

    bool isAbsent() const { return std::holds_alternative<std::monostate>(alternatives_); }
    /// The alternative T, or null when the value is of another type.
    template <class T>
    const T* get() const {
        return std::get_if<T>(&alternatives_);
    }
    const Alternatives& alternatives() const { return alternatives_; }

    bool operator==(const Value&) const = default;

  private:
    Alternatives alternatives_;
};

}  // namespace tavrion
