// Text on its way into ICU and back, and ICU's own formatters kept between calls.
//
// Queue: any; a FormatterCache belongs to one thread. Foundation's own, not for other rooms. Broken
// UTF-8 reads as U+FFFD.
#pragma once

#include <unicode/unistr.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tavrion {

inline icu::UnicodeString unicodeText(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

inline std::string utf8Text(const icu::UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

/// Formatters by what they were made for (a locale and a pattern, say). Making one costs a thousand
/// times what using it costs. ICU's are not made for two threads at once, so that each thread keeps
/// its own: declare a cache `thread_local`.
template <class Key, class Formatter>
class FormatterCache {
  public:
    /// The formatter for `key`, made by `make` at its first use; good until the next call.
    template <class Make>
    Formatter& formatter(const Key& key, const Make& make) {
        auto found = formatters_.find(key);
        if (found == formatters_.end()) {
            // A process uses a handful; the bound is for one that goes through all locales.
            if (formatters_.size() >= mostFormatters) {
                formatters_.clear();
            }
            found = formatters_.emplace(key, make()).first;
        }
        return *found->second;
    }

  private:
    static constexpr std::size_t mostFormatters = 100;
    std::map<Key, std::unique_ptr<Formatter>> formatters_;
};

}  // namespace tavrion
