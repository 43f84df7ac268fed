// Many texts in the form in which a search reads them, one behind the other in one piece of memory,
// so that looking for a word is one walk and not one for each text.
//
// Queue: any; immutable. Absent texts are empty ones; nothing is found in these. The form is that
// of the locale in which the texts were taken in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "library/search/SearchTerm.h"

namespace tavrion {

class FoldedTexts {
  public:
    FoldedTexts() : starts_{0} {}
    explicit FoldedTexts(const std::vector<std::string_view>& texts);

    std::size_t size() const { return starts_.size() - 1; }
    std::string_view operator[](std::size_t place) const;
    /// The places of the texts that have every part of the term, in ascending order.
    std::vector<std::uint32_t> placesWith(const FoldedTerm& term) const;

  private:
    std::string bytes_;
    /// Of each text in bytes_, and where a next one would start.
    std::vector<std::uint64_t> starts_;
};

}  // namespace tavrion
