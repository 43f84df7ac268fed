// Feeds any bytes to the reader of Library.xml: it must answer with a snapshot or with one line,
// and break nothing.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/foundation/NSCalendar.h"
#include "platform/mediaplayer/MediaSnapshot.h"
#include "sources/musicxml/MusicXmlParser.h"

namespace {

/// Ends the run: the input is kept as a finding.
void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void checkSnapshot(const tavrion::MediaSnapshot& snapshot) {
    for (std::uint32_t position = 0; position < snapshot.songs().size(); ++position) {
        require(snapshot.positionOfPersistentID(snapshot.songs()[position].persistentID) ==
                position);
        for (std::size_t which = 0; which < tavrion::songTextCount; ++which) {
            const auto text = snapshot.text(position, static_cast<tavrion::SongText>(which));
            require(!text || !text->empty());
        }
    }
    for (const tavrion::PlaylistRecord& playlist : snapshot.playlists()) {
        for (const std::uint32_t position : snapshot.songsOfPlaylist(playlist)) {
            require(position < snapshot.songs().size());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static tavrion::Regional region(tavrion::NSTimeZone(), "en_US");
    static const tavrion::Port<tavrion::Regional>::Plug plug(region);
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto outcome = tavrion::MusicXmlParser::parse(bytes, "Library.xml");
    if (outcome) {
        checkSnapshot(*outcome.value());
    } else {
        const std::string& line = outcome.error().localizedDescription;
        require(line.starts_with("Library.xml, line ") && line.find("; ") != std::string::npos);
        require(line.find('\n') == std::string::npos && line.size() < 500);
    }
    return 0;
}
