// The program's texts in the user's language, and values put into them.
//
// Queue: any, after bindTranslations(), which the composition root calls once before any queue
// runs. The English text is the key; without a translation it is what the user reads. In a text,
// %@ stands for a text and %lu and %ld for numbers, as in "Today at %@"; a translation that needs
// another order numbers them: %2$@. Numbers are written in plain digits.
#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace tavrion {

/// Looks translations up in <directory>/<language>/LC_MESSAGES/tavrion.mo from now on. The
/// languages are those of the environment variable LANGUAGE, else that of `locale` ("de_DE").
void bindTranslations(const std::filesystem::path& directory, const std::string& locale);

std::string NSLocalizedString(const char* text);
/// The form for `count`: a language may have one form or several, by its own rule. Also the
/// singular may hold %lu in a translation.
std::string NSLocalizedString(const char* singular, const char* plural, std::uint64_t count);

/// A value that is put into a text.
class FormatArgument {
  public:
    FormatArgument(std::string text) : text_(std::move(text)) {}  // NOLINT: implicit by design
    FormatArgument(std::string_view text) : text_(text) {}        // NOLINT
    FormatArgument(const char* text) : text_(text) {}             // NOLINT
    template <std::integral Integer>
    FormatArgument(Integer number) : text_(std::to_string(number)) {}  // NOLINT
    const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// `format` with its places filled, each by the argument whose turn or number it is; a place
/// without an argument stays as it stands. %% is a percent sign.
std::string stringWithFormat(std::string_view format,
                             std::initializer_list<FormatArgument> arguments);

/// The form for `count` with the count in it: "1 song", "3 songs".
std::string localizedCount(const char* singular, const char* plural, std::uint64_t count);

}  // namespace tavrion
