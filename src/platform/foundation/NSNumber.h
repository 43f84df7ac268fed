// Numbers as plain text, the same in every locale.
//
// Queue: any. Stateless.
#pragma once

#include <concepts>
#include <string>

namespace tavrion::NSNumber {

/// Sixteen significant digits, without zeros at the end ("215.96", "1e+21", "nan", "inf"): for
/// people, not for storage, since some numbers need seventeen.
std::string stringValue(double number);
template <std::integral Integer>
std::string stringValue(Integer number) {
    return std::to_string(number);
}

}  // namespace tavrion::NSNumber
