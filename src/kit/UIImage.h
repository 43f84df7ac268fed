// A picture by what it shows, not by how it is drawn: a symbol of the theme, a picture supplied
// with the program, or the bytes of a picture file.
//
// Queue: any; an immutable value, cheap to copy. Units: points. Absent is std::optional: a picture
// without a size has its own.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/foundation/Value.h"

namespace tavrion {

struct CGSize {
    double width = 0;
    double height = 0;
    bool operator==(const CGSize&) const = default;
};

/// A colour by its name in the theme ("musicColor").
struct UIColor {
    std::string name;
    static UIColor systemGray2Color() { return {"systemGray2Color"}; }
    bool operator==(const UIColor&) const = default;
};

/// The size at which a text is set.
struct UIFont {
    double pointSize = 0;
    bool operator==(const UIFont&) const = default;
};

/// The numbers are the platform's own.
enum class UIImageSymbolScale { unspecified = 0, small = 1, medium = 2, large = 3 };
enum class UIImageSymbolWeight { unspecified = 0, regular = 4, semibold = 6, bold = 7 };

/// How large and how heavy a symbol is beside the text that it stands in.
struct UIImageSymbolConfiguration {
    UIImageSymbolScale scale = UIImageSymbolScale::unspecified;
    UIImageSymbolWeight weight = UIImageSymbolWeight::unspecified;
    /// Of a size of its own.
    std::optional<UIFont> font = std::nullopt;
    bool operator==(const UIImageSymbolConfiguration&) const = default;
};

class UIImage {
  public:
    enum class Kind { symbol, asset, data, transparent };

    static UIImage systemImageNamed(std::string name,
                                    UIImageSymbolConfiguration configuration = {});
    /// A picture supplied with the program ("list").
    static UIImage imageNamed(std::string name);
    /// The bytes of a picture file (PNG, JPEG).
    static UIImage imageWithData(NSData data);
    /// Nothing at all, of that size.
    static UIImage transparent(CGSize size);

    UIImage imageWithTintColor(UIColor color) const;
    /// The same picture, drawn into that size.
    UIImage imageOfSize(CGSize size) const;

    Kind kind() const { return kind_; }
    /// Of a symbol or a supplied picture.
    const std::string& name() const { return name_; }
    const UIImageSymbolConfiguration& symbolConfiguration() const { return configuration_; }
    /// Null unless the kind is data.
    const NSData* data() const { return data_.get(); }
    const std::optional<UIColor>& tintColor() const { return tintColor_; }
    const std::optional<CGSize>& size() const { return size_; }

    /// Whether both show the same.
    bool operator==(const UIImage& other) const;

  private:
    explicit UIImage(Kind kind) : kind_(kind) {}

    Kind kind_;
    std::string name_;
    UIImageSymbolConfiguration configuration_;
    std::shared_ptr<const NSData> data_;
    std::optional<UIColor> tintColor_;
    std::optional<CGSize> size_;
};

}  // namespace tavrion
