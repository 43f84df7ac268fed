#include "library/search/FoldedTexts.h"

#include <algorithm>
#include <cstring>

#include "platform/foundation/SearchFolding.h"

namespace tavrion {

namespace {

/// Stands behind each text. No UTF-8 has this byte, so that nothing is found across two texts.
constexpr char separator = '\xFF';
/// How many texts in a row are tried before the next hit's text is looked up.
constexpr int nearTexts = 8;

std::size_t placeOfPart(std::string_view bytes, std::string_view part, std::size_t from) {
    const void* found =
        ::memmem(bytes.data() + from, bytes.size() - from, part.data(), part.size());
    return found == nullptr
               ? std::string_view::npos
               : static_cast<std::size_t>(static_cast<const char*>(found) - bytes.data());
}

}  // namespace

FoldedTexts::FoldedTexts(const std::vector<std::string_view>& texts) {
    starts_.reserve(texts.size() + 1);
    for (const std::string_view text : texts) {
        starts_.push_back(bytes_.size());
        bytes_ += foldedForSearch(text);
        bytes_ += separator;
    }
    starts_.push_back(bytes_.size());
    bytes_.shrink_to_fit();
}

std::string_view FoldedTexts::operator[](std::size_t place) const {
    return std::string_view(bytes_).substr(starts_[place], starts_[place + 1] - starts_[place] - 1);
}

std::vector<std::uint32_t> FoldedTexts::placesWith(const FoldedTerm& term) const {
    std::vector<std::uint32_t> places;
    if (term.parts().empty()) {
        return places;
    }
    // The longest is found least often.
    const std::string& part = *std::max_element(
        term.parts().begin(), term.parts().end(),
        [](const std::string& one, const std::string& other) { return one.size() < other.size(); });
    const bool isAlone = term.parts().size() == 1;
    std::size_t at = placeOfPart(bytes_, part, 0);
    for (std::size_t place = 0; at != std::string_view::npos;
         at = placeOfPart(bytes_, part, starts_[++place])) {
        for (int tried = 0; tried < nearTexts && starts_[place + 1] <= at; ++tried) {
            ++place;
        }
        if (starts_[place + 1] <= at) {
            const auto next = std::upper_bound(starts_.begin() + static_cast<std::ptrdiff_t>(place),
                                               starts_.end(), at);
            place = static_cast<std::size_t>(next - starts_.begin()) - 1;
        }
        if (isAlone || term.isInFolded((*this)[place])) {
            places.push_back(static_cast<std::uint32_t>(place));
        }
    }
    return places;
}

}  // namespace tavrion
