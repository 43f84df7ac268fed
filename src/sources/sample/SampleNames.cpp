#include "sources/sample/SampleNames.h"

#include <fmt/format.h>

#include <initializer_list>

#include "sources/sample/SampleData.h"
#include "sources/sample/SampleRandom.h"

namespace tavrion {

namespace {

using namespace SampleData;

std::string_view oneOf(std::span<const std::string_view> words, SampleRandom& random) {
    return words[random.below(static_cast<std::uint32_t>(words.size()))];
}

std::string plural(std::string_view noun) {
    std::string text(noun);
    if (text.ends_with('y') && !text.ends_with("ay") && !text.ends_with("ey")) {
        text.pop_back();
        return text + "ies";
    }
    if (text.ends_with("f")) {
        text.pop_back();
        return text + "ves";
    }
    return text +
           (text.ends_with('s') || text.ends_with("ch") || text.ends_with("sh") ? "es" : "s");
}

std::string withIndefinite(std::string_view word) {
    constexpr std::string_view vowels = "AEIOU";
    // "Hour" and "Honest" are spoken as if they began with one.
    const bool isVowel =
        vowels.find(word.front()) != std::string_view::npos || word == "Hour" || word == "Honest";
    return fmt::format("{} {}", isVowel ? "an" : "a", word);
}

SampleArtistName person(SampleRandom& random) {
    const std::string_view given = oneOf(givenNames, random);
    const std::string_view family = oneOf(surnames, random);
    return {fmt::format("{} {}", given, family), fmt::format("{}, {}", family, given)};
}

SampleArtistName withArticle(std::string name) {
    return {"The " + name, std::move(name)};
}

SampleArtistName ensemble(SampleForces forces, SampleRandom& random) {
    const std::string_view place = oneOf(places, random);
    switch (forces) {
        case SampleForces::orchestra:
            return {fmt::format("{} {}", place, oneOf(orchestras, random)), std::nullopt};
        case SampleForces::choir:
            return {fmt::format("{} {}", place, oneOf(choirs, random)), std::nullopt};
        case SampleForces::chamber:
            return random.chance(0.5) ? person(random)
                                      : SampleArtistName{fmt::format("{} {}", place,
                                                                     oneOf(smallEnsembles, random)),
                                                         std::nullopt};
        case SampleForces::keyboard:
        case SampleForces::voice:
            break;
    }
    return person(random);
}

SampleArtistName group(std::initializer_list<std::string_view> kinds, SampleRandom& random) {
    const std::string_view kind =
        kinds.begin()[random.below(static_cast<std::uint32_t>(kinds.size()))];
    if (random.chance(0.5)) {
        return {fmt::format("{} {}", oneOf(surnames, random), kind), std::nullopt};
    }
    return withArticle(fmt::format("{} {}", oneOf(places, random), kind));
}

SampleArtistName band(SampleRandom& random) {
    switch (random.below(6)) {
        case 0:
            return withArticle(
                fmt::format("{} {}", oneOf(adjectives, random), plural(oneOf(nouns, random))));
        case 1:
            return {fmt::format("{} {}", oneOf(adjectives, random), oneOf(nouns, random)),
                    std::nullopt};
        case 2:
            return {
                fmt::format("{} & the {}", oneOf(givenNames, random), plural(oneOf(nouns, random))),
                std::nullopt};
        case 3:
            return {fmt::format("{} {}", oneOf(nouns, random), oneOf(nouns, random)), std::nullopt};
        case 4:
            return {fmt::format("{} {}", oneOf(doings, random), plural(oneOf(nouns, random))),
                    std::nullopt};
        default:
            return {fmt::format("{} {}", oneOf(places, random), oneOf(nouns, random)),
                    std::nullopt};
    }
}

SampleArtistName machine(SampleRandom& random) {
    switch (random.below(4)) {
        case 0:
            return {fmt::format("{} {:02}", oneOf(nouns, random), random.below(100)), std::nullopt};
        case 1:
            return {fmt::format("DJ {}", oneOf(surnames, random)), std::nullopt};
        case 2:
            return {fmt::format("{}.{}", oneOf(nouns, random), oneOf(nouns, random)), std::nullopt};
        default:
            return band(random);
    }
}

std::string inventedTitle(SampleRandom& random) {
    switch (random.below(12)) {
        case 0:
            return std::string(oneOf(nouns, random));
        case 1:
            return fmt::format("The {}", oneOf(nouns, random));
        case 2:
            return fmt::format("The {} {}", oneOf(adjectives, random), oneOf(nouns, random));
        case 3:
            return fmt::format("{} the {}", oneOf(doings, random), oneOf(nouns, random));
        case 4:
            return fmt::format("Like {} in {}", withIndefinite(oneOf(nouns, random)),
                               oneOf(places, random));
        case 5:
            return fmt::format("{} {}", oneOf(times, random), oneOf(nouns, random));
        case 6:
            return fmt::format("{} of {}", plural(oneOf(nouns, random)), oneOf(places, random));
        case 7:
            return fmt::format("{} and {}", oneOf(nouns, random), oneOf(nouns, random));
        case 8:
            return fmt::format("No More {}", plural(oneOf(nouns, random)));
        default:
            return fmt::format("{} {}", oneOf(adjectives, random), oneOf(nouns, random));
    }
}

}  // namespace

const SampleStyleTraits& traitsOf(SampleStyle style) {
    return styles[static_cast<std::size_t>(style)];
}

std::string_view genreOf(SampleStyle style, std::uint64_t seed) {
    std::string_view genres = traitsOf(style).genres;
    SampleRandom random(seed);
    // The first of a list is the most common.
    while (genres.find('|') != std::string_view::npos && random.chance(0.45)) {
        genres.remove_prefix(genres.find('|') + 1);
    }
    return genres.substr(0, genres.find('|'));
}

SampleArtistName artistNamed(SampleStyle style, SampleForces forces, std::uint64_t seed) {
    SampleRandom random(seed);
    switch (style) {
        case SampleStyle::works:
            return ensemble(forces, random);
        case SampleStyle::folk:
            return random.chance(0.6) ? person(random) : group({"Family", "Ceilidh Band"}, random);
        case SampleStyle::oldTunes:
            return random.chance(0.4) ? person(random)
                                      : group({"Ragtime Band", "Salon Orchestra"}, random);
        case SampleStyle::jazz:
            return random.chance(0.4) ? person(random)
                                      : group({"Trio", "Quartet", "Quintet", "Big Band"}, random);
        case SampleStyle::pop:
        case SampleStyle::country:
        case SampleStyle::quiet:
            return random.chance(0.6) ? person(random) : band(random);
        case SampleStyle::electronic:
        case SampleStyle::hipHop:
            return machine(random);
        case SampleStyle::rock:
            break;
    }
    return band(random);
}

std::string albumTitleNamed(SampleStyle style, std::uint64_t seed) {
    SampleRandom random(seed);
    if (style == SampleStyle::folk && random.chance(0.5)) {
        return fmt::format("Songs from {}", oneOf(places, random));
    }
    if (style == SampleStyle::oldTunes) {
        return random.chance(0.5) ? fmt::format("{} Rags", oneOf(places, random))
                                  : fmt::format("An Evening at the {}", oneOf(nouns, random));
    }
    if (style == SampleStyle::jazz && random.chance(0.3)) {
        return fmt::format("Live at the {}", oneOf(nouns, random));
    }
    std::string title = inventedTitle(random);
    return random.chance(0.05) ? title + " (Deluxe Edition)" : title;
}

std::string songTitleNamed(SampleStyle style, std::uint64_t seed) {
    SampleRandom random(seed);
    std::string title = inventedTitle(random);
    const double ending = random.unit();
    if (style == SampleStyle::electronic && ending < 0.15) {
        return title + (ending < 0.08 ? " (Extended Mix)" : " (Dub)");
    }
    if (style == SampleStyle::hipHop && ending < 0.1) {
        return fmt::format("{} (feat. {})", title, oneOf(surnames, random));
    }
    if (style != SampleStyle::quiet && ending > 0.97) {
        return title + " (Live)";
    }
    return title;
}

std::string compilationTitleNamed(std::string_view genre, std::uint64_t seed) {
    SampleRandom random(seed);
    switch (random.below(4)) {
        case 0:
            return fmt::format("{} Essentials, Vol. {}", genre, random.below(9) + 1);
        case 1:
            return fmt::format("The {} Sampler", oneOf(places, random));
        case 2:
            return fmt::format("{} {} of {}", 10 + 5 * random.below(5),
                               random.chance(0.5) ? "Years" : "Shades", genre);
        default:
            return fmt::format("{} for {} {}", genre, withIndefinite(oneOf(adjectives, random)),
                               oneOf(times, random));
    }
}

std::optional<std::string> sortTitleOf(std::string_view title) {
    for (const std::string_view article : {"The ", "A ", "An "}) {
        if (title.starts_with(article) && title.size() > article.size()) {
            return std::string(title.substr(article.size()));
        }
    }
    return std::nullopt;
}

}  // namespace tavrion
