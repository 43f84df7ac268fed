#include "kit/UIImage+Extended.h"

namespace tavrion::Extended {

UIImage imageWithColor(const UIColor& /*color*/, CGSize size) {
    return UIImage::transparent(size);
}

}  // namespace tavrion::Extended
