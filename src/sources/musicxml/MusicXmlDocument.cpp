#include "sources/musicxml/MusicXmlDocument.h"

#include <algorithm>

#include "sources/musicxml/MusicXmlValues.h"

namespace tavrion {

namespace {

bool isSpace(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\t' || byte == '\r';
}

}  // namespace

void MusicXmlDocument::reserve(std::size_t fileSize) {
    // A track takes about 1,500 bytes, of which about a sixth are texts that are kept.
    builder_.reserve(fileSize / 1200, fileSize / 6);
    songOfTrack_.reserve(fileSize / 1200);
}

MusicXmlDocument::Element MusicXmlDocument::elementNamed(std::string_view name) {
    if (name == "key") {
        return Element::key;
    }
    if (name == "integer" || name == "string" || name == "date" || name == "real" ||
        name == "data") {
        return Element::scalar;
    }
    if (name == "dict") {
        return Element::dict;
    }
    if (name == "true") {
        return Element::yes;
    }
    if (name == "false") {
        return Element::no;
    }
    if (name == "array") {
        return Element::array;
    }
    return name == "plist" ? Element::plist : Element::unknown;
}

bool MusicXmlDocument::isArray(Place place) {
    return place == Place::playlists || place == Place::playlistItems ||
           place == Place::ignoredArray;
}

bool MusicXmlDocument::isDict(Place place) {
    return place != Place::outside && place != Place::plist && !isArray(place);
}

/// Whether the value of that key is of use there.
bool MusicXmlDocument::hasValue(Place place, MusicXmlKey key) {
    switch (place) {
        case Place::track:
        case Place::playlist:
            return key < firstMusicXmlContainer;
        case Place::playlistItem:
            return key == MusicXmlKey::trackID;
        default:
            return false;
    }
}

bool MusicXmlDocument::fail(std::string what, std::string_view whatToDo) {
    problem_ = std::move(what);
    problem_.append("; ").append(whatToDo);
    return false;
}

std::string MusicXmlDocument::keyForPeople() const {
    return "\"" + musicXmlTextForPeople(keyText_) + "\"";
}

bool MusicXmlDocument::startElement(std::string_view name) {
    const Element element = elementNamed(name);
    if (element == Element::unknown && depth_ > 1) {
        return fail("<" + musicXmlTextForPeople(name) + "> does not belong into a property list");
    }
    if (inScalar_) {
        return fail("<" + musicXmlTextForPeople(name) + "> stands inside of another value");
    }
    Frame& frame = frames_[depth_ - 1];
    if (!isDict(frame.place) && !isArray(frame.place)) {
        return startRoot(element, name);
    }
    if (element == Element::key) {
        if (frame.hasKey) {
            return fail("the key " + keyForPeople() + " has no value");
        }
        if (isArray(frame.place)) {
            return fail("a <key> stands in an <array>");
        }
        inScalar_ = true;
        collects_ = true;
        scalar_ = Element::key;
        text_.clear();
        return true;
    }
    if (isDict(frame.place) && !frame.hasKey) {
        return fail("<" + musicXmlTextForPeople(name) + "> has no <key> before it");
    }
    return startValue(element);
}

bool MusicXmlDocument::startRoot(Element element, std::string_view name) {
    if (frames_[depth_ - 1].place == Place::outside && element == Element::plist) {
        return push(Place::plist);
    }
    if (element == Element::dict && !sawLibrary_) {
        sawLibrary_ = true;
        return push(Place::library);
    }
    return fail(
        "<" + musicXmlTextForPeople(name) + "> stands where the <dict> of a music library belongs",
        "choose the Library.xml that the player exports");
}

bool MusicXmlDocument::startValue(Element element) {
    Frame& frame = frames_[depth_ - 1];
    const MusicXmlKey key = isDict(frame.place) ? frame.key : MusicXmlKey::unknown;
    frame.hasKey = false;
    if (element == Element::dict || element == Element::array) {
        return startContainer(element, key);
    }
    if (element == Element::plist) {
        return fail("a <plist> stands inside of another");
    }
    if (frame.place == Place::tracks || frame.place == Place::playlists ||
        frame.place == Place::playlistItems ||
        (frame.place == Place::library &&
         (key == MusicXmlKey::tracks || key == MusicXmlKey::playlists)) ||
        (frame.place == Place::playlist && key == MusicXmlKey::playlistItems)) {
        return fail("a single value stands where a track or a playlist belongs");
    }
    inScalar_ = true;
    scalar_ = element;
    scalarKey_ = hasValue(frame.place, key) ? key : MusicXmlKey::unknown;
    collects_ = scalarKey_ != MusicXmlKey::unknown;
    text_.clear();
    return true;
}

bool MusicXmlDocument::startContainer(Element element, MusicXmlKey key) {
    const Place outer = frames_[depth_ - 1].place;
    const auto expect = [&](Element expected, Place inner) {
        return element == expected
                   ? push(inner)
                   : fail("a list stands where a dictionary belongs, or the reverse");
    };
    if (outer == Place::library && key == MusicXmlKey::tracks) {
        sawTracks_ = true;
        return expect(Element::dict, Place::tracks);
    }
    if (outer == Place::library && key == MusicXmlKey::playlists) {
        return expect(Element::array, Place::playlists);
    }
    if (outer == Place::tracks) {
        entry_.clear();
        trackKey_ = keyText_;
        return expect(Element::dict, Place::track);
    }
    if (outer == Place::playlists) {
        entry_.clear();
        playlists_.emplace_back().firstTrack = listedTracks_.size();
        return expect(Element::dict, Place::playlist);
    }
    if (outer == Place::playlist && key == MusicXmlKey::playlistItems) {
        return expect(Element::array, Place::playlistItems);
    }
    if (outer == Place::playlistItems) {
        return expect(Element::dict, Place::playlistItem);
    }
    if (hasValue(outer, key)) {
        return fail("the value of the key " + keyForPeople() + " is not a single one");
    }
    return push(element == Element::dict ? Place::ignoredDict : Place::ignoredArray);
}

bool MusicXmlDocument::push(Place place) {
    if (depth_ == mostDepth) {
        return fail("the elements are nested more than " + std::to_string(mostDepth - 1) + " deep");
    }
    frames_[depth_++] = Frame{place, false, MusicXmlKey::unknown};
    return true;
}

bool MusicXmlDocument::characters(std::string_view text) {
    if (inScalar_) {
        if (collects_) {
            text_.append(text);
        }
        return true;
    }
    if (!std::all_of(text.begin(), text.end(), isSpace)) {
        return fail("the text \"" + musicXmlTextForPeople(text) + "\" stands outside of any value");
    }
    return true;
}

bool MusicXmlDocument::endElement() {
    return inScalar_ ? endScalar() : endContainer();
}

bool MusicXmlDocument::endScalar() {
    inScalar_ = false;
    switch (scalar_) {
        case Element::key:
            return endKey();
        case Element::yes:
            return takeFlag(true);
        case Element::no:
            return takeFlag(false);
        default:
            return scalarKey_ == MusicXmlKey::unknown || takeText();
    }
}

bool MusicXmlDocument::endKey() {
    Frame& frame = frames_[depth_ - 1];
    keyText_.swap(text_);
    frame.hasKey = true;
    frame.key = musicXmlKeyNamed(keyText_);
    return true;
}

bool MusicXmlDocument::takeText() {
    if (frames_[depth_ - 1].place == Place::playlistItem) {
        return takeListedTrack();
    }
    if (scalarKey_ >= firstMusicXmlFlag) {
        return fail("the value of the key " + keyForPeople() + " is neither <true/> nor <false/>");
    }
    if (entry_.setText(scalarKey_, text_)) {
        return true;
    }
    const std::string value =
        "\"" + musicXmlTextForPeople(text_) + "\" of the key " + keyForPeople() + " is not ";
    if (scalarKey_ >= firstMusicXmlDate) {
        return fail(value + "a date like 2021-12-19T08:15:00Z");
    }
    return fail(value + (scalarKey_ >= firstMusicXmlInteger ? "a number that it can be"
                                                            : "up to 16 hexadecimal digits"));
}

bool MusicXmlDocument::takeFlag(bool value) {
    if (scalarKey_ == MusicXmlKey::unknown) {
        return true;
    }
    if (scalarKey_ < firstMusicXmlFlag) {
        return fail("the key " + keyForPeople() + " has " + (value ? "<true/>" : "<false/>") +
                    " for a value");
    }
    entry_.setFlag(scalarKey_, value);
    return true;
}

bool MusicXmlDocument::takeListedTrack() {
    const auto number = musicXmlInteger(text_);
    if (!number || *number < 0) {
        return fail("\"" + musicXmlTextForPeople(text_) + "\" of the key " + keyForPeople() +
                    " is not the number of a track");
    }
    listedTracks_.push_back(static_cast<std::uint64_t>(*number));
    return true;
}

bool MusicXmlDocument::endContainer() {
    const Frame frame = frames_[depth_ - 1];
    if (frame.hasKey) {
        return fail("the key " + keyForPeople() + " has no value");
    }
    --depth_;
    if (frame.place == Place::track) {
        addTrack();
    } else if (frame.place == Place::playlist) {
        addPlaylist();
    }
    return true;
}

void MusicXmlDocument::addTrack() {
    const SongDescription song = entry_.song();
    const std::uint64_t persistentID = builder_.addSong(song);
    if (entry_.hasInteger(MusicXmlKey::trackID)) {
        songOfTrack_.emplace_back(entry_.integer(MusicXmlKey::trackID), persistentID);
    } else if (const auto number = musicXmlInteger(trackKey_)) {
        songOfTrack_.emplace_back(static_cast<std::uint64_t>(*number), persistentID);
    }
}

void MusicXmlDocument::addPlaylist() {
    Playlist& playlist = playlists_.back();
    PlaylistDescription& description = playlist.description;
    playlist.name = entry_.text(MusicXmlKey::name).value_or(std::string_view());
    description.persistentID = entry_.persistentID(MusicXmlKey::playlistPersistentID);
    description.parentPersistentID = entry_.persistentID(MusicXmlKey::parentPersistentID);
    description.isFolder = entry_.flag(MusicXmlKey::folder);
    description.isHidden = entry_.isDenied(MusicXmlKey::visible);
    description.isStock =
        entry_.flag(MusicXmlKey::master) || entry_.hasInteger(MusicXmlKey::distinguishedKind);
}

bool MusicXmlDocument::finish() {
    if (!sawTracks_) {
        return fail("the property list has no \"Tracks\"",
                    "choose the Library.xml that the player exports");
    }
    resolvePlaylists();
    return true;
}

void MusicXmlDocument::resolvePlaylists() {
    if (!std::is_sorted(songOfTrack_.begin(), songOfTrack_.end())) {
        std::sort(songOfTrack_.begin(), songOfTrack_.end());
    }
    std::vector<std::uint64_t> songs;
    for (std::size_t i = 0; i < playlists_.size(); ++i) {
        const std::size_t end =
            i + 1 < playlists_.size() ? playlists_[i + 1].firstTrack : listedTracks_.size();
        songs.clear();
        for (std::size_t track = playlists_[i].firstTrack; track < end; ++track) {
            const std::pair<std::uint64_t, std::uint64_t> sought(listedTracks_[track], 0);
            const auto found = std::lower_bound(songOfTrack_.begin(), songOfTrack_.end(), sought);
            if (found != songOfTrack_.end() && found->first == sought.first) {
                songs.push_back(found->second);
            }
        }
        playlists_[i].description.name = playlists_[i].name;
        playlists_[i].description.songs = songs;
        builder_.addPlaylist(playlists_[i].description);
    }
}

}  // namespace tavrion
