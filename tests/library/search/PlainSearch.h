// The search in its plainest form: queries, one comparison, one merge sort, nothing remembered. It
// is what the search that users wait for is measured against.
//
// Queue: any. Stateless.
#pragma once

#include <string_view>
#include <vector>

#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

struct PlainResults {
    std::vector<MPMediaEntity> artists;
    std::vector<MPMediaEntity> albums;
    std::vector<MPMediaEntity> songs;
    std::vector<MPMediaEntity> playlists;
};

/// The term is not empty and has no blanks around it.
PlainResults plainSearch(std::string_view term);

}  // namespace tavrion
