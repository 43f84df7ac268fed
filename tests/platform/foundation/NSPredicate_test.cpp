#include "platform/foundation/NSPredicate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavrion {
namespace {

using Operator = NSPredicate::Operator;

struct Row {
    Value left;
    Value right;
    /// "<", "=", ">", or "?" where the two have no order and are not equal.
    char relation;
};

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

void expectRelation(const Row& row, std::size_t index) {
    const auto holds = [&](Operator op) { return NSPredicate::compare(row.left, op, row.right); };
    const char relation = row.relation;
    EXPECT_EQ(holds(Operator::equal), relation == '=') << index;
    EXPECT_EQ(holds(Operator::notEqual), relation != '=') << index;
    EXPECT_EQ(holds(Operator::less), relation == '<') << index;
    EXPECT_EQ(holds(Operator::lessOrEqual), relation == '<' || relation == '=') << index;
    EXPECT_EQ(holds(Operator::greater), relation == '>') << index;
    EXPECT_EQ(holds(Operator::greaterOrEqual), relation == '>' || relation == '=') << index;
}

TEST(NSPredicate, valuesOfOneTypeAndNumbersOfAllTypesHaveAnOrder) {
    constexpr std::int64_t large = (std::int64_t{1} << 53) + 1;
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    const std::vector<Row> rows{
        {1, 2, '<'},
        {2, 2, '='},
        {3, 2, '>'},
        {true, 1, '='},
        {false, 0.0, '='},
        {true, 0.5, '>'},
        {2, 2.5, '<'},
        {-2, -2.5, '>'},
        {2.5, 2, '>'},
        {2.0, 2, '='},
        {large, 9007199254740992.0, '>'},
        {9007199254740992.0, large, '<'},
        {most, 9223372036854775808.0, '<'},
        {least, -9223372036854775808.0, '='},
        {least, -1e30, '>'},
        {1, std::nan(""), '?'},
        {std::nan(""), std::nan(""), '?'},
        {at(1), at(2), '<'},
        {at(2), at(2), '='},
        {"a", "b", '<'},
        {"b", "B", '>'},
        {"a", "a", '='},
        {"\xC3\xA9", "z", '>'},
        {NSData{"a"}, NSData{"b"}, '<'},
        {ObjectReference{1}, ObjectReference{1}, '='},
        {ObjectReference{1}, ObjectReference{2}, '?'},
        {Value::Array{1, 2}, Value::Array{1, 2}, '='},
        {Value::Array{1}, Value::Array{2}, '?'},
        {"1", 1, '?'},
        {at(1), 1, '?'},
    };
    for (std::size_t index = 0; index < rows.size(); ++index) {
        expectRelation(rows[index], index);
    }
}

TEST(NSPredicate, anAbsentValueEqualsOnlyAnAbsentOneAndHasNoOrder) {
    const Value absent;
    for (const Value& other : {Value(0), Value(""), Value(false), Value(at(0))}) {
        EXPECT_FALSE(NSPredicate::compare(absent, Operator::equal, other));
        EXPECT_TRUE(NSPredicate::compare(absent, Operator::notEqual, other));
        EXPECT_TRUE(NSPredicate::compare(other, Operator::notEqual, absent));
        for (const Operator op :
             {Operator::less, Operator::lessOrEqual, Operator::greater, Operator::greaterOrEqual}) {
            EXPECT_FALSE(NSPredicate::compare(absent, op, other));
            EXPECT_FALSE(NSPredicate::compare(other, op, absent));
        }
    }
    EXPECT_TRUE(NSPredicate::compare(absent, Operator::equal, absent));
    EXPECT_FALSE(NSPredicate::compare(absent, Operator::notEqual, absent));
    EXPECT_FALSE(NSPredicate::compare(absent, Operator::lessOrEqual, absent));
    EXPECT_FALSE(NSPredicate::compare(absent, Operator::greaterOrEqual, absent));
}

TEST(NSPredicate, joinsItsPartsWithAndAndOr) {
    const auto equals = [](std::string key, Value value) {
        return NSPredicate::comparison(std::move(key), Operator::equal, std::move(value));
    };
    const NSPredicate::Reader read = [](std::string_view key) -> Value {
        return key == "title" ? Value("Love") : key == "rank" ? Value(3) : Value();
    };
    const NSPredicate title = equals("title", "Love");
    const NSPredicate rank = equals("rank", 4);
    const auto all = [](std::vector<NSPredicate> parts) {
        return NSPredicate::andPredicateWithSubpredicates(std::move(parts));
    };
    const auto any = [](std::vector<NSPredicate> parts) {
        return NSPredicate::orPredicateWithSubpredicates(std::move(parts));
    };
    EXPECT_TRUE(title.evaluate(read));
    EXPECT_FALSE(rank.evaluate(read));
    EXPECT_FALSE(all({title, rank}).evaluate(read));
    EXPECT_TRUE(all({title, title}).evaluate(read));
    EXPECT_TRUE(any({rank, title}).evaluate(read));
    EXPECT_FALSE(any({rank, rank}).evaluate(read));
    EXPECT_TRUE(all({any({rank, title}), title}).evaluate(read));
    EXPECT_TRUE(equals("missing", Value()).evaluate(read));
    EXPECT_TRUE(all({}).evaluate(read));
    EXPECT_FALSE(any({}).evaluate(read));
}

TEST(NSPredicate, showsItsParts) {
    const NSPredicate part = NSPredicate::comparison("date", Operator::less, at(1));
    const NSPredicate whole = NSPredicate::orPredicateWithSubpredicates({part});
    ASSERT_EQ(whole.kind(), NSPredicate::Kind::any);
    ASSERT_EQ(whole.subpredicates().size(), 1U);
    const NSPredicate& shown = whole.subpredicates().front();
    EXPECT_EQ(shown.kind(), NSPredicate::Kind::comparison);
    EXPECT_EQ(shown.key(), "date");
    EXPECT_EQ(shown.op(), Operator::less);
    EXPECT_EQ(shown.value(), Value(at(1)));
    EXPECT_EQ(NSPredicate::andPredicateWithSubpredicates({}).kind(), NSPredicate::Kind::all);
}

}  // namespace
}  // namespace tavrion
