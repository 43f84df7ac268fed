#include "library/SortedEntities.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "platform/foundation/NSString+Entended.h"

namespace tavrion::SortedEntities {

namespace {

struct Entry {
    Key key;
    std::uint32_t place;
};

std::vector<std::uint32_t> placesOf(const std::vector<Entry>& entries) {
    std::vector<std::uint32_t> places;
    places.reserve(entries.size());
    for (const Entry& entry : entries) {
        places.push_back(entry.place);
    }
    return places;
}

}  // namespace

Key keyOf(double number) {
    constexpr Key signBit = Key{1} << 63U;
    // Both zeros are one number.
    const Key bits = std::bit_cast<Key>(number == 0 ? 0.0 : number);
    return (bits & signBit) != 0 ? ~bits : bits | signBit;
}

Key keyOf(const std::optional<NSDate>& date) {
    // No number has the key 0.
    return date ? keyOf(date->timeIntervalSinceReferenceDate()) : 0;
}

std::vector<std::uint32_t> order(const std::vector<Key>& keys, bool ascending) {
    std::vector<Entry> entries;
    entries.reserve(keys.size());
    for (std::uint32_t place = 0; place < keys.size(); ++place) {
        // Turned round, so that one comparison does for both directions.
        entries.push_back({ascending ? keys[place] : ~keys[place], place});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.key != b.key ? a.key < b.key : a.place < b.place;
    });
    return placesOf(entries);
}

std::vector<std::uint32_t> alphabeticalOrder(const std::vector<std::optional<std::string>>& names,
                                             bool ascending) {
    const std::vector<std::string> keys = Entended::smartAlphabeticalKeys(names);
    const auto first = ascending ? NSComparisonResult::ascending : NSComparisonResult::descending;
    std::vector<std::uint32_t> places(names.size());
    std::iota(places.begin(), places.end(), 0U);
    std::stable_sort(places.begin(), places.end(), [&](std::uint32_t a, std::uint32_t b) {
        const int order = keys[a].compare(keys[b]);
        if (order != 0) {
            return (order < 0) == ascending;
        }
        return Entended::smartAlphabeticalCompare(names[a], names[b]) == first;
    });
    return places;
}

}  // namespace tavrion::SortedEntities
