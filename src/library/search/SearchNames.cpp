#include "library/search/SearchNames.h"

#include <algorithm>
#include <optional>
#include <string>

#include "library/search/MergeSort.h"

namespace tavrion {

namespace {

/// Of more names than this with one sort key not every pair is looked at; they count as unordered.
constexpr std::size_t mostNamesOfOneKey = 300;

/// The first bytes of a sort key as a number, so that most comparisons touch no string.
std::uint64_t sortKeyPrefix(std::string_view key) {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < sizeof(prefix); ++i) {
        const auto byte = i < key.size() ? static_cast<unsigned char>(key[i]) : 0U;
        prefix = (prefix << 8U) | byte;
    }
    return prefix;
}

NSComparisonResult compareNames(std::string_view a, std::string_view b) {
    return a == b ? NSComparisonResult::same
                  : Entended::smartAlphabeticalCompare(std::string(a), std::string(b));
}

}  // namespace

struct SearchNames::KeyedName {
    std::uint64_t keyPrefix = 0;
    std::string key;
    std::uint32_t place = 0;
};

SearchNames::SearchNames(std::vector<std::string_view> names)
    : names_(std::move(names)), hashes_(caselessHashes(names_)), alphabetRanks_(names_.size()) {
    rankNames();
}

void SearchNames::rankNames() {
    std::vector<std::string> keys = Entended::smartAlphabeticalKeys({names_.begin(), names_.end()});
    std::vector<KeyedName> sorted;
    sorted.reserve(names_.size());
    for (std::uint32_t place = 0; place < keys.size(); ++place) {
        const std::uint64_t prefix = sortKeyPrefix(keys[place]);
        sorted.push_back({prefix, std::move(keys[place]), place});
    }
    std::sort(sorted.begin(), sorted.end(), [this](const KeyedName& a, const KeyedName& b) {
        if (a.keyPrefix != b.keyPrefix) {
            return a.keyPrefix < b.keyPrefix;
        }
        const int order = a.key.compare(b.key);
        return order != 0 ? order < 0 : names_[a.place] < names_[b.place];
    });
    std::uint32_t rank = 0;
    for (std::size_t first = 0; first < sorted.size();) {
        std::size_t end = first + 1;
        while (end < sorted.size() && sorted[end].key == sorted[first].key) {
            ++end;
        }
        rankSameKeys(sorted, first, end, rank);
        first = end;
    }
}

/// Names of one key differ in case, width or the punctuation around them. Ranks are given only
/// where each pair of names compares as the ranks say.
void SearchNames::rankSameKeys(std::vector<KeyedName>& names, std::size_t first, std::size_t end,
                               std::uint32_t& rank) {
    std::vector<std::string_view> distinct;
    for (std::size_t i = first; i < end; ++i) {
        if (distinct.empty() || distinct.back() != names_[names[i].place]) {
            distinct.push_back(names_[names[i].place]);
        }
    }
    if (distinct.size() > mostNamesOfOneKey) {
        areOrdered_ = false;
        return;
    }
    const std::vector<std::string_view> ordered = mergeSorted(distinct, compareNames);
    std::vector<std::uint32_t> ranks;
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        const bool isNext =
            i > 0 && compareNames(ordered[i - 1], ordered[i]) != NSComparisonResult::same;
        rank += isNext ? 1 : 0;
        ranks.push_back(rank);
        for (std::size_t earlier = 0; earlier < i; ++earlier) {
            const auto expected =
                ranks[earlier] == rank ? NSComparisonResult::same : NSComparisonResult::ascending;
            areOrdered_ = areOrdered_ && compareNames(ordered[earlier], ordered[i]) == expected;
        }
    }
    for (std::size_t i = first; i < end; ++i) {
        const auto found = std::find(ordered.begin(), ordered.end(), names_[names[i].place]);
        alphabetRanks_[names[i].place] = ranks[static_cast<std::size_t>(found - ordered.begin())];
    }
    ++rank;
}

std::uint8_t SearchNames::flagsOf(std::uint32_t place, std::string_view term,
                                  const CaselessHashes& hashes) const {
    return hashes_[place].mayBeSame(hashes) ? searchFlags(names_[place], term)
                                            : caseSensitiveFlags(names_[place], term);
}

std::vector<std::uint32_t> SearchNames::ranked(const std::vector<std::uint32_t>& places,
                                               std::string_view term) const {
    if (!areOrdered_) {
        return rankedByComparing(places, term);
    }
    const CaselessHashes hashes = caselessHashes({term}).front();
    std::vector<RankedHit> hits;
    hits.reserve(places.size());
    for (const std::uint32_t place : places) {
        hits.push_back({place, alphabetRanks_[place], flagsOf(place, term, hashes)});
    }
    std::vector<std::uint32_t> ordered;
    ordered.reserve(places.size());
    for (const RankedHit& hit : inSearchOrder(std::move(hits))) {
        ordered.push_back(hit.place);
    }
    return ordered;
}

std::vector<std::uint32_t> SearchNames::rankedByComparing(const std::vector<std::uint32_t>& places,
                                                          std::string_view term) const {
    return mergeSorted(places, [&](std::uint32_t a, std::uint32_t b) {
        return compareHits(searchFlags(names_[a], term), searchFlags(names_[b], term),
                           [&] { return compareNames(names_[a], names_[b]); });
    });
}

}  // namespace tavrion
