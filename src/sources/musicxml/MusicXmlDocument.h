// The shape of a Library.xml: takes its elements one after the other and gathers songs and
// playlists.
//
// Queue: one caller. Elements come as from a streaming XML reader; a false answer means that the
// document is broken, and problem() says how.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/mediaplayer/MediaSnapshotBuilder.h"
#include "sources/musicxml/MusicXmlEntry.h"
#include "sources/musicxml/MusicXmlKeys.h"

namespace tavrion {

class MusicXmlDocument {
  public:
    void reserve(std::size_t fileSize);
    bool startElement(std::string_view name);
    bool endElement();
    bool characters(std::string_view text);
    /// The end of the document.
    bool finish();

    /// What is wrong, and what to do.
    const std::string& problem() const { return problem_; }
    /// After a good finish(), once.
    std::shared_ptr<const MediaSnapshot> takeSnapshot() { return builder_.finish(); }

  private:
    enum class Element : std::uint8_t { plist, dict, array, key, yes, no, scalar, unknown };
    enum class Place : std::uint8_t {
        outside,
        plist,
        library,
        tracks,
        track,
        playlists,
        playlist,
        playlistItems,
        playlistItem,
        ignoredDict,
        ignoredArray,
    };
    /// An open element that holds others.
    struct Frame {
        Place place = Place::outside;
        /// Of a dictionary: a key was read and its value has not begun.
        bool hasKey = false;
        MusicXmlKey key = MusicXmlKey::unknown;
    };
    struct Playlist {
        std::string name;
        PlaylistDescription description;
        std::size_t firstTrack = 0;
    };
    static constexpr std::size_t mostDepth = 64;

    static Element elementNamed(std::string_view name);
    static bool isDict(Place place);
    static bool isArray(Place place);
    static bool hasValue(Place place, MusicXmlKey key);

    bool startRoot(Element element, std::string_view name);
    bool startValue(Element element);
    bool startContainer(Element element, MusicXmlKey key);
    bool push(Place place);
    bool endScalar();
    bool endKey();
    bool endContainer();
    bool takeText();
    bool takeFlag(bool value);
    bool takeListedTrack();
    void addTrack();
    void addPlaylist();
    void resolvePlaylists();
    bool fail(std::string what, std::string_view whatToDo = "export the library again");
    std::string keyForPeople() const;

    std::array<Frame, mostDepth> frames_;
    std::size_t depth_ = 1;
    bool sawLibrary_ = false;
    bool sawTracks_ = false;
    /// The element without children that is open, if any.
    bool inScalar_ = false;
    Element scalar_ = Element::scalar;
    MusicXmlKey scalarKey_ = MusicXmlKey::unknown;
    /// Whether the text of the open element is of use.
    bool collects_ = false;
    std::string text_;
    std::string keyText_;

    MusicXmlEntry entry_;
    std::string trackKey_;
    /// Number of the track in this file, and its song.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> songOfTrack_;
    std::vector<Playlist> playlists_;
    std::vector<std::uint64_t> listedTracks_;
    MediaSnapshotBuilder builder_;
    std::string problem_;
};

}  // namespace tavrion
