// The properties of a song by their names.
//
// Queue: any. Stateless.
#pragma once

#include <optional>
#include <string_view>

#include "platform/mediaplayer/MPMediaItem.h"

namespace tavrion {

struct MPMediaItemProperty {
    std::string_view name;
    Value (*read)(const MPMediaItem& item);
    /// Of a property that is a text of the record: which, so that filters compare without copying.
    std::optional<SongText> text = std::nullopt;
};

/// Null for an unknown name.
const MPMediaItemProperty* propertyOfMediaItem(std::string_view name);

}  // namespace tavrion
