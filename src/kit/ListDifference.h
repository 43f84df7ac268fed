// What has to be done to a list on view to make another one of it: the one way in which every list
// model of the program finds its row changes.
//
// Queue: any. Stateless; costs n log n of the rows between the first and the last that differ. A
// row is known by an identifier that is still the same after the library was read again (the
// persistent identifier of a song, the number of a record), and has a content: what it shows, as a
// hash, so that a changed title reloads its row. An identifier that stands in a list several times
// is told apart by its turn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "kit/NSDiffableDataSourceSnapshot.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// A row as far as a difference looks at it.
struct ListRow {
    /// What kind of thing it is; the numbers of one kind are unique.
    std::uint64_t kind = 0;
    std::uint64_t number = 0;
    /// Equal when the row shows the same.
    std::uint64_t content = 0;
    bool isSameAs(const ListRow& other) const {
        return kind == other.kind && number == other.number;
    }
    bool operator==(const ListRow&) const = default;
};

/// Rows that are looked at one by one, so that a long list need not be written out.
struct ListRows {
    std::size_t size = 0;
    /// The row at a place below the size.
    std::function<ListRow(std::size_t)> at;
};

/// The steps, to be done in this order.
struct ListDifference {
    struct Range {
        std::size_t first = 0;
        std::size_t count = 0;
        bool operator==(const Range&) const = default;
    };
    /// Takes the row out of its place and puts it in at the other, counted without it.
    struct Move {
        std::size_t from = 0;
        std::size_t to = 0;
        bool operator==(const Move&) const = default;
    };

    /// From the back; places in the old list.
    std::vector<Range> deletions;
    /// One after the other; each place is that in the list as it then stands. A list sorted in
    /// another way moves nearly every row: whoever has to draw that better shows it as a new list.
    std::vector<Move> moves;
    /// From the front; places in the new list.
    std::vector<Range> insertions;
    /// Rows that were there and show something else; places in the new list, from the front.
    std::vector<std::size_t> reloads;

    bool isEmpty() const {
        return deletions.empty() && moves.empty() && insertions.empty() && reloads.empty();
    }
};

ListDifference differenceBetween(const ListRows& before, const ListRows& after);
ListDifference differenceBetween(const std::vector<ListRow>& before,
                                 const std::vector<ListRow>& after);

/// The row of a song or a collection, which shows this text beside its title.
ListRow listRowOf(const MPMediaEntity& entity, std::string_view shown);
/// The row of an item of a list; its content is left to the caller.
ListRow listRowOf(const Value& identifier);
/// The hash of a text, for rows' contents.
std::uint64_t listContentOf(std::string_view text, std::uint64_t before = 0);

}  // namespace tavrion
