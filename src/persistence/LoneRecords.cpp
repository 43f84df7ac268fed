#include "persistence/LoneRecords.h"

#include <algorithm>
#include <optional>

#include "recording/NerindaModel.h"

namespace tavrion {
namespace {

/// A table of more records than so many times the inserted ones is not walked.
constexpr std::size_t recordsWorthALookUp = 256;

using Compared = std::vector<std::vector<PropertyIndex>>;

/// The values by which records of a kind are compared; what has no value for the first is compared
/// in some other way.
const Compared& comparedBy(EntityIndex entity) {
    static const Compared histories{{PlaybackHistoryKey::title, PlaybackHistoryKey::duration},
                                    {PlaybackHistoryKey::storeID},
                                    {PlaybackHistoryKey::libraryID}};
    static const Compared plays{{PlayEventKey::eventDate}};
    static const Compared awards{{AchievementKey::identifier}};
    static const Compared nothing;
    switch (entity) {
        case NerindaEntity::PlaybackHistory:
            return histories;
        case NerindaEntity::PlayEvent:
            return plays;
        case NerindaEntity::Achievement:
            return awards;
        default:
            return nothing;
    }
}

std::optional<std::size_t> placeOf(RecordCounter record,
                                   std::span<const NSManagedObjectID> inserted) {
    if (record < inserted.front().counter || record > inserted.back().counter) {
        return std::nullopt;
    }
    // Mostly one context inserts at a time, and a record stands at its distance from the first.
    const std::size_t guess = record - inserted.front().counter;
    if (guess < inserted.size() && inserted[guess].counter == record) {
        return guess;
    }
    const auto found = std::lower_bound(
        inserted.begin(), inserted.end(), record,
        [](NSManagedObjectID id, RecordCounter each) { return id.counter < each; });
    return found->counter == record
               ? std::optional(static_cast<std::size_t>(found - inserted.begin()))
               : std::nullopt;
}

}  // namespace

LoneRecords::LoneRecords(const StoreVersion& version,
                         const std::vector<NSManagedObjectID>& inserted)
    : alone_(inserted.size(), false) {
    for (auto first = inserted.begin(); first != inserted.end();) {
        const auto last = std::find_if(first, inserted.end(), [first](NSManagedObjectID id) {
            return id.entity != first->entity;
        });
        lookThrough(version.table(first->entity), std::span(first, last),
                    static_cast<std::size_t>(first - inserted.begin()));
        first = last;
    }
}

void LoneRecords::lookThrough(const TableVersion& table,
                              std::span<const NSManagedObjectID> inserted, std::size_t first) {
    if (table.size() / recordsWorthALookUp > inserted.size()) {
        return;
    }
    const EntityIndex entity = inserted.front().entity;
    bool isFirst = true;
    for (const std::vector<PropertyIndex>& properties : comparedBy(entity)) {
        const std::size_t index = *nerindaModel()->entity(entity).indexOver(properties);
        table.indexes()[index]->forEachEntry([&](RecordCounter record, bool isShared) {
            if (isFirst || isShared) {
                if (const auto place = placeOf(record, inserted)) {
                    alone_[first + *place] = !isShared;
                }
            }
        });
        isFirst = false;
    }
}

}  // namespace tavrion
