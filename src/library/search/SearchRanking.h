// The order of the hits of a search.
//
// Queue: one caller at a time, for the ranking remembers the sort keys of the names that it saw:
// the next keystroke finds most of them again. Who owns: a search.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// How well a text matches a term. Exact is without regard to case, the others with it. An empty
/// text has none.
inline constexpr std::uint8_t exactFlag = 1U;
inline constexpr std::uint8_t prefixFlag = 2U;
inline constexpr std::uint8_t containsFlag = 4U;
std::uint8_t searchFlags(std::string_view text, std::string_view term);
/// The last two of them.
std::uint8_t caseSensitiveFlags(std::string_view text, std::string_view term);

/// The first bytes of a sort key as a number, so that most comparisons touch no string.
std::uint64_t sortKeyPrefix(std::string_view key);

class SearchRanking {
  public:
    /// The entities by the strings that they have for the key. The one with a flag that the other
    /// lacks goes first; where both have one so, the left; where neither has, the alphabet decides.
    /// Pairs of the middle kind have no agreed order. An empty term leaves the entities as they
    /// are.
    std::vector<MPMediaEntity> sortedResults(std::vector<MPMediaEntity> entities,
                                             std::string_view forKey,
                                             std::string_view containingTerm);

  private:
    struct TextHash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    using SortKeys = std::unordered_map<std::string, std::string, TextHash, std::equal_to<>>;

    void rememberSortKeys(const std::vector<std::string>& names);

    /// By name; the key's bytes are in the order of smartAlphabeticalCompare.
    SortKeys sortKeys_;
    /// Of which the keys are.
    std::string locale_;
};

}  // namespace tavrion
