#include "kit/NSDiffableDataSourceSnapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrion {
namespace {

using testing::ElementsAre;

Value reference(std::uint64_t kind, std::uint64_t number) {
    return ObjectReference{kind << 32U | number};
}

/// A section of a null object, and two of references.
NSDiffableDataSourceSnapshot mixed() {
    NSDiffableDataSourceSnapshot snapshot;
    snapshot.appendSection("First", SnapshotItems(std::vector<Value>{Value()}));
    snapshot.appendSection(NSDate::distantPast(), {2, {9, 7, 5}});
    snapshot.appendSection(NSDate::distantFuture(), {2, {4}});
    return snapshot;
}

TEST(NSDiffableDataSourceSnapshot, anEmptyOneHasNoSections) {
    const NSDiffableDataSourceSnapshot snapshot;
    EXPECT_TRUE(snapshot.isEmpty());
    EXPECT_EQ(snapshot.numberOfItems(), 0U);
    EXPECT_EQ(snapshot.numberOfItemsInSection(0), 0U);
    EXPECT_FALSE(snapshot.itemIdentifierForIndexPath({0, 0}));
}

TEST(NSDiffableDataSourceSnapshot, sectionsAndItemsKeepTheirOrderAndTheirTypes) {
    const NSDiffableDataSourceSnapshot snapshot = mixed();
    EXPECT_THAT(
        snapshot.sectionIdentifiers(),
        ElementsAre(Value("First"), Value(NSDate::distantPast()), Value(NSDate::distantFuture())));
    EXPECT_THAT(snapshot.itemIdentifiers(), ElementsAre(Value(), reference(2, 9), reference(2, 7),
                                                        reference(2, 5), reference(2, 4)));
    EXPECT_THAT(snapshot.itemIdentifiersInSection(2), ElementsAre(reference(2, 4)));
    EXPECT_EQ(snapshot.numberOfItems(), 5U);
}

TEST(NSDiffableDataSourceSnapshot, aNullItemIsThereAndAMissingRowIsNot) {
    const NSDiffableDataSourceSnapshot snapshot = mixed();
    ASSERT_TRUE(snapshot.itemIdentifierForIndexPath({0, 0}).has_value());
    EXPECT_TRUE(snapshot.itemIdentifierForIndexPath({0, 0})->isAbsent());
    EXPECT_FALSE(snapshot.itemIdentifierForIndexPath({0, 1}).has_value());
    EXPECT_FALSE(snapshot.itemIdentifierForIndexPath({3, 0}).has_value());
}

TEST(NSDiffableDataSourceSnapshot, itemsAreFoundByTheirWholeIdentifier) {
    const NSDiffableDataSourceSnapshot snapshot = mixed();
    EXPECT_EQ(snapshot.indexPathForItemIdentifier(reference(2, 5)), (NSIndexPath{1, 2}));
    EXPECT_EQ(snapshot.indexPathForItemIdentifier(Value()), (NSIndexPath{0, 0}));
    EXPECT_FALSE(snapshot.indexPathForItemIdentifier(reference(1, 5))) << "of another kind";
    EXPECT_FALSE(snapshot.indexPathForItemIdentifier("First")) << "a section is no item";
}

TEST(NSDiffableDataSourceSnapshot, aSectionThatLosesItsLastItemStays) {
    NSDiffableDataSourceSnapshot snapshot = mixed();
    snapshot.deleteItem(reference(2, 7));
    snapshot.deleteItem(reference(2, 4));
    snapshot.deleteItem(reference(2, 4));
    EXPECT_EQ(snapshot.numberOfSections(), 3U);
    EXPECT_EQ(snapshot.numberOfItemsInSection(2), 0U);
    EXPECT_THAT(snapshot.itemIdentifiersInSection(1),
                ElementsAre(reference(2, 9), reference(2, 5)));
    snapshot.deleteItem(Value());
    EXPECT_EQ(snapshot.numberOfItemsInSection(0), 0U);
}

TEST(NSDiffableDataSourceSnapshot, sectionsThatShareOneListShowTheirPartsOfIt) {
    const auto all = std::make_shared<const std::vector<std::uint32_t>>(
        std::vector<std::uint32_t>{9, 8, 7, 6, 5});
    NSDiffableDataSourceSnapshot snapshot;
    snapshot.appendSection("a", {2, all, 0, 2});
    snapshot.appendSection("b", {2, all, 2, 3});
    EXPECT_THAT(snapshot.itemIdentifiersInSection(0),
                ElementsAre(reference(2, 9), reference(2, 8)));
    EXPECT_EQ(snapshot.indexPathForItemIdentifier(reference(2, 6)), (NSIndexPath{1, 1}));
    snapshot.deleteItem(reference(2, 6));
    EXPECT_THAT(snapshot.itemIdentifiersInSection(1),
                ElementsAre(reference(2, 7), reference(2, 5)));
    EXPECT_EQ(snapshot.numberOfItems(), 4U);
    NSDiffableDataSourceSnapshot same;
    same.appendSection("a", {2, {9, 8}});
    same.appendSection("b", {2, {7, 5}});
    EXPECT_TRUE(snapshot == same);
}

TEST(NSDiffableDataSourceSnapshot, aCopyDoesNotSeeWhatTheOriginalLoses) {
    NSDiffableDataSourceSnapshot snapshot = mixed();
    const NSDiffableDataSourceSnapshot before = snapshot;
    EXPECT_TRUE(before == snapshot);
    snapshot.deleteItem(reference(2, 9));
    EXPECT_FALSE(before == snapshot);
    EXPECT_EQ(before.numberOfItemsInSection(1), 3U);
    EXPECT_TRUE(before == mixed());
}

}  // namespace
}  // namespace tavrion
