#include "platform/foundation/SearchFolding.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <optional>

#include "platform/foundation/IcuText.h"
#include "platform/foundation/NSCalendar.h"

namespace tavrion {

namespace {

/// Scripts from here on keep their marks on letters.
constexpr UChar32 firstBaseThatKeepsMarks = 0x0510;

bool isMark(UChar32 character) {
    return u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) != 0;
}

icu::UnicodeString withoutMarks(const icu::UnicodeString& text) {
    icu::UnicodeString kept;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        if (i == 0 || !isMark(character)) {
            kept.append(character);
        }
    }
    return kept;
}

icu::UnicodeString withoutMarksOnEarlyScripts(const icu::UnicodeString& text) {
    icu::UnicodeString kept;
    UChar32 base = firstBaseThatKeepsMarks;
    for (int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const UChar32 character = text.char32At(i);
        if (!isMark(character)) {
            base = character;
        } else if (base < firstBaseThatKeepsMarks) {
            continue;
        }
        kept.append(character);
    }
    return kept;
}

std::uint32_t foldingOfLocale() {
    const std::string& locale = Port<Regional>::current().orderLocale();
    const std::string language = locale.substr(0, locale.find_first_of("_-.@"));
    return language == "tr" || language == "az" ? U_FOLD_CASE_EXCLUDE_SPECIAL_I
                                                : U_FOLD_CASE_DEFAULT;
}

icu::UnicodeString normalized(const icu::Normalizer2* form, const icu::UnicodeString& text,
                              UErrorCode& status) {
    return U_SUCCESS(status) ? form->normalize(text, status) : text;
}

icu::UnicodeString caselessLetters(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString letters =
        normalized(icu::Normalizer2::getNFCInstance(status), unicodeText(text), status);
    letters.foldCase(foldingOfLocale());
    return normalized(icu::Normalizer2::getNFDInstance(status), letters, status);
}

/// ASCII has no marks and one form only, so both foldings come to the same; absent for any other
/// text, and where the locale has its own i.
std::optional<std::string> foldedPlainText(std::string_view text) {
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char byte) {
        return static_cast<unsigned char>(byte) < 0x80;
    });
    if (!isPlain || foldingOfLocale() != U_FOLD_CASE_DEFAULT) {
        return std::nullopt;
    }
    std::string folded(text);
    for (char& byte : folded) {
        byte = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
    }
    return folded;
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
    if (auto folded = foldedPlainText(text)) {
        return *std::move(folded);
    }
    const std::uint32_t folding = foldingOfLocale();
    icu::UnicodeString letters = withoutMarks(unicodeText(text));
    letters.foldCase(folding);
    UErrorCode status = U_ZERO_ERROR;
    letters = normalized(icu::Normalizer2::getNFDInstance(status), letters, status);
    return utf8Text(withoutMarksOnEarlyScripts(letters));
}

bool localizedStandardContainsString(std::string_view haystack, std::string_view needle) {
    const std::string sought = foldedForSearch(needle);
    return !sought.empty() && foldedForSearch(haystack).find(sought) != std::string::npos;
}

std::string foldedForCase(std::string_view text) {
    if (auto folded = foldedPlainText(text)) {
        return *std::move(folded);
    }
    return utf8Text(caselessLetters(text));
}

bool localizedCaseInsensitiveContainsString(std::string_view haystack, std::string_view needle) {
    const icu::UnicodeString letters = caselessLetters(haystack);
    const icu::UnicodeString sought = caselessLetters(needle);
    if (sought.isEmpty()) {
        return false;
    }
    for (int32_t at = letters.indexOf(sought); at >= 0; at = letters.indexOf(sought, at + 1)) {
        const int32_t end = at + sought.length();
        if (end == letters.length() || !isMark(letters.char32At(end))) {
            return true;
        }
    }
    return false;
}

}  // namespace tavrion
