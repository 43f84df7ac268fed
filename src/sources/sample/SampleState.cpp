#include "sources/sample/SampleState.h"

#include <fmt/format.h>

#include <charconv>

#include "platform/foundation/JsonText.h"

namespace tavrion {

namespace {

using Array = Value::Array;
using Dictionary = Value::Dictionary;

constexpr std::int64_t formatNumber = 1;

std::string textOfID(std::uint64_t persistentID) {
    return fmt::format("{:016X}", persistentID);
}

Array listOf(const std::vector<std::uint64_t>& songs) {
    Array list;
    for (const std::uint64_t song : songs) {
        list.emplace_back(textOfID(song));
    }
    return list;
}

Dictionary membersOf(const SampleQueue& queue) {
    const std::optional<NSDate> since = queue.playingSince;
    return {{"songs", listOf(queue.songs)},
            {"index", queue.index},
            {"position", queue.position},
            {"playingSince", since ? Value(since->timeIntervalSinceReferenceDate()) : Value()}};
}

/// Reads the members of a document; after the first one that is not as it was written nothing else
/// is taken.
class SampleStateReader {
  public:
    std::string fault;

    SampleState state(const Value& document);

  private:
    /// The member of that name if there is one, else null.
    static const Value* find(const Value& object, const char* name) {
        const auto* members = object.get<Dictionary>();
        if (members == nullptr) {
            return nullptr;
        }
        const auto found = members->find(name);
        return found != members->end() ? &found->second : nullptr;
    }
    /// The member of that name if it is of that type, else null.
    template <class T>
    const T* member(const Value& object, const char* name) {
        const Value* found = find(object, name);
        const T* value = found != nullptr ? found->get<T>() : nullptr;
        if (value == nullptr) {
            failAt(name);
        }
        return value;
    }
    double number(const Value& object, const char* name) {
        const Value* found = find(object, name);
        if (const auto* whole = found != nullptr ? found->get<std::int64_t>() : nullptr) {
            return static_cast<double>(*whole);
        }
        const auto* number = member<double>(object, name);
        return number != nullptr ? *number : 0;
    }
    std::uint64_t identifier(const std::string& text) {
        std::uint64_t number = 0;
        const char* const end = text.data() + text.size();
        if (text.size() != 16 || std::from_chars(text.data(), end, number, 16).ptr != end) {
            fail("a persistent identifier is not 16 hexadecimal digits");
        }
        return number;
    }
    std::vector<std::uint64_t> songs(const Value& object) {
        std::vector<std::uint64_t> list;
        if (const auto* found = member<Array>(object, "songs")) {
            for (const Value& song : *found) {
                const auto* text = song.get<std::string>();
                list.push_back(identifier(text != nullptr ? *text : ""));
            }
        }
        return list;
    }
    void failAt(const char* name) {
        fail(fmt::format("\"{}\" is missing or not what it should be", name));
    }
    void fail(std::string text) {
        if (fault.empty()) {
            fault = std::move(text);
        }
    }
    void readLikes(const Value& document, SampleState& state);
    void readPlaylists(const Value& document, SampleState& state);
    void readEndings(const Value& document, SampleState& state);
    void readQueue(const Value& document, SampleState& state);
};

void SampleStateReader::readLikes(const Value& document, SampleState& state) {
    const auto* likes = member<Dictionary>(document, "likedStates");
    if (likes == nullptr) {
        return;
    }
    for (const auto& [song, liked] : *likes) {
        const auto* number = liked.get<std::int64_t>();
        if (number == nullptr || *number < 0 || *number > 3) {
            fail("a liked state is not a number from 0 to 3");
            return;
        }
        state.likedStates[identifier(song)] = static_cast<std::uint32_t>(*number);
    }
}

void SampleStateReader::readPlaylists(const Value& document, SampleState& state) {
    const auto* playlists = member<Array>(document, "playlists");
    for (std::size_t i = 0; playlists != nullptr && i < playlists->size(); ++i) {
        const Value& entry = (*playlists)[i];
        const auto* name = member<std::string>(entry, "name");
        const auto* persistentID = member<std::string>(entry, "persistentID");
        if (name != nullptr && persistentID != nullptr) {
            state.playlists.push_back({identifier(*persistentID), *name, songs(entry)});
        }
    }
}

void SampleStateReader::readEndings(const Value& document, SampleState& state) {
    const auto* endings = member<Array>(document, "played");
    for (std::size_t i = 0; endings != nullptr && i < endings->size(); ++i) {
        const Value& entry = (*endings)[i];
        const auto* song = member<std::string>(entry, "song");
        const auto* isWhole = member<bool>(entry, "whole");
        const double date = number(entry, "date");
        if (song != nullptr && isWhole != nullptr) {
            state.endings.push_back({identifier(*song),
                                     NSDate::dateWithTimeIntervalSinceReferenceDate(date),
                                     *isWhole});
        }
    }
}

void SampleStateReader::readQueue(const Value& document, SampleState& state) {
    if (member<Dictionary>(document, "player") == nullptr) {
        return;
    }
    const Value& queue = *find(document, "player");
    state.queue.songs = songs(queue);
    state.queue.position = number(queue, "position");
    const auto* index = member<std::int64_t>(queue, "index");
    state.queue.index = index != nullptr ? static_cast<std::size_t>(*index) : 0;
    if (state.queue.index > state.queue.songs.size() || state.queue.position < 0) {
        fail("the player stands outside of its queue");
    }
    if (const Value* shuffle = find(queue, "shuffle")) {
        const auto* order = shuffle->get<std::int64_t>();
        if (order == nullptr || *order < 1 || *order > 3) {
            fail("the player's order is not a number from 1 to 3");
            return;
        }
        state.shuffle = static_cast<SampleShuffle>(*order);
    }
    const Value* since = find(queue, "playingSince");
    if (since != nullptr && !since->isAbsent()) {
        state.queue.playingSince =
            NSDate::dateWithTimeIntervalSinceReferenceDate(number(queue, "playingSince"));
    }
}

SampleState SampleStateReader::state(const Value& document) {
    SampleState state;
    if (document.get<Dictionary>() == nullptr) {
        fail("it is not JSON");
        return state;
    }
    const auto* format = member<std::int64_t>(document, "format");
    if (format == nullptr || *format != formatNumber) {
        fail("it was written by another version of the program");
        return state;
    }
    readLikes(document, state);
    readPlaylists(document, state);
    readEndings(document, state);
    readQueue(document, state);
    return state;
}

}  // namespace

std::string SampleState::text() const {
    Dictionary likes;
    for (const auto& [song, likedState] : likedStates) {
        likes[textOfID(song)] = static_cast<std::int64_t>(likedState);
    }
    Array lists;
    for (const SampleUserPlaylist& playlist : playlists) {
        lists.emplace_back(Dictionary{{"persistentID", textOfID(playlist.persistentID)},
                                      {"name", playlist.name},
                                      {"songs", listOf(playlist.songs)}});
    }
    Array played;
    for (const SampleEnding& ending : endings) {
        played.emplace_back(Dictionary{{"song", textOfID(ending.song)},
                                       {"date", ending.date.timeIntervalSinceReferenceDate()},
                                       {"whole", ending.isWhole}});
    }
    Dictionary player = membersOf(queue);
    player["shuffle"] = static_cast<std::int64_t>(shuffle);
    const Dictionary document{{"format", formatNumber},
                              {"likedStates", std::move(likes)},
                              {"playlists", std::move(lists)},
                              {"played", std::move(played)},
                              {"player", std::move(player)}};
    return JsonText::textOf(document, 1) + "\n";
}

Result<SampleState> SampleState::fromText(std::string_view text) {
    SampleStateReader reader;
    SampleState state = reader.state(JsonText::valueOf(text).value_or(Value()));
    if (!reader.fault.empty()) {
        return NSError{reader.fault, {}};
    }
    return state;
}

}  // namespace tavrion
