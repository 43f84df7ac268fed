// What counts as the user's music.
//
// Queue: any. Stateless.
#pragma once

#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion {

class RVQueryManager {
  public:
    RVQueryManager() = delete;
    /// A new query for all songs whose media type is music.
    static MPMediaQuery defaultQuery();
};

}  // namespace tavrion
