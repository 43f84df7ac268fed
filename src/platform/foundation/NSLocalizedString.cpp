#include "platform/foundation/NSLocalizedString.h"

#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <optional>

namespace tavrion {

namespace {

constexpr const char* domain = "tavrion";

/// "%@", "%2$@", "%lu", "%ld" or "%%" at the front of a text.
struct Place {
    std::size_t length = 0;
    /// From 1; 0 for the argument whose turn it is.
    std::size_t number = 0;
    bool isPercentSign = false;
};

std::optional<Place> placeAtFront(std::string_view text) {
    Place place;
    std::size_t i = 1;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9' && place.number < 100) {
        place.number = place.number * 10 + static_cast<std::size_t>(text[i] - '0');
        i += 1;
    }
    if (i > 1) {
        if (place.number == 0 || i >= text.size() || text[i] != '$') {
            return std::nullopt;
        }
        i += 1;
    }
    for (const std::string_view kind : {"@", "lu", "ld", "%"}) {
        if (text.substr(i).starts_with(kind)) {
            place.length = i + kind.size();
            place.isPercentSign = kind == "%";
            return place.isPercentSign && i > 1 ? std::nullopt : std::optional(place);
        }
    }
    return std::nullopt;
}

}  // namespace

void bindTranslations(const std::filesystem::path& directory, const std::string& locale) {
    // Not the user's own locale: it need not be installed for its language to be read.
    std::setlocale(LC_MESSAGES, "C.UTF-8");
    const char* languages = std::getenv("LANGUAGE");
    if (languages == nullptr || *languages == '\0') {
        ::setenv("LANGUAGE", locale.c_str(), 1);
    }
    ::bindtextdomain(domain, directory.c_str());
    ::bind_textdomain_codeset(domain, "UTF-8");
}

std::string NSLocalizedString(const char* text) {
    // The empty key is the catalogue's own description.
    return *text == '\0' ? std::string() : ::dgettext(domain, text);
}

std::string NSLocalizedString(const char* singular, const char* plural, std::uint64_t count) {
    return ::dngettext(domain, singular, plural, static_cast<unsigned long>(count));
}

std::string stringWithFormat(std::string_view format,
                             std::initializer_list<FormatArgument> arguments) {
    std::string filled;
    std::size_t turn = 0;
    for (std::size_t i = 0; i < format.size();) {
        const auto place = format[i] == '%' ? placeAtFront(format.substr(i)) : std::nullopt;
        if (!place) {
            filled += format[i++];
            continue;
        }
        if (place->isPercentSign) {
            filled += '%';
        } else {
            const std::size_t which = place->number > 0 ? place->number - 1 : turn++;
            filled += which < arguments.size() ? (arguments.begin() + which)->text()
                                               : std::string(format.substr(i, place->length));
        }
        i += place->length;
    }
    return filled;
}

std::string localizedCount(const char* singular, const char* plural, std::uint64_t count) {
    return stringWithFormat(NSLocalizedString(singular, plural, count), {count});
}

}  // namespace tavrion
