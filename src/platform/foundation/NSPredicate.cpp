#include "platform/foundation/NSPredicate.h"

#include <algorithm>
#include <cmath>
#include <compare>

namespace tavrion {

namespace {

/// A number without loss: a whole one, or a real one.
struct Number {
    bool isWhole = true;
    std::int64_t whole = 0;
    double real = 0;
};

std::optional<Number> numberOf(const Value& value) {
    if (const auto* flag = value.get<bool>()) {
        return Number{true, *flag ? 1 : 0, 0};
    }
    if (const auto* whole = value.get<std::int64_t>()) {
        return Number{true, *whole, 0};
    }
    if (const auto* real = value.get<double>()) {
        return Number{false, 0, *real};
    }
    return std::nullopt;
}

/// Exact also above 2^53, where turning the whole number into a double would round it.
std::partial_ordering compareWholeWithReal(std::int64_t whole, double real) {
    constexpr double limit = 9223372036854775808.0;  // 2^63
    if (std::isnan(real)) {
        return std::partial_ordering::unordered;
    }
    if (real >= limit) {
        return std::partial_ordering::less;
    }
    if (real < -limit) {
        return std::partial_ordering::greater;
    }
    const double cut = std::trunc(real);
    const auto order = whole <=> static_cast<std::int64_t>(cut);
    return order != 0 ? std::partial_ordering(order) : cut <=> real;
}

std::partial_ordering compareNumbers(const Number& a, const Number& b) {
    if (a.isWhole && b.isWhole) {
        return a.whole <=> b.whole;
    }
    if (!a.isWhole && !b.isWhole) {
        return a.real <=> b.real;
    }
    return a.isWhole ? compareWholeWithReal(a.whole, b.real)
                     : 0 <=> compareWholeWithReal(b.whole, a.real);
}

/// Unordered where the two have no order: other types, an absent value, objects and lists that
/// differ.
std::partial_ordering order(const Value& left, const Value& right) {
    const auto leftNumber = numberOf(left);
    const auto rightNumber = numberOf(right);
    if (leftNumber && rightNumber) {
        return compareNumbers(*leftNumber, *rightNumber);
    }
    if (left.get<NSDate>() != nullptr && right.get<NSDate>() != nullptr) {
        return *left.get<NSDate>() <=> *right.get<NSDate>();
    }
    if (left.get<std::string>() != nullptr && right.get<std::string>() != nullptr) {
        return *left.get<std::string>() <=> *right.get<std::string>();
    }
    if (left.get<NSData>() != nullptr && right.get<NSData>() != nullptr) {
        return left.get<NSData>()->bytes <=> right.get<NSData>()->bytes;
    }
    return left == right ? std::partial_ordering::equivalent : std::partial_ordering::unordered;
}

}  // namespace

NSPredicate NSPredicate::comparison(std::string key, Operator op, Value value) {
    NSPredicate predicate;
    predicate.kind_ = Kind::comparison;
    predicate.op_ = op;
    predicate.key_ = std::move(key);
    predicate.value_ = std::move(value);
    return predicate;
}

NSPredicate NSPredicate::andPredicateWithSubpredicates(std::vector<NSPredicate> parts) {
    NSPredicate predicate;
    predicate.kind_ = Kind::all;
    predicate.parts_ = std::move(parts);
    return predicate;
}

NSPredicate NSPredicate::orPredicateWithSubpredicates(std::vector<NSPredicate> parts) {
    NSPredicate predicate;
    predicate.kind_ = Kind::any;
    predicate.parts_ = std::move(parts);
    return predicate;
}

bool NSPredicate::evaluate(const Reader& read) const {
    const auto holds = [&read](const NSPredicate& part) { return part.evaluate(read); };
    switch (kind_) {
        case Kind::comparison:
            return compare(read(key_), op_, value_);
        case Kind::all:
            return std::all_of(parts_.begin(), parts_.end(), holds);
        case Kind::any:
            return std::any_of(parts_.begin(), parts_.end(), holds);
    }
    return false;
}

bool NSPredicate::compare(const Value& left, Operator op, const Value& right) {
    const std::partial_ordering result = order(left, right);
    const bool bothPresent = !left.isAbsent() && !right.isAbsent();
    switch (op) {
        case Operator::equal:
            return result == 0;
        case Operator::notEqual:
            return result != 0;
        case Operator::less:
            return bothPresent && result < 0;
        case Operator::lessOrEqual:
            return bothPresent && result <= 0;
        case Operator::greater:
            return bothPresent && result > 0;
        case Operator::greaterOrEqual:
            return bothPresent && result >= 0;
    }
    return false;
}

}  // namespace tavrion
