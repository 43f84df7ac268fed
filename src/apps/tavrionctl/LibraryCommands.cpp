#include "apps/tavrionctl/LibraryCommands.h"

#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <map>
#include <system_error>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/LibraryStatus.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "library/RVMetadataManager.h"
#include "recording/RVQueryManager.h"

namespace tavrion::ctl {
namespace {

/// The properties of a song that the system reads, under their own names.
constexpr std::array songProperties{"persistentID",
                                    "title",
                                    "artist",
                                    "albumArtist",
                                    "albumTitle",
                                    "genre",
                                    "composer",
                                    "playbackDuration",
                                    "playCount",
                                    "skipCount",
                                    "lastPlayedDate",
                                    "lastSkippedDate",
                                    "dateAdded",
                                    "releaseDate",
                                    "year",
                                    "playbackStoreID",
                                    "cloudUniversalLibraryId",
                                    "albumPersistentID",
                                    "albumArtistPersistentID",
                                    "albumTrackNumber",
                                    "discNumber",
                                    "isCompilation",
                                    "explicitItem",
                                    "isCloudItem",
                                    "existsInLibrary",
                                    "likedState",
                                    "fileSize",
                                    "mediaType",
                                    "sortTitle",
                                    "sortArtist",
                                    "sortAlbumArtist",
                                    "sortAlbumTitle"};

/// Identifiers are unsigned; a Value carries their bits as a signed number.
bool isIdentifier(std::string_view property) {
    return property.ends_with("ersistentID");
}

Value songProperty(const MPMediaItem& song, std::string_view property) {
    if (property == "cloudUniversalLibraryId") {
        const auto identifier = song.cloudUniversalLibraryId();
        return identifier ? Value(std::string(*identifier)) : Value();
    }
    if (property == "playbackStoreID" && song.playbackStoreID().empty()) {
        return {};
    }
    return song.valueForProperty(property);
}

/// How many songs share their title and duration with another one.
std::size_t songsWithTwins() {
    std::map<std::pair<std::string, double>, std::size_t> counts;
    for (const MPMediaItem& song : RVQueryManager::defaultQuery().items()) {
        ++counts[{std::string(song.title().value_or("")), song.playbackDuration()}];
    }
    std::size_t twins = 0;
    for (const auto& [key, count] : counts) {
        twins += count > 1 ? count : 0;
    }
    return twins;
}

/// A path of a file is kept whole, so that the choice holds in every directory.
std::string lastingLocation(const SourceRegistry::Kind* kind, const std::string& location) {
    if (kind != nullptr && !kind->locationIsPath) {
        return location;
    }
    std::error_code failure;
    const auto absolute = std::filesystem::absolute(location, failure);
    return location.empty() || failure || !std::filesystem::exists(absolute, failure)
               ? location
               : absolute.lexically_normal().string();
}

}  // namespace

void LibraryUseCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("use", "Choose the music library and read it once");
    described_.text("KIND", kind_, "music-xml, or sample to try the program").required();
    described_.text("LOCATION", location_,
                    "For music-xml the exported file; for sample the number of songs");
}

Outcome LibraryUseCommand::guardExistingRecords(Session& session, const std::string& kind,
                                                const std::string& location) {
    const auto before = session.libraryChoice();
    const bool isSame = before && before.value() == LibraryChoice{kind, location};
    std::error_code failure;
    if (isSame || !std::filesystem::exists(session.directory().store(), failure)) {
        return {};
    }
    if (Outcome opened = session.openStore(); !opened.isDone()) {
        return opened;
    }
    if (session.records()->table(NerindaEntity::PlaybackHistory).size() == 0) {
        return {};
    }
    const auto copy = session.writer().makeSafetyCopy("before-library-change");
    if (!copy) {
        return Outcome::failure("the safety copy can't be made (" +
                                copy.error().localizedDescription + "); the chosen library stays");
    }
    session.say(
        "There are records of another library already; songs of the new one are added to them. "
        "Safety copy: " +
        copy.value());
    return {};
}

Outcome LibraryUseCommand::execute(Session& session) {
    if (Outcome writer = session.becomeWriter(); !writer.isDone()) {
        return writer;
    }
    auto source = session.sources().create(
        kind_, lastingLocation(session.sources().kindNamed(kind_), location_));
    if (!source) {
        return Outcome::failure(source.error().localizedDescription);
    }
    // A location that was left out is known now.
    const LibraryChoice choice{kind_, source.value()->location()};
    auto snapshot = session.snapshots().readAnew(*source.value());
    if (!snapshot) {
        return Outcome::failure(snapshot.error().localizedDescription);
    }
    if (Outcome guarded = guardExistingRecords(session, choice.kind, choice.location);
        !guarded.isDone()) {
        return guarded;
    }
    if (const auto written = session.writer().chooseLibrary(choice); !written) {
        return Outcome::failure(written.error().localizedDescription);
    }
    session.publish(std::move(source).value(), std::move(snapshot).value());
    if (const std::size_t twins = songsWithTwins(); twins > 0) {
        session.say(fmt::format(
            "{} songs share title and duration with another one; their histories will be folded.",
            twins));
    }
    writePublishedStatus(session, choice);
    return {};
}

void LibraryStatusCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("status", "Say which music library is chosen");
}

Outcome LibraryStatusCommand::execute(Session& session) {
    const auto choice = session.libraryChoice();
    if (!choice) {
        return Outcome::failure(choice.error().localizedDescription);
    }
    if (!choice.value()) {
        writeStatusWithoutLibrary(session);
        return {};
    }
    if (Outcome opened = session.openLibrary(); !opened.isDone()) {
        return opened;
    }
    writePublishedStatus(session, *choice.value());
    return {};
}

void LibrarySongsCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("songs", "List the songs with every property that is read");
    described_.flag("--non-library", withNonLibrarySongs_,
                    "Also songs that were played but not added");
}

Outcome LibrarySongsCommand::execute(Session& session) {
    if (Outcome opened = session.openLibrary(); !opened.isDone()) {
        return opened;
    }
    MPMediaQuery query = RVQueryManager::defaultQuery();
    query.setValueForKey(withNonLibrarySongs_, "shouldIncludeNonLibraryEntities");
    const std::vector<MPMediaItem> songs = query.items();
    if (!session.options().json) {
        for (const MPMediaItem& song : songs) {
            fmt::print("{}  {}  {}  {:>6}\n", fitted(song.title().value_or("—"), 40),
                       fitted(song.artist().value_or("—"), 28),
                       fitted(song.albumTitle().value_or("—"), 28),
                       RVMetadataManager::formattedPlays(song.playCount()));
        }
        return {};
    }
    JsonWriter json(stdout);
    json.beginArray();
    for (const MPMediaItem& song : songs) {
        json.beginObject();
        for (const char* const property : songProperties) {
            const Value value = songProperty(song, property);
            const auto* bits = value.get<std::int64_t>();
            json.key(property);
            if (isIdentifier(property) && bits != nullptr) {
                json.unsignedInteger(static_cast<std::uint64_t>(*bits));
            } else {
                json.value(value);
            }
        }
        json.endObject();
    }
    json.endArray().finish();
    return {};
}

void LibraryForgetCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("forget", "Choose no music library; records stay");
}

Outcome LibraryForgetCommand::execute(Session& session) {
    if (Outcome writer = session.becomeWriter(); !writer.isDone()) {
        return writer;
    }
    if (const Result<void> forgotten = session.writer().forgetLibrary(); !forgotten) {
        return Outcome::failure(forgotten.error().localizedDescription);
    }
    if (session.options().json) {
        JsonWriter(stdout).beginObject().endObject().finish();
    } else {
        session.say("No music library is chosen any more.");
    }
    return {};
}

}  // namespace tavrion::ctl
