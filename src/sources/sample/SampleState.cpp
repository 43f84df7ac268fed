#include "sources/sample/SampleState.h"

#include <fmt/format.h>

#include <charconv>
#include <nlohmann/json.hpp>

namespace tavrion {

namespace {

using nlohmann::json;

constexpr int formatNumber = 1;

std::string textOfID(std::uint64_t persistentID) {
    return fmt::format("{:016X}", persistentID);
}

json jsonOf(const std::vector<std::uint64_t>& songs) {
    json list = json::array();
    for (const std::uint64_t song : songs) {
        list.push_back(textOfID(song));
    }
    return list;
}

json jsonOf(const SampleQueue& queue) {
    const std::optional<NSDate> since = queue.playingSince;
    return {{"songs", jsonOf(queue.songs)},
            {"index", queue.index},
            {"position", queue.position},
            {"playingSince", since ? json(since->timeIntervalSinceReferenceDate()) : json()}};
}

/// Reads the members of a document; after the first one that is not as it was written nothing else
/// is taken.
class SampleStateReader {
  public:
    std::string fault;

    /// The member of that name if it is of that type, else null.
    const json* member(const json& object, const char* name, bool (json::*isType)() const) {
        const auto found = object.find(name);
        if (found == object.end() || !((*found).*isType)()) {
            return fail(fmt::format("\"{}\" is missing or not what it should be", name));
        }
        return &*found;
    }
    std::uint64_t identifier(const json& value) {
        std::uint64_t number = 0;
        const std::string text = value.is_string() ? value.get<std::string>() : std::string();
        const char* const end = text.data() + text.size();
        if (text.size() != 16 || std::from_chars(text.data(), end, number, 16).ptr != end) {
            fail("a persistent identifier is not 16 hexadecimal digits");
        }
        return number;
    }
    std::vector<std::uint64_t> songs(const json& object) {
        std::vector<std::uint64_t> list;
        if (const json* found = member(object, "songs", &json::is_array)) {
            for (const json& song : *found) {
                list.push_back(identifier(song));
            }
        }
        return list;
    }
    double number(const json& object, const char* name) {
        const json* found = member(object, name, &json::is_number);
        return found != nullptr ? found->get<double>() : 0;
    }
    SampleState state(const json& document);

  private:
    std::nullptr_t fail(std::string text) {
        if (fault.empty()) {
            fault = std::move(text);
        }
        return nullptr;
    }
    void readLikes(const json& document, SampleState& state);
    void readPlaylists(const json& document, SampleState& state);
    void readEndings(const json& document, SampleState& state);
    void readQueue(const json& document, SampleState& state);
};

void SampleStateReader::readLikes(const json& document, SampleState& state) {
    const json* likes = member(document, "likedStates", &json::is_object);
    if (likes == nullptr) {
        return;
    }
    for (const auto& [song, liked] : likes->items()) {
        if (!liked.is_number_unsigned() || liked.get<std::uint64_t>() > 3) {
            fail("a liked state is not a number from 0 to 3");
            return;
        }
        state.likedStates[identifier(song)] = liked.get<std::uint32_t>();
    }
}

void SampleStateReader::readPlaylists(const json& document, SampleState& state) {
    const json* playlists = member(document, "playlists", &json::is_array);
    for (std::size_t i = 0; playlists != nullptr && i < playlists->size(); ++i) {
        const json& entry = (*playlists)[i];
        const json* name = member(entry, "name", &json::is_string);
        const json* persistentID = member(entry, "persistentID", &json::is_string);
        if (name != nullptr && persistentID != nullptr) {
            state.playlists.push_back(
                {identifier(*persistentID), name->get<std::string>(), songs(entry)});
        }
    }
}

void SampleStateReader::readEndings(const json& document, SampleState& state) {
    const json* endings = member(document, "played", &json::is_array);
    for (std::size_t i = 0; endings != nullptr && i < endings->size(); ++i) {
        const json& entry = (*endings)[i];
        const json* song = member(entry, "song", &json::is_string);
        const json* isWhole = member(entry, "whole", &json::is_boolean);
        const double date = number(entry, "date");
        if (song != nullptr && isWhole != nullptr) {
            state.endings.push_back({identifier(*song),
                                     NSDate::dateWithTimeIntervalSinceReferenceDate(date),
                                     isWhole->get<bool>()});
        }
    }
}

void SampleStateReader::readQueue(const json& document, SampleState& state) {
    const json* queue = member(document, "player", &json::is_object);
    if (queue == nullptr) {
        return;
    }
    state.queue.songs = songs(*queue);
    state.queue.position = number(*queue, "position");
    const json* index = member(*queue, "index", &json::is_number_unsigned);
    state.queue.index = index != nullptr ? index->get<std::size_t>() : 0;
    if (state.queue.index > state.queue.songs.size() || state.queue.position < 0) {
        fail("the player stands outside of its queue");
    }
    if (queue->contains("playingSince") && !queue->at("playingSince").is_null()) {
        state.queue.playingSince =
            NSDate::dateWithTimeIntervalSinceReferenceDate(number(*queue, "playingSince"));
    }
}

SampleState SampleStateReader::state(const json& document) {
    SampleState state;
    if (!document.is_object()) {
        fail("it is not JSON");
        return state;
    }
    const json* format = member(document, "format", &json::is_number_integer);
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
    json document = {{"format", formatNumber},
                     {"likedStates", json::object()},
                     {"playlists", json::array()},
                     {"played", json::array()},
                     {"player", jsonOf(queue)}};
    for (const auto& [song, likedState] : likedStates) {
        document["likedStates"][textOfID(song)] = likedState;
    }
    for (const SampleUserPlaylist& playlist : playlists) {
        document["playlists"].push_back({{"persistentID", textOfID(playlist.persistentID)},
                                         {"name", playlist.name},
                                         {"songs", jsonOf(playlist.songs)}});
    }
    for (const SampleEnding& ending : endings) {
        document["played"].push_back({{"song", textOfID(ending.song)},
                                      {"date", ending.date.timeIntervalSinceReferenceDate()},
                                      {"whole", ending.isWhole}});
    }
    return document.dump(1, ' ', false, json::error_handler_t::replace) + "\n";
}

Result<SampleState> SampleState::fromText(std::string_view text) {
    SampleStateReader reader;
    const json document = json::parse(text, nullptr, false);
    SampleState state = reader.state(document);
    if (!reader.fault.empty()) {
        return NSError{reader.fault, {}};
    }
    return state;
}

}  // namespace tavrion
