#include "platform/mediaplayer/SongFilter.h"

#include <algorithm>

#include "platform/foundation/NSPredicate.h"
#include "platform/foundation/SearchFolding.h"

namespace tavrion {

namespace {

bool equals(const Value& left, const Value& right) {
    return NSPredicate::compare(left, NSPredicate::Operator::equal, right);
}

std::optional<SongGroup> groupOfPersistentID(std::string_view property) {
    if (property == MPMediaItemPropertyAlbumPersistentID) {
        return SongGroup::album;
    }
    if (property == MPMediaItemPropertyArtistPersistentID) {
        return SongGroup::artist;
    }
    if (property == MPMediaItemPropertyAlbumArtistPersistentID) {
        return SongGroup::albumArtist;
    }
    if (property == "composerPersistentID") {
        return SongGroup::composer;
    }
    if (property == MPMediaItemPropertyGenrePersistentID) {
        return SongGroup::genre;
    }
    return std::nullopt;
}

/// The kind of collection whose persistent identifier is the hash of that text.
std::optional<SongGroup> groupOfText(SongText text) {
    switch (text) {
        case SongText::artist:
            return SongGroup::artist;
        case SongText::albumArtist:
            return SongGroup::albumArtist;
        case SongText::composer:
            return SongGroup::composer;
        case SongText::genre:
            return SongGroup::genre;
        default:
            return std::nullopt;
    }
}

/// The kind of collection whose songs all have the same such text.
std::optional<SongGroup> groupThatShares(SongText text) {
    return text == SongText::albumTitle ? SongGroup::album : groupOfText(text);
}

/// Of a filter for any of several songs; sorted, each once.
std::optional<std::vector<std::uint64_t>> persistentIDsOf(
    const MPMediaPropertyPredicate& predicate) {
    const auto* values = predicate.value().get<Value::Array>();
    if (values == nullptr || predicate.property() != MPMediaItemPropertyPersistentID ||
        predicate.comparisonType() != MPMediaPredicateComparison::equalTo) {
        return std::nullopt;
    }
    std::vector<std::uint64_t> persistentIDs;
    for (const Value& value : *values) {
        if (const auto* number = value.get<std::int64_t>()) {
            persistentIDs.push_back(static_cast<std::uint64_t>(*number));
        }
    }
    std::sort(persistentIDs.begin(), persistentIDs.end());
    persistentIDs.erase(std::unique(persistentIDs.begin(), persistentIDs.end()),
                        persistentIDs.end());
    return persistentIDs;
}

}  // namespace

SongFilter::SongFilter(std::shared_ptr<const MediaSnapshot> snapshot,
                       const std::vector<MPMediaPropertyPredicate>& predicates,
                       bool includesNonLibrary, bool ignoresPlaylistProperties)
    : snapshot_(std::move(snapshot)), includesNonLibrary_(includesNonLibrary) {
    for (const MPMediaPropertyPredicate& predicate : predicates) {
        if (ignoresPlaylistProperties && isPlaylistProperty(predicate.property())) {
            continue;
        }
        Test test{
            &predicate, propertyOfMediaItem(predicate.property()), {}, persistentIDsOf(predicate)};
        const auto* needle = predicate.value().get<std::string>();
        if (predicate.comparisonType() == MPMediaPredicateComparison::contains &&
            needle != nullptr) {
            test.foldedNeedle = foldedForSearch(*needle);
        }
        tests_.push_back(std::move(test));
    }
}

std::vector<std::uint32_t> SongFilter::matches() const {
    std::vector<std::uint32_t> found;
    if (const auto few = candidates()) {
        std::copy_if(few->begin(), few->end(), std::back_inserter(found),
                     [this](std::uint32_t position) { return matches(position); });
        return found;
    }
    for (std::uint32_t position = 0; position < snapshot_->songs().size(); ++position) {
        if (matches(position)) {
            found.push_back(position);
        }
    }
    return found;
}

bool SongFilter::matches(std::uint32_t position) const {
    if (!includesNonLibrary_ &&
        (snapshot_->songs()[position].flags & SongRecord::outsideLibrary) != 0) {
        return false;
    }
    return std::all_of(tests_.begin(), tests_.end(),
                       [&](const Test& test) { return passes(position, test); });
}

/// The shortest list that an index offers, possibly too long; absent when no filter has an index.
std::optional<std::vector<std::uint32_t>> SongFilter::candidates() const {
    std::optional<std::span<const std::uint32_t>> shortest;
    for (const Test& test : tests_) {
        if (test.persistentIDs) {
            return positionsOfPersistentIDs(*test.persistentIDs);
        }
        const auto bucket = bucketOf(test);
        if (bucket && (!shortest || bucket->size() < shortest->size())) {
            shortest = bucket;
        }
    }
    if (!shortest) {
        return std::nullopt;
    }
    return std::vector<std::uint32_t>(shortest->begin(), shortest->end());
}

std::optional<std::span<const std::uint32_t>> SongFilter::bucketOf(const Test& test) const {
    const MPMediaPropertyPredicate& predicate = *test.predicate;
    if (predicate.comparisonType() != MPMediaPredicateComparison::equalTo ||
        test.property == nullptr) {
        return std::nullopt;
    }
    const MediaSnapshotParts& parts = snapshot_->parts();
    if (const auto* number = predicate.value().get<std::int64_t>()) {
        const auto bits = static_cast<std::uint64_t>(*number);
        if (predicate.property() == MPMediaItemPropertyPersistentID) {
            return parts.byPersistentID.bucket(mediaNumberHash(bits));
        }
        const auto group = groupOfPersistentID(predicate.property());
        return group ? std::optional(parts.byGroup[static_cast<std::size_t>(*group)].bucket(bits))
                     : std::nullopt;
    }
    const auto* text = predicate.value().get<std::string>();
    if (text == nullptr || text->empty() || !test.property->text) {
        return std::nullopt;
    }
    const std::uint64_t hash = mediaTextHash(*text);
    if (*test.property->text == SongText::title) {
        return parts.byTitle.bucket(hash);
    }
    if (*test.property->text == SongText::albumTitle) {
        return parts.byAlbumTitle.bucket(hash);
    }
    const auto group = groupOfText(*test.property->text);
    return group ? std::optional(parts.byGroup[static_cast<std::size_t>(*group)].bucket(hash))
                 : std::nullopt;
}

std::vector<std::uint32_t> SongFilter::positionsOfPersistentIDs(
    const std::vector<std::uint64_t>& persistentIDs) const {
    std::vector<std::uint32_t> positions;
    for (const std::uint64_t persistentID : persistentIDs) {
        if (const auto position = snapshot_->positionOfPersistentID(persistentID)) {
            positions.push_back(*position);
        }
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

bool SongFilter::contains(std::uint32_t position, const Test& test) const {
    if (test.property == nullptr || !test.property->text || test.foldedNeedle.empty()) {
        return false;
    }
    const auto group = groupThatShares(*test.property->text);
    const std::uint32_t rank =
        group ? snapshot_->songs()[position].groupRanks[static_cast<std::size_t>(*group)]
              : SongRecord::noGroup;
    if (rank == SongRecord::noGroup) {
        return containsAnew(position, test);
    }
    if (rank >= test.verdicts.size()) {
        test.verdicts.resize(std::max<std::size_t>(rank + 1, 2 * test.verdicts.size()));
    }
    std::optional<bool>& verdict = test.verdicts[rank];
    if (!verdict) {
        verdict = containsAnew(position, test);
    }
    return *verdict;
}

bool SongFilter::containsAnew(std::uint32_t position, const Test& test) const {
    const auto text = snapshot_->text(position, *test.property->text);
    return text && foldedForSearch(*text).find(test.foldedNeedle) != std::string::npos;
}

bool SongFilter::passes(std::uint32_t position, const Test& test) const {
    const Value& sought = test.predicate->value();
    if (test.predicate->comparisonType() == MPMediaPredicateComparison::contains) {
        return contains(position, test);
    }
    if (test.property == nullptr) {
        return sought.isAbsent();
    }
    if (const auto* text = sought.get<std::string>(); text != nullptr && test.property->text) {
        return snapshot_->text(position, *test.property->text) == std::string_view(*text);
    }
    if (test.persistentIDs) {
        return std::binary_search(test.persistentIDs->begin(), test.persistentIDs->end(),
                                  snapshot_->songs()[position].persistentID);
    }
    if (test.property->name == MPMediaItemPropertyMediaType) {
        return equals(snapshot_->songs()[position].mediaType, sought);
    }
    const MPMediaItem item(snapshot_, position);
    if (const auto* any = sought.get<Value::Array>()) {
        const Value value = test.property->read(item);
        return std::any_of(any->begin(), any->end(),
                           [&](const Value& one) { return equals(value, one); });
    }
    return equals(test.property->read(item), sought);
}

}  // namespace tavrion
