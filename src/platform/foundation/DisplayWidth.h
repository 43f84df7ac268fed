// How many columns of a terminal a text takes.
//
// Queue: any. Stateless. Text is UTF-8; a broken sequence counts as one column, and so does a
// control character, in whose place a blank can be printed.
#pragma once

#include <cstddef>
#include <string_view>

namespace tavrion {

/// Wide East Asian letters and pictures take two columns, marks on the letter before them none.
std::size_t displayWidth(std::string_view text);

/// The longest start of the text that takes at most so many columns; a letter keeps its marks.
std::string_view startOfWidth(std::string_view text, std::size_t columns);

}  // namespace tavrion
