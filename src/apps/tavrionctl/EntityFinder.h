// Finds one song, album, artist, genre or playlist by its name.
//
// Queue: the main thread. A name is taken as it is written, else without regard to case, else
// without regard to accents too. What is not found is answered with the nearest names, and names
// that several have with what tells them apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/tavrionctl/Options.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion::ctl {

enum class EntityKind { song, album, artist, genre, playlist };
/// Absent for an unknown kind.
std::optional<EntityKind> entityKindOf(const std::string& name);
inline constexpr const char* entityKinds = "song, album, artist, genre and playlist";

struct EntitySearch {
    EntityKind kind = EntityKind::song;
    std::string name;
    /// Of songs and albums; empty for any.
    std::string artist;
    /// The library's identifier, where a name is not enough.
    std::optional<std::uint64_t> persistentID;
};

struct FoundEntity {
    /// The empty entity when it was not found.
    MPMediaEntity entity;
    Outcome outcome;
};
FoundEntity findEntity(const EntitySearch& search);

}  // namespace tavrion::ctl
