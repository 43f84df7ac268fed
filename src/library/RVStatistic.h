// One tile of statistics: a symbol, a number, and the words under it.
//
// Queue: any; immutable once made. Who owns: whoever shows it, through RVStatisticReference. Two
// tiles that say the same are still two: lists tell them apart by their references. Absent: the
// icon of a tile that only keeps the place of one to come; its texts are empty.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "kit/UIImage.h"

namespace tavrion {

class RVStatistic {
  public:
    RVStatistic() = default;
    RVStatistic(UIImage icon, std::string value, std::string caption)
        : icon_(std::move(icon)), value_(std::move(value)), caption_(std::move(caption)) {}
    /// With the symbol of that name.
    static std::shared_ptr<const RVStatistic> make(const char* symbol, std::string value,
                                                   std::string caption) {
        return std::make_shared<const RVStatistic>(UIImage::systemImageNamed(symbol),
                                                   std::move(value), std::move(caption));
    }
    RVStatistic(const RVStatistic&) = delete;
    RVStatistic& operator=(const RVStatistic&) = delete;

    const std::optional<UIImage>& icon() const { return icon_; }
    /// The number, ready to be shown.
    const std::string& value() const { return value_; }
    const std::string& caption() const { return caption_; }

  private:
    std::optional<UIImage> icon_;
    std::string value_;
    std::string caption_;
};

using RVStatisticReference = std::shared_ptr<const RVStatistic>;

}  // namespace tavrion
