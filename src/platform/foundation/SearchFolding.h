// Text made ready for searches that ignore case, or case and accents.
//
// Queue: any. Stateless; the dotted and dotless i follow the plugged region's locale. Text is
// UTF-8; broken sequences read as U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace tavrion {

/// The form in which texts that a search takes for the same are the same: fold the haystack and the
/// needle, then look for the one in the other. Width, punctuation and letters with a stroke stay
/// what they are.
std::string foldedForSearch(std::string_view text);

/// Whether `needle` occurs in `haystack` without regard to case and accents. An empty needle is
/// never found.
bool localizedStandardContainsString(std::string_view haystack, std::string_view needle);

/// The form in which texts that differ in case alone are the same; accents stay.
std::string foldedForCase(std::string_view text);

/// Whether `needle` occurs in `haystack` without regard to case, and does not end inside of a
/// letter with its accent. An empty needle is never found.
bool localizedCaseInsensitiveContainsString(std::string_view haystack, std::string_view needle);

}  // namespace tavrion
