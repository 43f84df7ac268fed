#include "kit/UIImage.h"

#include <gtest/gtest.h>

#include "kit/UIImage+Extended.h"

namespace tavrion {
namespace {

TEST(UIImage, aSymbolSaysItsNameItsSizeAndItsColour) {
    UIImageSymbolConfiguration configuration;
    configuration.scale = UIImageSymbolScale::small;
    const UIImage plain = UIImage::systemImageNamed("play.fill", configuration);
    EXPECT_EQ(plain.kind(), UIImage::Kind::symbol);
    EXPECT_EQ(plain.name(), "play.fill");
    EXPECT_EQ(plain.symbolConfiguration().scale, UIImageSymbolScale::small);
    EXPECT_EQ(plain.tintColor(), std::nullopt);
    const UIImage grey = plain.imageWithTintColor(UIColor::systemGray2Color());
    EXPECT_EQ(grey.tintColor(), UIColor{"systemGray2Color"});
    EXPECT_EQ(plain.tintColor(), std::nullopt);
}

TEST(UIImage, twoAreEqualWhenTheyShowTheSame) {
    const UIImage image = UIImage::imageWithData(NSData{"bytes"});
    EXPECT_EQ(image, UIImage::imageWithData(NSData{"bytes"}));
    EXPECT_NE(image, UIImage::imageWithData(NSData{"others"}));
    EXPECT_NE(image, UIImage::imageNamed("list"));
    EXPECT_NE(UIImage::imageNamed("list"), UIImage::imageNamed("item"));
    EXPECT_NE(UIImage::imageNamed("list"), UIImage::systemImageNamed("list"));
    EXPECT_NE(image, image.imageOfSize({10, 20}));
    EXPECT_NE(image, image.imageWithTintColor({"musicColor"}));
    EXPECT_EQ(image.imageOfSize({10, 20}).size(), (CGSize{10, 20}));
    ASSERT_NE(image.data(), nullptr);
    EXPECT_EQ(image.data()->bytes, "bytes");
    EXPECT_EQ(UIImage::imageNamed("list").data(), nullptr);
}

TEST(UIImageExtended, aPictureMadeOfAColourIsTransparentWhateverTheColour) {
    const UIImage image = Extended::imageWithColor({"musicColor"}, {30, 4});
    EXPECT_EQ(image.kind(), UIImage::Kind::transparent);
    EXPECT_EQ(image.tintColor(), std::nullopt);
    EXPECT_EQ(image.size(), (CGSize{30, 4}));
    EXPECT_EQ(image, Extended::imageWithColor({"systemGray2Color"}, {30, 4}));
}

}  // namespace
}  // namespace tavrion
