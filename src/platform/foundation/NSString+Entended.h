// The one alphabetical comparison of the program, and what it stands on.
//
// Queue: any. Stateless; the order is that of the plugged region's locale. Text is UTF-8; broken
// sequences read as U+FFFD.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrion {

enum class NSComparisonResult { ascending = -1, same = 0, descending = 1 };

/// Locale-aware, without case, digits as numbers; never `same` for different strings.
NSComparisonResult localizedStandardCompare(std::string_view a, std::string_view b);

/// Locale-aware, without case. Can be `same` for different strings, so that a sort by it needs a
/// second rule or must be stable.
NSComparisonResult localizedCaseInsensitiveCompare(std::string_view a, std::string_view b);

/// Two texts can only be the same to localizedCaseInsensitiveCompare where one of their two hashes
/// is the same.
struct CaselessHashes {
    std::uint32_t letters = 0;
    std::uint32_t collation = 0;
    bool mayBeSame(const CaselessHashes& other) const {
        return letters == other.letters || collation == other.collation;
    }
};
/// One call for many texts, as below.
std::vector<CaselessHashes> caselessHashes(const std::vector<std::string_view>& texts);

/// Bytes whose byte order is the order of localizedStandardCompare up to its tie-breaks (equal
/// keys: compare the texts). One call for many texts, because opening the collator costs more than
/// a key. Empty texts get the least key.
std::vector<std::string> collationKeys(const std::vector<std::string_view>& texts);

namespace Entended {

/// The string itself, so that a number and a string can be asked alike.
inline std::string stringValue(std::string text) {
    return text;
}
/// Surrounding punctuation is ignored, a name with nothing else left reads as "~", names that do
/// not start with a letter come after those that do; within each class localizedStandardCompare
/// decides. An absent string is "~".
NSComparisonResult smartAlphabeticalCompare(const std::optional<std::string>& a,
                                            const std::optional<std::string>& b);
/// Bytes whose byte order is the order of smartAlphabeticalCompare up to its tie-breaks (equal
/// keys: compare the texts), for sorts that compare often.
std::vector<std::string> smartAlphabeticalKeys(
    const std::vector<std::optional<std::string>>& texts);
/// Whether the first UTF-16 unit of the text is anything but a letter. False for an empty text.
bool stringBeginsWithNumeral(std::string_view text);

}  // namespace Entended
}  // namespace tavrion
