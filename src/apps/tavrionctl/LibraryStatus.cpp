#include "apps/tavrionctl/LibraryStatus.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/Session.h"
#include "recording/RVQueryManager.h"

namespace tavrion::ctl {
namespace {

using Text = std::optional<std::string_view>;

struct Status {
    Text kind;
    Text location;
    std::size_t songs = 0;
    std::size_t playlists = 0;
    SourceCapabilities capabilities;
};

void writeJson(const Status& status, const MediaSnapshot& snapshot) {
    JsonWriter json(stdout);
    json.beginObject();
    json.key("kind").optionalText(status.kind);
    json.key("location").optionalText(status.location);
    json.key("songs").unsignedInteger(status.songs);
    json.key("playlists").unsignedInteger(status.playlists);
    json.key("canWriteLikes").boolean(status.capabilities.canWriteLikes);
    json.key("canWritePlaylists").boolean(status.capabilities.canWritePlaylists);
    json.key("canPlay").boolean(status.capabilities.canPlay);
    json.key("duplicateIdentifiers").beginArray();
    for (const DuplicateSongRecord& song : snapshot.duplicates()) {
        json.beginObject().key("persistentID").unsignedInteger(song.persistentID);
        json.key("title").optionalText(snapshot.text(song.title));
        json.key("artist").optionalText(snapshot.text(song.artist));
        json.key("isLeftOut").boolean(song.ownPersistentID == 0);
        json.key("ownPersistentID");
        song.ownPersistentID == 0 ? json.null() : json.unsignedInteger(song.ownPersistentID);
        json.endObject();
    }
    json.endArray().endObject().finish();
}

/// How many songs, and which.
void printDuplicates(const MediaSnapshot& snapshot) {
    if (snapshot.duplicates().empty()) {
        return;
    }
    const std::size_t count = snapshot.duplicates().size();
    fmt::print("{} with the identifier of another song:\n",
               count == 1 ? std::string("1 song came") : fmt::format("{} songs came", count));
    for (const DuplicateSongRecord& song : snapshot.duplicates()) {
        fmt::print("  {} by {}: {}\n", snapshot.text(song.title).value_or("—"),
                   snapshot.text(song.artist).value_or("—"),
                   song.ownPersistentID == 0 ? "left out, as it is the same file"
                                             : "known by an identifier of its own");
    }
}

}  // namespace

void writePublishedStatus(const Session& session, const LibraryChoice& choice) {
    const MPMediaLibrary& library = MPMediaLibrary::defaultMediaLibrary();
    const Status status{choice.kind, choice.location, RVQueryManager::defaultQuery().items().size(),
                        MPMediaQuery::playlistsQuery().collections().size(),
                        library.source()->capabilities()};
    const std::shared_ptr<const MediaSnapshot> snapshot = library.snapshot();
    if (session.options().json) {
        writeJson(status, *snapshot);
        return;
    }
    fmt::print("{} library: {}\n{} songs, {} playlists\n", choice.kind, choice.location,
               status.songs, status.playlists);
    printDuplicates(*snapshot);
}

void writeStatusWithoutLibrary(const Session& session) {
    if (session.options().json) {
        writeJson({}, *MediaSnapshot::empty());
    } else {
        fmt::print(
            "No music library is chosen. Choose one with: tavrionctl library use KIND LOCATION\n");
    }
}

}  // namespace tavrion::ctl
