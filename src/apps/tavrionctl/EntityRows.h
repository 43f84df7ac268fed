// Songs, albums, artists and the like as rows of a list: for machines and for people.
//
// Queue: the main thread, which in a command may walk the songs of a row. Absent: a list that shows
// no ranks gives none.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "apps/tavrionctl/AttributedText.h"
#include "apps/tavrionctl/JsonWriter.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion::ctl {

struct EntityRow {
    MPMediaEntity entity;
    std::optional<std::size_t> rank;
    /// The value at the right.
    NSAttributedString property;
};

/// {"rank","title","subtitle","property","persistentID","songs"}
void writeRow(JsonWriter& json, const EntityRow& row);
/// Rank, title, subtitle and value in columns, without blanks at the end.
std::string lineOf(const EntityRow& row, const TerminalAbilities& abilities);

}  // namespace tavrion::ctl
