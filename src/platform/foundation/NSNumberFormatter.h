// Numbers as the people of a locale write them.
//
// Queue: any; a value, cheap to make and to copy: what it stands on is kept between calls. Absent:
// a text that is no number. A number that is none reads as the locale's word for it ("NaN"), and
// what rounds to nothing has no sign.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrion {

/// The numbers are the platform's own.
enum class NSNumberFormatterStyle { decimal = 1, currency = 2, percent = 3 };

class NSNumberFormatter {
  public:
    /// In the plugged region's locale.
    explicit NSNumberFormatter(NSNumberFormatterStyle style);

    /// An ICU name ("de_DE").
    void setLocale(std::string locale) { locale_ = std::move(locale); }
    /// Halves go to the even digit. Without it: the style's own number of digits.
    void setMaximumFractionDigits(int digits) { maximumFractionDigits_ = digits; }
    /// "EUR"; without it the currency of the locale.
    void setCurrencyCode(std::string code) { currencyCode_ = std::move(code); }

    /// A percentage is given as a fraction: 0.25 is 25%.
    std::string stringFromNumber(double number) const;
    template <std::integral Integer>
    std::string stringFromNumber(Integer number) const {
        return stringFromInteger(static_cast<std::int64_t>(number));
    }
    /// Of the decimal style only. The whole text must be one finite number in the locale's digits
    /// and separators; spaces around it are left out.
    std::optional<double> numberFromString(std::string_view text) const;

  private:
    std::string stringFromInteger(std::int64_t number) const;

    NSNumberFormatterStyle style_;
    std::string locale_;
    std::optional<int> maximumFractionDigits_;
    std::string currencyCode_;
};

}  // namespace tavrion
