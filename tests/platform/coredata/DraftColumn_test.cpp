#include "platform/coredata/DraftColumn.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/coredata/Column.h"

namespace tavrion {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

/// A type with some of its values, absent ones among them.
struct TypeCase {
    NSAttributeType type;
    std::vector<FieldView> values;
};

std::vector<TypeCase> typeCases() {
    using Type = NSAttributeType;
    using std::string_view_literals::operator""sv;
    return {{Type::boolean, {true, false}},
            {Type::integer, {std::int64_t{-7}, std::numeric_limits<std::int64_t>::max()}},
            {Type::real, {-0.5, 1e300}},
            {Type::date, {at(-12.25), FieldView(), at(0)}},
            {Type::string, {"a"sv, FieldView(), ""sv, "\0b"sv}},
            {Type::binaryData, {"\xFF\0"sv, FieldView()}},
            {Type::reference, {Link{1}, FieldView(), Link{4000000000U}}}};
}

TEST(DraftColumnTest, aNewRowIsNeverSet) {
    for (const TypeCase& each : typeCases()) {
        DraftColumn drafts(each.type);
        drafts.addRow();
        EXPECT_EQ(drafts.at(0), unsetView(each.type));
    }
}

TEST(DraftColumnTest, everyTypeReadsAsItWasSet) {
    for (const TypeCase& each : typeCases()) {
        DraftColumn drafts(each.type);
        for (std::size_t row = 0; row < each.values.size(); ++row) {
            drafts.addRow();
            drafts.set(row, each.values[row]);
        }
        for (std::size_t row = 0; row < each.values.size(); ++row) {
            EXPECT_EQ(drafts.at(row), each.values[row]);
        }
    }
}

TEST(DraftColumnTest, aChangedTextReplacesTheFirst) {
    DraftColumn drafts(NSAttributeType::string);
    drafts.addRow();
    drafts.addRow();
    drafts.set(0, std::string_view("first"));
    drafts.set(1, std::string_view("other"));
    drafts.set(0, std::string_view("a longer second one"));
    EXPECT_EQ(drafts.at(0), FieldView(std::string_view("a longer second one")));
    EXPECT_EQ(drafts.at(1), FieldView(std::string_view("other")));
}

TEST(DraftColumnTest, aValueOfAnotherTypeIsNeverSet) {
    DraftColumn drafts(NSAttributeType::date);
    drafts.addRow();
    drafts.set(0, at(5));
    drafts.set(0, 5.0);
    EXPECT_EQ(drafts.at(0), FieldView());
}

TEST(DraftColumnTest, aDateThatIsNotANumberIsAbsent) {
    DraftColumn drafts(NSAttributeType::date);
    drafts.addRow();
    drafts.set(0, at(notANumber));
    EXPECT_EQ(drafts.at(0), FieldView());
}

TEST(DraftColumnTest, aColumnTakesOverARunOfDrafts) {
    for (const TypeCase& each : typeCases()) {
        DraftColumn drafts(each.type);
        for (std::size_t row = 0; row < each.values.size(); ++row) {
            drafts.addRow();
            drafts.set(row, each.values[row]);
        }
        Column column(each.type);
        column.append(each.values.front());
        column.appendDrafts(drafts, 1, each.values.size());
        ASSERT_EQ(column.size(), each.values.size());
        for (std::size_t row = 0; row < each.values.size(); ++row) {
            EXPECT_EQ(column.at(row), each.values[row]);
        }
    }
}

}  // namespace
}  // namespace tavrion
