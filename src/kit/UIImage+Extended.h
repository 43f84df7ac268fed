// What UIImage gains.
//
// Queue: any. Stateless.
#pragma once

#include "kit/UIImage.h"

namespace tavrion::Extended {

/// A transparent picture of the size: the colour is chosen, but nothing is filled with it. The
/// segmented control is laid out with this result.
UIImage imageWithColor(const UIColor& color, CGSize size);

}  // namespace tavrion::Extended
