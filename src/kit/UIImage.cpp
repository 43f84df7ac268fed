#include "kit/UIImage.h"

#include <tuple>

namespace tavrion {

UIImage UIImage::systemImageNamed(std::string name, UIImageSymbolConfiguration configuration) {
    UIImage image(Kind::symbol);
    image.name_ = std::move(name);
    image.configuration_ = configuration;
    return image;
}

UIImage UIImage::imageNamed(std::string name) {
    UIImage image(Kind::asset);
    image.name_ = std::move(name);
    return image;
}

UIImage UIImage::imageWithData(NSData data) {
    UIImage image(Kind::data);
    image.data_ = std::make_shared<const NSData>(std::move(data));
    return image;
}

UIImage UIImage::transparent(CGSize size) {
    UIImage image(Kind::transparent);
    image.size_ = size;
    return image;
}

UIImage UIImage::imageWithTintColor(UIColor color) const {
    UIImage image = *this;
    image.tintColor_ = std::move(color);
    return image;
}

UIImage UIImage::imageOfSize(CGSize size) const {
    UIImage image = *this;
    image.size_ = size;
    return image;
}

bool UIImage::operator==(const UIImage& other) const {
    const auto shown = [](const UIImage& image) {
        return std::tie(image.kind_, image.name_, image.configuration_, image.tintColor_,
                        image.size_);
    };
    const bool sameData = data_ == other.data_ || (data_ && other.data_ && *data_ == *other.data_);
    return sameData && shown(*this) == shown(other);
}

}  // namespace tavrion
