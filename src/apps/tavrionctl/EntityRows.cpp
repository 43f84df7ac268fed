#include "apps/tavrionctl/EntityRows.h"

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
    const auto title = RVMetadataManager::titleForMediaEntity(row.entity, std::nullopt);
    json.beginObject().key("rank");
    if (row.rank) {
        json.unsignedInteger(*row.rank);
    } else {
        json.null();
    }
    json.key("title");
    if (title) {
        json.text(title->textWithoutAttachments());
    } else {
        json.null();
    }
    json.key("subtitle").optionalText(RVMetadataManager::subtitleForMediaEntity(row.entity));
    json.key("property").text(row.property.textWithoutAttachments());
    json.key("persistentID").unsignedInteger(row.entity.persistentID());
    json.key("songs").unsignedInteger(songCount(row.entity)).endObject();
}

std::string lineOf(const EntityRow& row, const TerminalAbilities& abilities) {
    const auto title = RVMetadataManager::titleForMediaEntity(row.entity, UIFont{});
    std::string line = fmt::format(
        "{:>5}  {}  {}  {}", row.rank ? std::to_string(*row.rank) : std::string(),
        fitted(title.value_or(NSAttributedString("—")), titleWidth, abilities),
        fitted(RVMetadataManager::subtitleForMediaEntity(row.entity).value_or(""), subtitleWidth),
        printed(row.property, abilities));
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace tavrion::ctl
