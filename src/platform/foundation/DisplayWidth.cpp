#include "platform/foundation/DisplayWidth.h"

#include <unicode/uchar.h>
#include <unicode/utext.h>

namespace tavrion {

namespace {

bool isHangulTail(UChar32 character) {
    const int type = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
    return type == U_HST_VOWEL_JAMO || type == U_HST_TRAILING_JAMO;
}

std::size_t widthOf(UChar32 character) {
    if (character >= 0x20 && character < 0x7F) {
        return 1;
    }
    const std::uint32_t category = U_GET_GC_MASK(character);
    constexpr UChar32 softHyphen = 0xAD;
    const bool isMark = (category & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0;
    if ((isMark && character != softHyphen) || isHangulTail(character) ||
        (u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) &&
         character != softHyphen)) {
        return 0;
    }
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// The characters of a UTF-8 text; U+FFFD for each broken sequence.
class Characters {
  public:
    explicit Characters(std::string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        // Without a byte there may be no address either.
        const char* bytes = text.empty() ? "" : text.data();
        utext_openUTF8(&text_, bytes, static_cast<std::int64_t>(text.size()), &status);
    }
    ~Characters() { utext_close(&text_); }
    Characters(const Characters&) = delete;
    Characters& operator=(const Characters&) = delete;

    /// Negative at the end.
    UChar32 next() { return utext_next32(&text_); }
    /// Behind the character that was read last, in bytes.
    std::size_t place() { return static_cast<std::size_t>(utext_getNativeIndex(&text_)); }

  private:
    UText text_ = UTEXT_INITIALIZER;
};

}  // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    Characters characters(text);
    for (UChar32 character = characters.next(); character >= 0; character = characters.next()) {
        width += widthOf(character);
    }
    return width;
}

std::string_view startOfWidth(std::string_view text, std::size_t columns) {
    std::size_t width = 0;
    Characters characters(text);
    std::size_t start = 0;
    for (UChar32 character = characters.next(); character >= 0; character = characters.next()) {
        width += widthOf(character);
        if (width > columns) {
            return text.substr(0, start);
        }
        start = characters.place();
    }
    return text;
}

}  // namespace tavrion
