#include "platform/foundation/NSNumberFormatter.h"

#include <unicode/decimfmt.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "platform/foundation/IcuText.h"
#include "platform/foundation/NSCalendar.h"

namespace tavrion {

namespace {

struct FormatKey {
    NSNumberFormatterStyle style;
    std::string locale;
    std::optional<int> maximumFractionDigits;
    std::string currencyCode;
    auto operator<=>(const FormatKey&) const = default;
};

UNumberFormatStyle icuStyle(NSNumberFormatterStyle style) {
    switch (style) {
        case NSNumberFormatterStyle::currency:
            return UNUM_CURRENCY;
        case NSNumberFormatterStyle::percent:
            return UNUM_PERCENT;
        case NSNumberFormatterStyle::decimal:
            break;
    }
    return UNUM_DECIMAL;
}

std::unique_ptr<icu::DecimalFormat> makeFormat(const FormatKey& key) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> made(icu::NumberFormat::createInstance(
        icu::Locale(key.locale.c_str()), icuStyle(key.style), status));
    precondition(U_SUCCESS(status) && dynamic_cast<icu::DecimalFormat*>(made.get()) != nullptr,
                 "ICU has its number formats");
    std::unique_ptr<icu::DecimalFormat> format(static_cast<icu::DecimalFormat*>(made.release()));
    if (key.maximumFractionDigits) {
        format->setMaximumFractionDigits(*key.maximumFractionDigits);
    }
    if (key.style == NSNumberFormatterStyle::percent) {
        format->setMultiplier(1);
    }
    if (!key.currencyCode.empty()) {
        format->setCurrency(unicodeText(key.currencyCode).getTerminatedBuffer(), status);
    }
    format->setLenient(false);
    return format;
}

const icu::DecimalFormat& formatFor(const FormatKey& key) {
    thread_local FormatterCache<FormatKey, icu::DecimalFormat> formats;
    return formats.formatter(key, [&] { return makeFormat(key); });
}

/// A number that rounds to nothing keeps its minus sign in ICU's text, and so does what is no
/// number, whose sign means nothing: some machines set it for 0/0 and others do not.
double withoutEmptySign(double number, int fractionDigits) {
    if (std::isnan(number)) {
        return std::abs(number);
    }
    return std::abs(number) <= 0.5 * std::pow(10.0, -fractionDigits) ? 0.0 : number;
}

icu::UnicodeString trimmed(const icu::UnicodeString& text) {
    std::int32_t start = 0;
    std::int32_t end = text.length();
    while (start < end && u_isUWhiteSpace(text[start])) {
        start += 1;
    }
    while (end > start && u_isUWhiteSpace(text[end - 1])) {
        end -= 1;
    }
    return {text, start, end - start};
}

bool hasLetter(const icu::UnicodeString& text) {
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        if (u_isalpha(text.char32At(i))) {
            return true;
        }
    }
    return false;
}

}  // namespace

NSNumberFormatter::NSNumberFormatter(NSNumberFormatterStyle style)
    : style_(style), locale_(Port<Regional>::current().locale()) {}

std::string NSNumberFormatter::stringFromNumber(double number) const {
    const icu::DecimalFormat& format =
        formatFor({style_, locale_, maximumFractionDigits_, currencyCode_});
    // Multiplied here and not by ICU, which would multiply the decimal digits: the two differ where
    // the last digit is a tie.
    const double shown = style_ == NSNumberFormatterStyle::percent ? number * 100.0 : number;
    icu::UnicodeString text;
    format.format(withoutEmptySign(shown, format.getMaximumFractionDigits()), text);
    return utf8Text(text);
}

std::string NSNumberFormatter::stringFromInteger(std::int64_t number) const {
    if (style_ == NSNumberFormatterStyle::percent) {
        return stringFromNumber(static_cast<double>(number));
    }
    icu::UnicodeString text;
    formatFor({style_, locale_, maximumFractionDigits_, currencyCode_}).format(number, text);
    return utf8Text(text);
}

std::optional<double> NSNumberFormatter::numberFromString(std::string_view text) const {
    precondition(style_ == NSNumberFormatterStyle::decimal, "only decimal numbers are read");
    const icu::UnicodeString number = trimmed(unicodeText(text));
    // ICU also reads exponents and the words for what is no number.
    if (number.isEmpty() || hasLetter(number)) {
        return std::nullopt;
    }
    icu::Formattable read;
    icu::ParsePosition position(0);
    formatFor({style_, locale_, maximumFractionDigits_, currencyCode_})
        .parse(number, read, position);
    UErrorCode status = U_ZERO_ERROR;
    const double value = read.getDouble(status);
    const bool isWhole = position.getIndex() == number.length();
    return isWhole && U_SUCCESS(status) && std::isfinite(value) ? std::optional(value)
                                                                : std::nullopt;
}

}  // namespace tavrion
