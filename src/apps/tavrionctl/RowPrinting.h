// The rows and tiles of the library's pages: for machines and for people.
//
// Queue: the main thread.
#pragma once

#include <string>
#include <vector>

#include "apps/tavrionctl/AttributedText.h"
#include "apps/tavrionctl/JsonWriter.h"
#include "library/EntityRows.h"
#include "library/RVStatistic.h"

namespace tavrion::ctl {

/// {"rank","title","subtitle","property","persistentID","songs"}
void writeRow(JsonWriter& json, const EntityRow& row);
/// An array of them. Each row is made when its turn comes.
void writeRows(JsonWriter& json, const EntityRows& rows);
/// Number, title, subtitle and value in columns, without blanks at the end.
std::string lineOf(const EntityRow& row, const TerminalAbilities& abilities);
/// [{"icon","value","caption"}]
void writeStatistics(JsonWriter& json, const std::vector<RVStatisticReference>& statistics);

}  // namespace tavrion::ctl
