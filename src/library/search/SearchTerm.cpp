#include "library/search/SearchTerm.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/foundation/SearchFolding.h"
#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion {

namespace {

/// Blanks and line breaks of all scripts, in UTF-8.
constexpr std::array<std::string_view, 25> separators{
    " ",      "\t",     "\n",     "\v",     "\f",     "\r",     "\u0085", "\u00A0", "\u1680",
    "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
    "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};

/// The bytes of the separator at the front; 0 when there is none.
std::size_t separatorAtStart(std::string_view text) {
    for (const std::string_view separator : separators) {
        if (text.starts_with(separator)) {
            return separator.size();
        }
    }
    return 0;
}

std::size_t separatorAtEnd(std::string_view text) {
    for (const std::string_view separator : separators) {
        if (text.ends_with(separator)) {
            return separator.size();
        }
    }
    return 0;
}

}  // namespace

std::string_view trimmedTerm(std::string_view typed) {
    while (const std::size_t bytes = separatorAtStart(typed)) {
        typed.remove_prefix(bytes);
    }
    while (const std::size_t bytes = separatorAtEnd(typed)) {
        typed.remove_suffix(bytes);
    }
    return typed;
}

std::vector<std::string_view> partsOfTerm(std::string_view term) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t at = 0; at < term.size();) {
        const std::size_t bytes = separatorAtStart(term.substr(at));
        if (bytes == 0) {
            ++at;
            continue;
        }
        parts.push_back(term.substr(start, at - start));
        at += bytes;
        start = at;
    }
    parts.push_back(term.substr(start));
    return parts;
}

FoldedTerm::FoldedTerm(std::string_view term) {
    for (const std::string_view part : partsOfTerm(term)) {
        parts_.push_back(foldedForSearch(part));
        if (parts_.back().empty()) {
            parts_.clear();
            return;
        }
    }
}

FoldedTerm FoldedTerm::whole(std::string_view term) {
    FoldedTerm folded;
    if (std::string part = foldedForSearch(term); !part.empty()) {
        folded.parts_.push_back(std::move(part));
    }
    return folded;
}

bool FoldedTerm::isInFolded(std::string_view folded) const {
    return !folded.empty() && !parts_.empty() &&
           std::all_of(parts_.begin(), parts_.end(), [&](const std::string& part) {
               return folded.find(part) != std::string_view::npos;
           });
}

bool FoldedTerm::isIn(std::string_view text) const {
    return isInFolded(foldedForSearch(text));
}

bool stringContainsSubstringsOfString(std::string_view string, std::string_view term) {
    return FoldedTerm(term).isIn(string);
}

std::string stringOfEntity(const MPMediaEntity& entity, std::string_view key) {
    if (const auto playlist = entity.playlist()) {
        const Value value = playlist->valueForKey(key);
        const auto* text = value.get<std::string>();
        return text != nullptr ? *text : std::string();
    }
    const std::optional<MPMediaItem> song = entity.representativeItem();
    if (!song) {
        return {};
    }
    // The keys of a search, without the detour of a look-up by name.
    if (key == MPMediaItemPropertyTitle) {
        return std::string(song->title().value_or(""));
    }
    if (key == MPMediaItemPropertyAlbumTitle) {
        return std::string(song->albumTitle().value_or(""));
    }
    if (key == "artistSearchKey") {
        return Nerinda::artistSearchKey(*song).value_or("");
    }
    const Value value = song->valueForKey(key);
    const auto* text = value.get<std::string>();
    return text != nullptr ? *text : std::string();
}

EntityTest substringPredicateForKeyPath(std::string_view keyPath, std::string_view term) {
    return [key = std::string(keyPath), words = FoldedTerm(term)](const MPMediaEntity& entity) {
        return words.isIn(stringOfEntity(entity, key));
    };
}

}  // namespace tavrion
