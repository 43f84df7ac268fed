#include "platform/mediaplayer/SongGrouping.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <string>
#include <tuple>
#include <unordered_map>

#include "platform/foundation/NSString+Entended.h"

namespace tavrion {

namespace {

std::string_view textOf(const SongRecord& song, SongText which, std::string_view texts) {
    const TextReference reference = song.texts[static_cast<std::size_t>(which)];
    return reference.isAbsent() ? std::string_view()
                                : texts.substr(reference.offset, reference.length);
}

/// The first bytes of a sort key as a number, so that most comparisons touch no string.
std::uint64_t keyPrefix(const std::string& key) {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < sizeof(prefix); ++i) {
        const auto byte = i < key.size() ? static_cast<unsigned char>(key[i]) : 0U;
        prefix = (prefix << 8U) | byte;
    }
    return prefix;
}

struct SortEntry {
    std::uint64_t prefix;
    std::uint32_t number;
};

/// Sorts numbers 0 to names.size() - 1 by the collation of their names, then by the names' bytes,
/// then by `ties`.
std::vector<std::uint32_t> sortedByName(const std::vector<std::string_view>& names,
                                        const std::vector<std::uint64_t>& ties) {
    const std::vector<std::string> keys = collationKeys(names);
    std::vector<SortEntry> entries;
    entries.reserve(names.size());
    for (std::uint32_t i = 0; i < names.size(); ++i) {
        entries.push_back({keyPrefix(keys[i]), i});
    }
    std::sort(entries.begin(), entries.end(), [&](const SortEntry& a, const SortEntry& b) {
        if (a.prefix != b.prefix) {
            return a.prefix < b.prefix;
        }
        return std::tie(keys[a.number], names[a.number], ties[a.number]) <
               std::tie(keys[b.number], names[b.number], ties[b.number]);
    });
    std::vector<std::uint32_t> sorted;
    sorted.reserve(entries.size());
    for (const SortEntry& entry : entries) {
        sorted.push_back(entry.number);
    }
    return sorted;
}

SongText nameOfGroup(SongGroup group) {
    switch (group) {
        case SongGroup::album:
            return SongText::albumTitle;
        case SongGroup::artist:
            return SongText::artist;
        case SongGroup::albumArtist:
            return SongText::albumArtist;
        case SongGroup::composer:
            return SongText::composer;
        case SongGroup::genre:
            return SongText::genre;
    }
    return SongText::title;
}

bool keepsNameless(SongGroup group) {
    return group != SongGroup::composer && group != SongGroup::genre;
}

std::uint64_t groupPersistentID(const SongRecord& song, SongGroup group, std::string_view texts) {
    const std::string_view name = textOf(song, nameOfGroup(group), texts);
    if (group == SongGroup::album) {
        const std::string_view artist = textOf(song, SongText::albumArtist, texts);
        const std::uint64_t artistHash = artist.empty() ? 0 : mediaTextHash(artist);
        const std::uint64_t both = mediaNumberHash(mediaTextHash(name) + 31 * artistHash);
        return both == 0 ? 1 : both;
    }
    return name.empty() ? 0 : mediaTextHash(name);
}

/// The distinct collections of one kind, in the order in which songs name them.
struct Collections {
    std::vector<std::uint64_t> persistentIDs;
    std::vector<std::string_view> names;
    std::unordered_map<std::uint64_t, std::uint32_t> numbers;
};

void rankCollections(std::vector<SongRecord>& songs, std::size_t group,
                     const Collections& collections, const std::vector<std::uint32_t>& numbers) {
    const std::vector<std::uint32_t> sorted =
        sortedByName(collections.names, collections.persistentIDs);
    const bool nameless = keepsNameless(static_cast<SongGroup>(group));
    std::vector<std::uint32_t> ranks(sorted.size());
    std::uint32_t rank = 0;
    for (const bool named : {true, false}) {
        for (const std::uint32_t number : sorted) {
            if (collections.names[number].empty() == named) {
                continue;
            }
            ranks[number] = named || nameless ? rank++ : SongRecord::noGroup;
        }
    }
    for (std::size_t i = 0; i < songs.size(); ++i) {
        songs[i].groupRanks[group] = ranks[numbers[i]];
    }
}

}  // namespace

std::vector<std::uint32_t> libraryOrder(const std::vector<SongRecord>& songs,
                                        std::string_view texts) {
    std::vector<std::string_view> names;
    std::vector<std::uint64_t> ties;
    names.reserve(songs.size());
    ties.reserve(songs.size());
    for (const SongRecord& song : songs) {
        const std::string_view sortTitle = textOf(song, SongText::sortTitle, texts);
        names.push_back(sortTitle.empty() ? textOf(song, SongText::title, texts) : sortTitle);
        ties.push_back(song.persistentID);
    }
    return sortedByName(names, ties);
}

void groupSongs(std::vector<SongRecord>& songs, std::string_view texts) {
    std::vector<std::uint32_t> numbers(songs.size());
    for (std::size_t group = 0; group < songGroupCount; ++group) {
        Collections collections;
        const auto kind = static_cast<SongGroup>(group);
        for (std::size_t i = 0; i < songs.size(); ++i) {
            const std::uint64_t persistentID = groupPersistentID(songs[i], kind, texts);
            songs[i].groupPersistentIDs[group] = persistentID;
            const auto [found, isNew] = collections.numbers.try_emplace(
                persistentID, static_cast<std::uint32_t>(collections.names.size()));
            if (isNew) {
                collections.persistentIDs.push_back(persistentID);
                collections.names.push_back(textOf(songs[i], nameOfGroup(kind), texts));
            }
            numbers[i] = found->second;
        }
        rankCollections(songs, group, collections, numbers);
    }
}

PositionIndexArrays PositionIndexArrays::build(const std::vector<std::uint64_t>& hashes) {
    PositionIndexArrays index;
    const std::size_t buckets = std::bit_ceil(std::max<std::size_t>(hashes.size(), 1));
    index.starts.assign(buckets + 1, 0);
    index.entries.resize(hashes.size());
    for (const std::uint64_t hash : hashes) {
        ++index.starts[(hash & (buckets - 1)) + 1];
    }
    std::partial_sum(index.starts.begin(), index.starts.end(), index.starts.begin());
    std::vector<std::uint32_t> next(index.starts.begin(), index.starts.end() - 1);
    for (std::uint32_t position = 0; position < hashes.size(); ++position) {
        index.entries[next[hashes[position] & (buckets - 1)]++] = position;
    }
    return index;
}

}  // namespace tavrion
