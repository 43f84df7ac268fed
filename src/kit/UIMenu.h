// A menu as a value: what it offers and what each entry does.
//
// Queue: the main queue calls the handlers. Who owns: whoever shows it; a handler keeps nothing
// alive that the menu's maker does not say. Absent: the picture of an entry without one.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kit/UIImage.h"

namespace tavrion {

struct UIAction {
    std::string title;
    std::optional<UIImage> image = std::nullopt;
    std::function<void()> handler;
};

struct UIMenu {
    std::vector<UIAction> children;
};

}  // namespace tavrion
