// The artists, albums and genres of songs as small numbers, so that sums by them are sums in an
// array.
//
// Queue: its owner's. Who owns: whoever ranks again and again; the numbers of a leaf of songs are
// kept for as long as the leaf is a part of the newest version. All kinds of groups share the
// numbers: equal texts have one number. Absent: a song without an artist has the number `none`.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/coredata/StoreVersion.h"

namespace tavrion {

/// The kinds of groups, in the order in which a song adds to them.
enum class TrendingLevel : std::size_t { artist = 0, album = 1, genre = 2 };

/// Numbers for texts, which it keeps.
class TextNumbers {
  public:
    /// From 0 on, in the order of the first calls.
    std::uint32_t numberOf(std::string_view text);
    std::string_view text(std::uint32_t number) const {
        return std::string_view(bytes_).substr(entries_[number].offset, entries_[number].length);
    }
    std::size_t size() const { return entries_.size(); }

  private:
    struct Entry {
        std::size_t hash;
        std::size_t offset;
        std::size_t length;
    };
    void grow();

    std::string bytes_;
    std::vector<Entry> entries_;
    /// Numbers from 1 on; 0 is free.
    std::vector<std::uint32_t> slots_;
};

class TrendingKeys {
  public:
    static constexpr std::uint32_t none = 1;

    /// Turns to the songs of another version. Only songs that are asked for are looked at.
    void follow(const TableVersion& songs);

    /// Of a row of the leaf in that place.
    std::uint32_t number(std::size_t leaf, std::size_t row, TrendingLevel level) {
        std::uint32_t& number = leaves_[leaf].rows[row][static_cast<std::size_t>(level)];
        if (number == unknown) {
            number = read(*leaves_[leaf].current, row, level);
        }
        return number;
    }
    /// All numbers so far are less.
    std::size_t end() const { return texts_.size() + firstText; }
    std::string_view text(std::uint32_t number) const { return texts_.text(number - firstText); }

  private:
    static constexpr std::uint32_t unknown = 0;
    static constexpr std::uint32_t firstText = 2;
    struct Leaf {
        /// Tells whether a leaf at this place in memory is still the same one.
        std::weak_ptr<const TableLeaf> leaf;
        const TableLeaf* current = nullptr;
        std::vector<std::array<std::uint32_t, 3>> rows;
    };
    std::uint32_t read(const TableLeaf& leaf, std::size_t row, TrendingLevel level);

    std::vector<Leaf> leaves_;
    TextNumbers texts_;
};

}  // namespace tavrion
