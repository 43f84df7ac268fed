// Small Library.xml texts for the tests of this room.
#pragma once

#include <string>

#include "platform/foundation/Result.h"
#include "platform/mediaplayer/MPMediaItem.h"
#include "sources/musicxml/MusicXmlParser.h"

namespace tavrion {

inline std::string plist(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           body + "\n</plist>\n";
}

inline std::string integer(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><integer>" + value + "</integer>\n";
}

inline std::string text(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>\n";
}

inline std::string date(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><date>" + value + "</date>\n";
}

inline std::string yes(const std::string& key) {
    return "<key>" + key + "</key><true/>\n";
}

/// One track; its persistent identifier is its number.
inline std::string track(int number, const std::string& values) {
    const std::string digits = std::to_string(number);
    return "<key>" + digits + "</key>\n<dict>\n" + integer("Track ID", digits) +
           text("Persistent ID", std::string(16 - digits.size(), '0') + digits) + values +
           "</dict>\n";
}

inline std::string library(const std::string& tracks, const std::string& playlists = "") {
    return plist("<dict>\n<key>Tracks</key>\n<dict>\n" + tracks +
                 "</dict>\n<key>Playlists</key>\n<array>\n" + playlists + "</array>\n</dict>");
}

inline Result<std::shared_ptr<const MediaSnapshot>> parsed(const std::string& bytes) {
    return MusicXmlParser::parse(bytes, "Library.xml");
}

/// What is wrong with the text; empty when nothing is.
inline std::string problemOf(const std::string& bytes) {
    const auto outcome = parsed(bytes);
    return outcome ? std::string() : outcome.error().localizedDescription;
}

/// The song of a library that has one.
inline MPMediaItem onlySong(const std::string& bytes) {
    const auto outcome = parsed(bytes);
    precondition(outcome.ok(), "the library is readable");
    precondition(outcome.value()->songs().size() == 1, "the library has one song");
    return {outcome.value(), 0};
}

}  // namespace tavrion
