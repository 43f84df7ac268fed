#include "platform/foundation/SearchFolding.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

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
    const std::string& locale = Port<Regional>::current().locale();
    const std::string language = locale.substr(0, locale.find_first_of("_-.@"));
    return language == "tr" || language == "az" ? U_FOLD_CASE_EXCLUDE_SPECIAL_I
                                                : U_FOLD_CASE_DEFAULT;
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char byte) {
        return static_cast<unsigned char>(byte) < 0x80;
    });
    const std::uint32_t folding = foldingOfLocale();
    std::string folded;
    if (isPlain && folding == U_FOLD_CASE_DEFAULT) {
        folded = text;
        for (char& byte : folded) {
            byte = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
        }
        return folded;
    }
    icu::UnicodeString letters = withoutMarks(icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size()))));
    letters.foldCase(folding);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
    if (U_SUCCESS(status)) {
        letters = decomposition->normalize(letters, status);
    }
    withoutMarksOnEarlyScripts(letters).toUTF8String(folded);
    return folded;
}

bool localizedStandardContainsString(std::string_view haystack, std::string_view needle) {
    const std::string sought = foldedForSearch(needle);
    return !sought.empty() && foldedForSearch(haystack).find(sought) != std::string::npos;
}

}  // namespace tavrion
