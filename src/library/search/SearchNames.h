// The names of one kind of entity, made ready to be ranked by any term: what a name's place in the
// alphabet is, and which names can be the term itself, is worked out once and not for every
// keystroke.
//
// Queue: any; immutable. Who owns: the texts are in the snapshot of the songs, which outlives this.
// Absent names are empty ones. Everything is of the locale in which the names were taken in.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "library/search/SearchOrder.h"
#include "platform/foundation/NSString+Entended.h"

namespace tavrion {

class SearchNames {
  public:
    SearchNames() = default;
    explicit SearchNames(std::vector<std::string_view> names);

    std::size_t size() const { return names_.size(); }
    /// The places, which come as they were found, in the order of SearchOrder.h. The term is not
    /// empty.
    std::vector<std::uint32_t> ranked(const std::vector<std::uint32_t>& places,
                                      std::string_view term) const;

  private:
    struct KeyedName;
    void rankNames();
    void rankSameKeys(std::vector<KeyedName>& names, std::size_t first, std::size_t end,
                      std::uint32_t& rank);
    std::uint8_t flagsOf(std::uint32_t place, std::string_view term,
                         const CaselessHashes& hashes) const;
    std::vector<std::uint32_t> rankedByComparing(const std::vector<std::uint32_t>& places,
                                                 std::string_view term) const;

    std::vector<std::string_view> names_;
    std::vector<CaselessHashes> hashes_;
    std::vector<std::uint32_t> alphabetRanks_;
    /// Whether the alphabet puts all these names in one order. It does, unless numbers are written
    /// in several scripts with zeros in front.
    bool areOrdered_ = true;
};

}  // namespace tavrion
