#include "kit/ListDifference.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {
namespace {

constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

/// Counts marks before a place; every operation costs log n.
class MarkCount {
  public:
    explicit MarkCount(std::size_t places) : sums_(places + 1, 0) {}
    void add(std::size_t place, std::ptrdiff_t change) {
        for (std::size_t i = place + 1; i < sums_.size(); i += i & (~i + 1)) {
            sums_[i] += change;
        }
    }
    std::size_t before(std::size_t place) const {
        std::ptrdiff_t sum = 0;
        for (std::size_t i = place; i > 0; i -= i & (~i + 1)) {
            sum += sums_[i];
        }
        return static_cast<std::size_t>(sum);
    }

  private:
    std::vector<std::ptrdiff_t> sums_;
};

struct Identity {
    std::uint64_t kind;
    std::uint64_t number;
    /// How many of the same stand before it.
    std::uint64_t turn;
    bool operator==(const Identity&) const = default;
};
struct IdentityHash {
    std::size_t operator()(const Identity& identity) const {
        return mediaNumberHash(identity.number ^ mediaNumberHash(identity.kind) ^
                               (identity.turn << 1U));
    }
};

/// The rows between those that both lists begin and end with.
std::vector<ListRow> middleOf(const ListRows& rows, std::size_t first, std::size_t end) {
    std::vector<ListRow> middle;
    middle.reserve(end - first);
    for (std::size_t place = first; place < end; ++place) {
        middle.push_back(rows.at(place));
    }
    return middle;
}

std::vector<Identity> identitiesOf(const std::vector<ListRow>& rows) {
    std::unordered_map<Identity, std::uint64_t, IdentityHash> turns(rows.size());
    std::vector<Identity> identities;
    identities.reserve(rows.size());
    for (const ListRow& row : rows) {
        const std::uint64_t turn = turns[{row.kind, row.number, 0}]++;
        identities.push_back({row.kind, row.number, turn});
    }
    return identities;
}

/// Where each row of the new list stood in the old one; `nowhere` for a new row.
std::vector<std::size_t> oldPlacesOf(const std::vector<ListRow>& after,
                                     const std::vector<ListRow>& before) {
    std::unordered_map<Identity, std::size_t, IdentityHash> places(before.size());
    const std::vector<Identity> old = identitiesOf(before);
    for (std::size_t place = 0; place < old.size(); ++place) {
        places.emplace(old[place], place);
    }
    std::vector<std::size_t> found;
    found.reserve(after.size());
    for (const Identity& identity : identitiesOf(after)) {
        const auto place = places.find(identity);
        found.push_back(place == places.end() ? nowhere : place->second);
    }
    return found;
}

/// Of numbers that are all different: which of them form a longest rising sequence.
std::vector<bool> longestRise(const std::vector<std::size_t>& numbers) {
    /// By length: where the sequence of that length ends that ends lowest.
    std::vector<std::size_t> ends;
    std::vector<std::size_t> previous(numbers.size(), nowhere);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto end = std::lower_bound(
            ends.begin(), ends.end(), numbers[i],
            [&](std::size_t at, std::size_t number) { return numbers[at] < number; });
        if (end != ends.begin()) {
            previous[i] = *(end - 1);
        }
        if (end == ends.end()) {
            ends.push_back(i);
        } else {
            *end = i;
        }
    }
    std::vector<bool> isIn(numbers.size(), false);
    for (std::size_t i = ends.empty() ? nowhere : ends.back(); i != nowhere; i = previous[i]) {
        isIn[i] = true;
    }
    return isIn;
}

void addPlace(std::vector<ListDifference::Range>& ranges, std::size_t place) {
    if (!ranges.empty() && ranges.back().first + ranges.back().count == place) {
        ++ranges.back().count;
    } else {
        ranges.push_back({place, 1});
    }
}

/// The rows that stay, in the order of the new list, each by its place among them in the old one:
/// the moves that bring them from the one order into the other, as few as can be. Rows of a longest
/// rising sequence stay where they are, and each other one is put behind the row that it follows.
std::vector<ListDifference::Move> movesOf(const std::vector<std::size_t>& oldPlaces) {
    const std::size_t count = oldPlaces.size();
    const std::vector<bool> stays = longestRise(oldPlaces);
    // Rows that stand right already are counted by their new places, the others by their old ones.
    MarkCount settled(count);
    MarkCount unsettled(count);
    /// By old place: the new place of the first row that stays and stood no earlier.
    std::vector<std::size_t> nextStaying(count + 1, count);
    for (std::size_t place = 0; place < count; ++place) {
        if (stays[place]) {
            settled.add(place, 1);
            nextStaying[oldPlaces[place]] = place;
        } else {
            unsettled.add(oldPlaces[place], 1);
        }
    }
    for (std::size_t old = count; old-- > 0;) {
        nextStaying[old] = std::min(nextStaying[old], nextStaying[old + 1]);
    }
    std::vector<ListDifference::Move> moves;
    /// Where the row that stays and was passed last stood; before the first there is none.
    std::size_t behindOld = 0;
    for (std::size_t place = 0; place < count; ++place) {
        const std::size_t old = oldPlaces[place];
        if (stays[place]) {
            behindOld = old;
            continue;
        }
        const std::size_t from = unsettled.before(old) + settled.before(nextStaying[old]);
        unsettled.add(old, -1);
        const std::size_t to = settled.before(place) + unsettled.before(behindOld);
        settled.add(place, 1);
        if (from != to) {
            moves.push_back({from, to});
        }
    }
    return moves;
}

/// Of the rows that are in both lists: the place among them in the old one, by the new order.
std::vector<std::size_t> keptOrder(const std::vector<std::size_t>& oldPlaces,
                                   const std::vector<bool>& isKept) {
    std::vector<std::size_t> rank(isKept.size());
    std::size_t kept = 0;
    for (std::size_t old = 0; old < isKept.size(); ++old) {
        rank[old] = kept;
        kept += isKept[old] ? 1 : 0;
    }
    std::vector<std::size_t> order;
    order.reserve(kept);
    for (const std::size_t old : oldPlaces) {
        if (old != nowhere) {
            order.push_back(rank[old]);
        }
    }
    return order;
}

/// Of the rows between, whose places in the whole lists begin at `first`.
ListDifference differenceOfMiddles(const std::vector<ListRow>& before,
                                   const std::vector<ListRow>& after, std::size_t first) {
    ListDifference difference;
    const std::vector<std::size_t> oldPlaces = oldPlacesOf(after, before);
    std::vector<bool> isKept(before.size(), false);
    for (std::size_t place = 0; place < oldPlaces.size(); ++place) {
        const std::size_t old = oldPlaces[place];
        if (old == nowhere) {
            addPlace(difference.insertions, first + place);
            continue;
        }
        isKept[old] = true;
        if (before[old].content != after[place].content) {
            difference.reloads.push_back(first + place);
        }
    }
    for (std::size_t old = 0; old < isKept.size(); ++old) {
        if (!isKept[old]) {
            addPlace(difference.deletions, first + old);
        }
    }
    std::reverse(difference.deletions.begin(), difference.deletions.end());
    difference.moves = movesOf(keptOrder(oldPlaces, isKept));
    for (ListDifference::Move& move : difference.moves) {
        move.from += first;
        move.to += first;
    }
    return difference;
}

}  // namespace

ListDifference differenceBetween(const ListRows& before, const ListRows& after) {
    const std::size_t shorter = std::min(before.size, after.size);
    std::size_t first = 0;
    while (first < shorter && before.at(first) == after.at(first)) {
        ++first;
    }
    std::size_t last = 0;
    while (last < shorter - first &&
           before.at(before.size - 1 - last) == after.at(after.size - 1 - last)) {
        ++last;
    }
    return differenceOfMiddles(middleOf(before, first, before.size - last),
                               middleOf(after, first, after.size - last), first);
}

ListDifference differenceBetween(const std::vector<ListRow>& before,
                                 const std::vector<ListRow>& after) {
    const auto rowsOf = [](const std::vector<ListRow>& rows) {
        return ListRows{rows.size(), [&rows](std::size_t place) { return rows[place]; }};
    };
    return differenceBetween(rowsOf(before), rowsOf(after));
}

std::uint64_t listContentOf(std::string_view text, std::uint64_t before) {
    return mediaNumberHash(before) ^ mediaTextHash(text);
}

ListRow listRowOf(const MPMediaEntity& entity, std::string_view shown) {
    // A song and a collection may have the same number.
    const std::uint64_t kind =
        entity.item() != nullptr ? 0 : 1 + static_cast<std::uint64_t>(entity.groupingType());
    return {kind, entity.persistentID(), listContentOf(shown)};
}

ListRow listRowOf(const Value& identifier) {
    constexpr std::uint64_t records = 100;
    constexpr std::uint64_t texts = 101;
    constexpr std::uint64_t dates = 102;
    constexpr std::uint64_t others = 103;
    if (const auto* reference = identifier.get<ObjectReference>()) {
        return {records, reference->bits, 0};
    }
    if (const auto* text = identifier.get<std::string>()) {
        return {texts, mediaTextHash(*text), 0};
    }
    if (const auto* date = identifier.get<NSDate>()) {
        // Days and months begin and end at whole seconds.
        return {dates,
                static_cast<std::uint64_t>(
                    static_cast<std::int64_t>(date->timeIntervalSinceReferenceDate())),
                0};
    }
    return {others, 0, 0};
}

}  // namespace tavrion
