// The names, titles and works that the sample library is put together from: the lists of
// SampleNames.tsv, which the build makes a source file of.
//
// Queue: any; constants.
#pragma once

#include <span>
#include <string_view>

#include "sources/sample/SampleNames.h"
#include "sources/sample/SampleWorks.h"

namespace tavrion::SampleData {

extern const std::span<const std::string_view> givenNames;
extern const std::span<const std::string_view> surnames;
extern const std::span<const std::string_view> places;
extern const std::span<const std::string_view> adjectives;
extern const std::span<const std::string_view> nouns;
/// What somebody does.
extern const std::span<const std::string_view> doings;
/// Days and months.
extern const std::span<const std::string_view> times;
extern const std::span<const std::string_view> orchestras;
extern const std::span<const std::string_view> choirs;
extern const std::span<const std::string_view> smallEnsembles;
/// In the order of SampleStyle.
extern const std::span<const SampleStyleTraits> styles;
extern const std::span<const SampleWork> works;
extern const std::span<const SampleTune> folkTunes;
extern const std::span<const SampleTune> oldTunes;

}  // namespace tavrion::SampleData
