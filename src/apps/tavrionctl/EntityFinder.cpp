#include "apps/tavrionctl/EntityFinder.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "apps/tavrionctl/TextTable.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/SearchFolding.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion::ctl {
namespace {

using Entities = std::vector<MPMediaEntity>;

struct Kind {
    EntityKind kind;
    const char* name;
    const char* plural;
};
constexpr std::array kinds{
    Kind{EntityKind::song, "song", "songs"},
    Kind{EntityKind::album, "album", "albums"},
    Kind{EntityKind::artist, "artist", "artists"},
    Kind{EntityKind::genre, "genre", "genres"},
    Kind{EntityKind::playlist, "playlist", "playlists"},
};

const Kind& kindOf(EntityKind kind) {
    return *std::find_if(kinds.begin(), kinds.end(),
                         [&](const Kind& each) { return each.kind == kind; });
}

Entities collectionsOf(MPMediaQuery query, MPMediaGrouping grouping) {
    query.setGroupingType(grouping);
    Entities entities;
    for (MPMediaItemCollection& collection : query.collections()) {
        entities.emplace_back(std::move(collection));
    }
    return entities;
}

Entities candidatesOf(EntityKind kind) {
    const MPMediaQuery all = MPMediaQuery::songsQuery();
    switch (kind) {
        case EntityKind::song: {
            const std::vector<MPMediaItem> songs = all.items();
            return {songs.begin(), songs.end()};
        }
        case EntityKind::album:
            return collectionsOf(all, MPMediaGrouping::album);
        case EntityKind::artist:
            return collectionsOf(all, MPMediaGrouping::albumArtist);
        case EntityKind::genre:
            return collectionsOf(all, MPMediaGrouping::genre);
        case EntityKind::playlist:
            return collectionsOf(MPMediaQuery::playlistsQuery(), MPMediaGrouping::playlist);
    }
    return {};
}

std::string nameOf(const MPMediaEntity& entity) {
    const auto title = RVMetadataManager::titleForMediaEntity(entity, std::nullopt);
    return title ? title->textWithoutAttachments() : std::string();
}

std::string artistOf(const MPMediaEntity& entity) {
    const std::optional<MPMediaItem> song = entity.representativeItem();
    return song ? RVMetadataManager::albumArtistForMediaItem(*song) : std::string();
}

bool isByArtist(const MPMediaEntity& entity, const std::string& folded) {
    const MPMediaItem* song = entity.item();
    return foldedForSearch(artistOf(entity)) == folded ||
           (song != nullptr &&
            foldedForSearch(RVMetadataManager::artistForMediaItem(*song)) == folded);
}

/// Those of that name, by the strictest reading that finds one.
Entities withName(const Entities& candidates, const std::string& name) {
    using Reading = std::string (*)(std::string_view);
    const std::array<Reading, 3> readings{[](std::string_view text) { return std::string(text); },
                                          foldedForCase, foldedForSearch};
    for (const Reading reading : readings) {
        const std::string sought = reading(name);
        Entities found;
        std::copy_if(
            candidates.begin(), candidates.end(), std::back_inserter(found),
            [&](const MPMediaEntity& entity) { return reading(nameOf(entity)) == sought; });
        if (!found.empty()) {
            return found;
        }
    }
    return {};
}

/// How many bytes to add, drop or change to make one text of the other.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

/// Names that hold the text come first, then the ones that are spelt most alike.
std::vector<std::string> nearestNames(const Entities& candidates, const std::string& name) {
    constexpr std::size_t limit = 3;
    const std::string sought = foldedForSearch(name);
    std::set<std::tuple<bool, std::size_t, std::string>> nearest;
    for (const MPMediaEntity& candidate : candidates) {
        const std::string other = nameOf(candidate);
        const std::string folded = foldedForSearch(other);
        const bool isApart = sought.empty() || folded.find(sought) == std::string::npos;
        nearest.emplace(isApart, distanceBetween(folded, sought), other);
        if (nearest.size() > limit) {
            nearest.erase(std::prev(nearest.end()));
        }
    }
    std::vector<std::string> names;
    names.reserve(nearest.size());
    for (const auto& each : nearest) {
        names.push_back("'" + std::get<2>(each) + "'");
    }
    return names;
}

Outcome notFound(const EntitySearch& search, const Entities& candidates) {
    const Kind& kind = kindOf(search.kind);
    const std::string by = search.artist.empty() ? "" : fmt::format(" by '{}'", search.artist);
    const std::vector<std::string> names = nearestNames(candidates, search.name);
    if (names.empty()) {
        return Outcome::failure(fmt::format("no {} is called '{}'{}; the library has no {}{}",
                                            kind.name, search.name, by, kind.plural, by));
    }
    return Outcome::failure(fmt::format("no {} is called '{}'{}; the nearest names are {}",
                                        kind.name, search.name, by, fmt::join(names, ", ")));
}

std::string whatTellsApart(const MPMediaEntity& entity) {
    if (const MPMediaItem* song = entity.item()) {
        return fmt::format("{}  {}  {}", fitted(RVMetadataManager::artistForMediaItem(*song), 28),
                           fitted(RVMetadataManager::albumTitleForMediaItem(*song), 32),
                           RVMetadataManager::formattedPlaybackDuration(song->playbackDuration()));
    }
    return fmt::format("{}  {}", fitted(artistOf(entity), 28),
                       RVMetadataManager::songCountForCollection(*entity.collection()));
}

Outcome ambiguous(const EntitySearch& search, const Entities& found) {
    constexpr std::size_t limit = 20;
    std::string message = fmt::format("there are {} {} called '{}'; name one with --id",
                                      found.size(), kindOf(search.kind).plural, search.name);
    for (std::size_t i = 0; i < found.size() && i < limit; ++i) {
        message += fmt::format("\n{:>22}  {}", found[i].persistentID(), whatTellsApart(found[i]));
    }
    if (found.size() > limit) {
        message += fmt::format("\n{:>22}  and {} more", "", found.size() - limit);
    }
    return Outcome::failure(message);
}

}  // namespace

std::optional<EntityKind> entityKindOf(const std::string& name) {
    const auto found = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const Kind& each) { return name == each.name; });
    return found == kinds.end() ? std::nullopt : std::optional(found->kind);
}

FoundEntity findEntity(const EntitySearch& search) {
    Entities candidates = candidatesOf(search.kind);
    if (!search.artist.empty()) {
        const std::string artist = foldedForSearch(search.artist);
        std::erase_if(candidates,
                      [&](const MPMediaEntity& entity) { return !isByArtist(entity, artist); });
    }
    Entities found = withName(candidates, search.name);
    if (found.empty() && search.kind == EntityKind::artist) {
        // One who is on compilations alone has no songs under the own name.
        const Entities tracks = collectionsOf(MPMediaQuery::songsQuery(), MPMediaGrouping::artist);
        found = withName(tracks, search.name);
        candidates.insert(candidates.end(), tracks.begin(), tracks.end());
    }
    if (search.persistentID) {
        std::erase_if(found, [&](const MPMediaEntity& entity) {
            return entity.persistentID() != *search.persistentID;
        });
    }
    if (found.empty()) {
        return {{}, notFound(search, candidates)};
    }
    if (found.size() > 1) {
        return {{}, ambiguous(search, found)};
    }
    return {found.front(), {}};
}

}  // namespace tavrion::ctl
