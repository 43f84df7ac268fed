#include "apps/tavrionctl/RowPrinting.h"

#include <fmt/format.h>

#include "apps/tavrionctl/TextTable.h"
#include "library/RVMetadataManager.h"

namespace tavrion::ctl {
namespace {

constexpr std::size_t titleWidth = 38;
constexpr std::size_t subtitleWidth = 26;

std::size_t songCount(const MPMediaEntity& entity) {
    return entity.collection() != nullptr ? entity.collection()->count() : 1;
}

}  // namespace

void writeRow(JsonWriter& json, const EntityRow& row) {
    json.beginObject().key("rank");
    if (row.number) {
        json.unsignedInteger(*row.number);
    } else {
        json.null();
    }
    json.key("title");
    if (row.title) {
        json.text(row.title->textWithoutAttachments());
    } else {
        json.null();
    }
    json.key("subtitle").optionalText(row.subtitle);
    json.key("property").text(row.property.textWithoutAttachments());
    json.key("persistentID").unsignedInteger(row.entity.persistentID());
    json.key("songs").unsignedInteger(songCount(row.entity)).endObject();
}

void writeRows(JsonWriter& json, const EntityRows& rows) {
    json.beginArray();
    for (std::size_t place = 0; place < rows.size(); ++place) {
        writeRow(json, rows.row(place));
    }
    json.endArray();
}

std::string lineOf(const EntityRow& row, const TerminalAbilities& abilities) {
    std::string line = fmt::format(
        "{:>5}  {}  {}  {}", row.number ? std::to_string(*row.number) : std::string(),
        fitted(row.title.value_or(NSAttributedString(RVMetadataManager::placeholder)), titleWidth,
               abilities),
        fitted(row.subtitle.value_or(""), subtitleWidth), printed(row.property, abilities));
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

void writeStatistics(JsonWriter& json, const std::vector<RVStatisticReference>& statistics) {
    json.beginArray();
    for (const RVStatisticReference& statistic : statistics) {
        json.beginObject().key("icon").text(statistic->icon() ? statistic->icon()->name() : "");
        json.key("value").text(statistic->value());
        json.key("caption").text(statistic->caption()).endObject();
    }
    json.endArray();
}

}  // namespace tavrion::ctl
