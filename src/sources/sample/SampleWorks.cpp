#include "sources/sample/SampleWorks.h"

#include <array>

#include "sources/sample/SampleData.h"

namespace tavrion {

namespace {

/// The part of a list separated by "|" that has that number.
std::string_view partOf(std::string_view list, std::uint32_t number) {
    for (; number > 0; --number) {
        list.remove_prefix(list.find('|') + 1);
    }
    return list.substr(0, list.find('|'));
}

std::string keyOfNumber(std::uint32_t number) {
    constexpr std::array<std::string_view, 12> tones{
        "C", "C-sharp", "D", "E-flat", "E", "F", "F-sharp", "G", "A-flat", "A", "B-flat", "B"};
    return std::string(tones[(number / 2) % tones.size()]) +
           (number % 2 == 0 ? " Major" : " Minor");
}

}  // namespace

std::span<const SampleWork> sampleWorks() {
    return SampleData::works;
}

std::string titleOfPiece(const SampleWork& work, std::uint32_t number) {
    std::string title(work.pieces);
    if (const std::size_t place = title.find('#'); place != std::string::npos) {
        return title.replace(place, 1, std::to_string(number + 1));
    }
    if (const std::size_t place = title.find('@'); place != std::string::npos) {
        return title.replace(place, 1, keyOfNumber(number));
    }
    return std::string(partOf(work.pieces, number));
}

std::span<const SampleTune> sampleFolkTunes() {
    return SampleData::folkTunes;
}

std::span<const SampleTune> sampleOldTunes() {
    return SampleData::oldTunes;
}

}  // namespace tavrion
