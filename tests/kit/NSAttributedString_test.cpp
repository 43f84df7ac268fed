#include "kit/NSAttributedString.h"

#include <gtest/gtest.h>

namespace tavrion {
namespace {

using Runs = std::vector<NSAttributedString::Run>;

const UIImage star = UIImage::systemImageNamed("star.fill");

TEST(NSAttributedString, isAListOfTextsAndPictures) {
    NSAttributedString text("Song");
    text.appendString("\u2004");
    text.appendAttachment(star);
    text.appendString(" loud");
    EXPECT_EQ(text.runs(), (Runs{"Song\u2004", star, " loud"}));
}

TEST(NSAttributedString, neighbouringTextsAreOneAndEmptyOnesNone) {
    NSAttributedString text("");
    EXPECT_TRUE(text.isEmpty());
    text.appendString("a");
    text.appendString("");
    text.appendString("b");
    EXPECT_EQ(text, NSAttributedString("ab"));
    text.appendAttributedString(NSAttributedString("c"));
    EXPECT_EQ(text, NSAttributedString("abc"));
    text.appendAttributedString(NSAttributedString::attributedStringWithAttachment(star));
    EXPECT_EQ(text.runs(), (Runs{"abc", star}));
}

TEST(NSAttributedString, canBeAppendedToItself) {
    NSAttributedString text("ab");
    text.appendAttachment(star);
    text.appendAttributedString(text);
    EXPECT_EQ(text.runs(), (Runs{"ab", star, "ab", star}));
}

TEST(NSAttributedString, withoutItsPicturesOnlyTheWordsAreLeft) {
    NSAttributedString property = NSAttributedString::attributedStringWithAttachment(star);
    property.appendString(" 12x");
    EXPECT_EQ(property.textWithoutAttachments(), "12x");
    NSAttributedString title(" Song ");
    EXPECT_EQ(title.textWithoutAttachments(), " Song ");
    title.appendString("\u2004");
    title.appendAttachment(star);
    EXPECT_EQ(title.textWithoutAttachments(), " Song");
    title.appendString(" loud ");
    EXPECT_EQ(title.textWithoutAttachments(), " Song loud ");
    NSAttributedString marks = NSAttributedString::attributedStringWithAttachment(star);
    marks.appendString(" ");
    marks.appendAttachment(star);
    EXPECT_EQ(marks.textWithoutAttachments(), "");
    EXPECT_EQ(NSAttributedString().textWithoutAttachments(), "");
}

}  // namespace
}  // namespace tavrion
