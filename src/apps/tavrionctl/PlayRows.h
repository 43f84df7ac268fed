// Dated plays as rows of a command's output, read from an immutable version.
//
// Queue: the main thread. Lives no longer than the version. Absent: what a song does not have, and
// everything of a play without a song.
#pragma once

#include <optional>
#include <string_view>

#include "apps/tavrionctl/JsonWriter.h"
#include "platform/coredata/StoreVersion.h"

namespace tavrion::ctl {

/// One play with what its song adds.
struct PlayRow {
    RecordCounter record = 0;
    RowPosition event;
    RecordCounter history = 0;
    std::optional<RowPosition> song;

    FieldView songField(PropertyIndex property) const {
        return song ? song->at(property) : FieldView();
    }
    std::optional<std::string_view> songText(PropertyIndex property) const;
    std::optional<NSDate> date() const;
    bool isInterpolated() const;
};

/// The play is in the version.
PlayRow playRowOf(const StoreVersion& records, RecordCounter record);
/// The attributes of the play and its song, for an object that the caller has begun.
void writeKeysOfPlay(JsonWriter& json, const PlayRow& play);

}  // namespace tavrion::ctl
