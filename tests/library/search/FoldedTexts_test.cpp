#include "library/search/FoldedTexts.h"

#include <gtest/gtest.h>

#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Places = std::vector<std::uint32_t>;

class FoldedTextsTest : public testing::Test {
  protected:
    MediaLibraryFixture region_;
};

TEST_F(FoldedTextsTest, aTermIsFoundInEachTextThatHasItOnce) {
    const FoldedTexts texts({"Banana", "", "ÄNA", "none", "an"});
    EXPECT_EQ(texts.placesWith(FoldedTerm("an")), (Places{0, 2, 4}));
    EXPECT_EQ(texts[2], "ana");
    EXPECT_EQ(texts[1], "");
}

TEST_F(FoldedTextsTest, nothingIsFoundAcrossTwoTexts) {
    EXPECT_EQ(FoldedTexts({"ab", "cd"}).placesWith(FoldedTerm("bc")), Places{});
}

TEST_F(FoldedTextsTest, eachPartOfATermMustBeThere) {
    const FoldedTexts texts({"blue green", "green", "a green blue", "blue"});
    EXPECT_EQ(texts.placesWith(FoldedTerm("green blue")), (Places{0, 2}));
    EXPECT_EQ(texts.placesWith(FoldedTerm::whole("green blue")), (Places{2}));
    EXPECT_EQ(texts.placesWith(FoldedTerm("green  blue")), Places{});
}

TEST_F(FoldedTextsTest, aHitFarAwayBelongsToItsText) {
    std::vector<std::string_view> many(1000, "x");
    many[700] = "xyz";
    many[999] = "yz";
    EXPECT_EQ(FoldedTexts(many).placesWith(FoldedTerm("yz")), (Places{700, 999}));
}

TEST_F(FoldedTextsTest, withoutTextsNothingIsFound) {
    EXPECT_EQ(FoldedTexts().placesWith(FoldedTerm("a")), Places{});
    EXPECT_EQ(FoldedTexts().size(), 0U);
}

}  // namespace
}  // namespace tavrion
