// The values of one track or one playlist while its dictionary is read.
//
// Queue: one caller. Reused from one dictionary to the next, so that reading a song takes no memory
// of its own.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSDate.h"
#include "platform/mediaplayer/MediaSnapshotBuilder.h"
#include "sources/musicxml/MusicXmlKeys.h"

namespace tavrion {

class MusicXmlEntry {
  public:
    void clear();
    /// Takes the value of a text, integer or date key. False when it is not such a value, or out of
    /// its range.
    bool setText(MusicXmlKey key, std::string_view value);
    void setFlag(MusicXmlKey key, bool value);

    std::optional<std::string_view> text(MusicXmlKey key) const;
    /// 0 when missing.
    std::uint64_t integer(MusicXmlKey key) const;
    bool hasInteger(MusicXmlKey key) const;
    std::optional<NSDate> date(MusicXmlKey key) const;
    bool flag(MusicXmlKey key) const;
    /// The flag is there and says no.
    bool isDenied(MusicXmlKey key) const;
    /// 0 when missing.
    std::uint64_t persistentID(MusicXmlKey key) const;

    /// As a song; its texts are this entry's.
    SongDescription song() const;

  private:
    struct Range {
        std::size_t offset = 0;
        std::size_t length = 0;
    };
    static constexpr std::size_t textCount = static_cast<std::size_t>(firstMusicXmlInteger);
    static constexpr std::size_t integerCount = static_cast<std::size_t>(firstMusicXmlDate) -
                                                static_cast<std::size_t>(firstMusicXmlInteger);
    static constexpr std::size_t dateCount =
        static_cast<std::size_t>(firstMusicXmlFlag) - static_cast<std::size_t>(firstMusicXmlDate);

    bool setInteger(MusicXmlKey key, std::string_view value);
    bool setDate(MusicXmlKey key, std::string_view value);
    MediaType mediaType() const;
    std::uint64_t persistentIDOfSong() const;

    /// All texts of the entry, one after the other.
    std::string texts_;
    std::array<std::optional<Range>, textCount> ranges_;
    std::array<std::optional<std::uint64_t>, integerCount> integers_;
    std::array<std::optional<NSDate>, dateCount> dates_;
    /// A bit for each key.
    std::uint64_t saidYes_ = 0;
    std::uint64_t saidNo_ = 0;
};

}  // namespace tavrion
