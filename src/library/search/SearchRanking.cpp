#include "library/search/SearchRanking.h"

#include <numeric>

#include "library/search/SearchNames.h"
#include "library/search/SearchTerm.h"

namespace tavrion {

std::vector<MPMediaEntity> sortedResults(std::vector<MPMediaEntity> entities,
                                         std::string_view forKey, std::string_view containingTerm) {
    if (containingTerm.empty()) {
        return entities;
    }
    std::vector<std::string> strings;
    strings.reserve(entities.size());
    for (const MPMediaEntity& entity : entities) {
        strings.push_back(stringOfEntity(entity, forKey));
    }
    std::vector<std::uint32_t> places(entities.size());
    std::iota(places.begin(), places.end(), 0U);
    const SearchNames names({strings.begin(), strings.end()});
    std::vector<MPMediaEntity> ranked;
    ranked.reserve(entities.size());
    for (const std::uint32_t place : names.ranked(places, containingTerm)) {
        ranked.push_back(std::move(entities[place]));
    }
    return ranked;
}

}  // namespace tavrion
