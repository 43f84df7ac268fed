// Puts entities that a search has found in its order.
//
// Queue: any. Stateless.
#pragma once

#include <string_view>
#include <vector>

#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// The entities by the strings that they have for the key, in the order of SearchOrder.h. An empty
/// term leaves them as they are.
std::vector<MPMediaEntity> sortedResults(std::vector<MPMediaEntity> entities,
                                         std::string_view forKey, std::string_view containingTerm);

}  // namespace tavrion
