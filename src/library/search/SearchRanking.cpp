#include "library/search/SearchRanking.h"

#include <algorithm>
#include <optional>

#include "library/search/MergeSort.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSString+Entended.h"

namespace tavrion {

namespace {

/// One entity of the list that is sorted.
struct Hit {
    std::uint64_t keyPrefix = 0;
    const std::string* sortKey = nullptr;
    std::uint32_t place = 0;
    std::uint8_t flags = 0;
};

bool isPrintableAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool isExact(std::string_view text, std::string_view term) {
    return localizedCaseInsensitiveCompare(text, term) == NSComparisonResult::same;
}

/// Flags of many texts for one term. The comparison without case is dear; of two plain texts it can
/// only find the same what has one sort key.
class Flagging {
  public:
    explicit Flagging(std::string_view term)
        : term_(term),
          isPlain_(isPrintableAscii(term)),
          sortKey_(Entended::smartAlphabeticalKeys({std::string(term)}).front()) {}

    std::uint8_t flags(std::string_view text, const std::string& sortKey) const {
        if (text.empty()) {
            return 0;
        }
        const bool mayBeExact = sortKey == sortKey_ || !isPlain_ || !isPrintableAscii(text);
        const auto exact = mayBeExact && isExact(text, term_) ? exactFlag : std::uint8_t{0};
        return static_cast<std::uint8_t>(exact | caseSensitiveFlags(text, term_));
    }

  private:
    std::string_view term_;
    bool isPlain_;
    std::string sortKey_;
};

NSComparisonResult compareHits(const Hit& left, const Hit& right,
                               const std::vector<std::string>& names) {
    if ((left.flags & ~right.flags) != 0) {
        return NSComparisonResult::ascending;
    }
    if ((right.flags & ~left.flags) != 0) {
        return NSComparisonResult::descending;
    }
    if (left.keyPrefix != right.keyPrefix) {
        return left.keyPrefix < right.keyPrefix ? NSComparisonResult::ascending
                                                : NSComparisonResult::descending;
    }
    if (left.sortKey == right.sortKey) {
        return NSComparisonResult::same;  // one name
    }
    const int order = left.sortKey->compare(*right.sortKey);
    if (order != 0) {
        return order < 0 ? NSComparisonResult::ascending : NSComparisonResult::descending;
    }
    return Entended::smartAlphabeticalCompare(names[left.place], names[right.place]);
}

}  // namespace

std::uint64_t sortKeyPrefix(std::string_view key) {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < sizeof(prefix); ++i) {
        const auto byte = i < key.size() ? static_cast<unsigned char>(key[i]) : 0U;
        prefix = (prefix << 8U) | byte;
    }
    return prefix;
}

std::uint8_t caseSensitiveFlags(std::string_view text, std::string_view term) {
    if (text.empty()) {
        return 0;
    }
    const bool isPrefix = text.starts_with(term);
    const bool contains = isPrefix || text.find(term) != std::string_view::npos;
    return static_cast<std::uint8_t>((isPrefix ? prefixFlag : 0) | (contains ? containsFlag : 0));
}

std::uint8_t searchFlags(std::string_view text, std::string_view term) {
    if (text.empty()) {
        return 0;
    }
    const auto exact = isExact(text, term) ? exactFlag : std::uint8_t{0};
    return static_cast<std::uint8_t>(exact | caseSensitiveFlags(text, term));
}

void SearchRanking::rememberSortKeys(const std::vector<std::string>& names) {
    const std::string& locale = Port<Regional>::current().locale();
    if (locale_ != locale) {
        sortKeys_.clear();
        locale_ = locale;
    }
    std::vector<std::optional<std::string>> unknown;
    std::vector<std::string*> keys;
    for (const std::string& name : names) {
        const auto [found, isNew] = sortKeys_.try_emplace(name);
        if (isNew) {
            unknown.emplace_back(name);
            keys.push_back(&found->second);
        }
    }
    std::vector<std::string> made = Entended::smartAlphabeticalKeys(unknown);
    for (std::size_t i = 0; i < made.size(); ++i) {
        *keys[i] = std::move(made[i]);
    }
}

std::vector<MPMediaEntity> SearchRanking::sortedResults(std::vector<MPMediaEntity> entities,
                                                        std::string_view forKey,
                                                        std::string_view containingTerm) {
    if (containingTerm.empty()) {
        return entities;
    }
    std::vector<std::string> names;
    names.reserve(entities.size());
    for (const MPMediaEntity& entity : entities) {
        names.push_back(stringOfEntity(entity, forKey));
    }
    rememberSortKeys(names);
    const Flagging flagging(containingTerm);
    std::vector<Hit> hits;
    hits.reserve(entities.size());
    for (std::uint32_t place = 0; place < names.size(); ++place) {
        const std::string& sortKey = sortKeys_.find(names[place])->second;
        hits.push_back(
            {sortKeyPrefix(sortKey), &sortKey, place, flagging.flags(names[place], sortKey)});
    }
    hits = mergeSorted(std::move(hits), [&](const Hit& left, const Hit& right) {
        return compareHits(left, right, names);
    });
    std::vector<MPMediaEntity> ranked;
    ranked.reserve(entities.size());
    for (const Hit& hit : hits) {
        ranked.push_back(std::move(entities[hit.place]));
    }
    return ranked;
}

}  // namespace tavrion
