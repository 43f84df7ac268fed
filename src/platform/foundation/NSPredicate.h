// A condition on an object whose properties are reached by name, as a value: comparisons joined by
// AND and OR.
//
// Queue: any; immutable. The record store plans a fetch from its parts; anything else can be
// filtered in memory with evaluate(). A comparison with an absent value: equality holds only when
// both are absent, inequality is its opposite, an order never holds. Numbers of different types
// compare by their value; a bool is the number 0 or 1.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Value.h"

namespace tavrion {

class NSPredicate {
  public:
    enum class Kind { comparison, all, any };
    enum class Operator { equal, notEqual, less, lessOrEqual, greater, greaterOrEqual };
    /// Gives the property of that name, or an absent value.
    using Reader = std::function<Value(std::string_view key)>;

    /// key OP value.
    static NSPredicate comparison(std::string key, Operator op, Value value);
    /// AND of the parts. With no parts it matches everything.
    static NSPredicate andPredicateWithSubpredicates(std::vector<NSPredicate> parts);
    /// OR of the parts. With no parts it matches nothing.
    static NSPredicate orPredicateWithSubpredicates(std::vector<NSPredicate> parts);

    Kind kind() const { return kind_; }
    /// Of a comparison only.
    const std::string& key() const { return key_; }
    Operator op() const { return op_; }
    const Value& value() const { return value_; }
    /// Of all and any only.
    const std::vector<NSPredicate>& subpredicates() const { return parts_; }

    bool evaluate(const Reader& read) const;
    /// The test of one comparison.
    static bool compare(const Value& left, Operator op, const Value& right);

  private:
    NSPredicate() = default;
    Kind kind_ = Kind::all;
    Operator op_ = Operator::equal;
    std::string key_;
    Value value_;
    std::vector<NSPredicate> parts_;
};

}  // namespace tavrion
