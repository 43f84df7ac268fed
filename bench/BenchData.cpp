#include "bench/BenchData.h"

#include <fmt/format.h>
#include <fmt/os.h>

#include <array>
#include <cmath>
#include <random>

#include "platform/mediaplayer/MediaSnapshotBuilder.h"

namespace tavrion::bench {
namespace {

constexpr std::array<const char*, 24> words{
    "Morning", "River",  "Stone", "Silver",  "Northern", "Garden", "Winter",  "Lantern",
    "Harbour", "Meadow", "Glass", "Evening", "Ocean",    "Paper",  "Golden",  "Mountain",
    "Shadow",  "Willow", "Ember", "Distant", "Summer",   "Velvet", "Crystal", "Lonely"};
constexpr std::array<const char*, 12> genres{"Rock",  "Jazz",    "Klassik", "Pop",
                                             "Folk",  "Chanson", "Ambient", "Soul",
                                             "Blues", "Opera",   "Country", "Electronic"};

std::string words3(std::size_t number) {
    return fmt::format("{} {} {}", words[number % 24], words[number / 24 % 24],
                       words[number / 576 % 24]);
}

std::string hex(std::uint64_t number) {
    return fmt::format("{:016X}", number);
}

}  // namespace

std::vector<BenchSong> makeSongs(std::size_t count) {
    std::mt19937_64 random(7);
    std::vector<BenchSong> songs(count);
    for (std::size_t i = 0; i < count; ++i) {
        BenchSong& song = songs[i];
        const std::size_t album = i / 9;
        song.title = fmt::format("{} {}", words3(random()), i);
        song.artist = fmt::format("The {} Ensemble {}", words3(album / 2), album / 2);
        song.albumTitle = fmt::format("{} No. {}", words3(album * 7), album);
        song.albumID = fmt::format("{}\u2014\u2014{}", song.artist, song.albumTitle);
        song.genre = genres[album % genres.size()];
        song.persistentID = (random() | 1U) ^ (std::uint64_t{i} << 20U);
        song.libraryID = hex(song.persistentID);
        song.storeID = fmt::format("{:08X}-0000-4000-8000-{:012X}", i, random() >> 16U);
        song.duration = 120 + static_cast<double>(random() % 240000) / 1000;
        // No two songs were played last at the same instant.
        song.lastPlayed =
            endOfYears - 0.4 * static_cast<double>(i) - static_cast<double>(random() % 300) / 1000;
        song.released = endOfYears - static_cast<double>(random() % 315576000);
        song.playCount = 1 + random() % 60;
        song.skipCount = random() % 5;
    }
    return songs;
}

std::vector<peer_play> makePlays(std::size_t count, std::size_t songs) {
    std::mt19937_64 random(11);
    std::vector<peer_play> plays(count);
    const double step = tenYears / static_cast<double>(count + 1);
    for (std::size_t i = 0; i < count; ++i) {
        const double place = static_cast<double>(random() >> 11U) * 0x1p-53;
        plays[i].date = endOfYears - tenYears + step * (static_cast<double>(i) + place);
        plays[i].is_estimate = random() % 4 == 0 ? 1 : 0;
        const double favourite = static_cast<double>(random() >> 11U) * 0x1p-53;
        plays[i].song =
            1 + static_cast<std::uint32_t>(favourite * favourite * static_cast<double>(songs));
    }
    return plays;
}

std::vector<peer_song> peerSongs(const std::vector<BenchSong>& songs) {
    std::vector<peer_song> views;
    views.reserve(songs.size());
    for (const BenchSong& song : songs) {
        views.push_back({song.title.c_str(), song.artist.c_str(), song.albumID.c_str(),
                         song.genre.c_str(), song.storeID.c_str(), song.libraryID.c_str(),
                         song.duration, song.lastPlayed, static_cast<std::int64_t>(song.playCount),
                         static_cast<std::int64_t>(song.skipCount)});
    }
    return views;
}

std::shared_ptr<const MediaSnapshot> snapshotOf(const std::vector<BenchSong>& songs) {
    MediaSnapshotBuilder builder;
    builder.reserve(songs.size(), songs.size() * 120);
    for (const BenchSong& song : songs) {
        SongDescription description;
        description.persistentID = song.persistentID;
        description.title = song.title;
        description.artist = song.artist;
        description.albumArtist = song.artist;
        description.albumTitle = song.albumTitle;
        description.genre = song.genre;
        description.libraryID = song.libraryID;
        description.playbackDuration = song.duration;
        description.fileSize = song.duration * 32000;
        description.playCount = song.playCount;
        description.skipCount = song.skipCount;
        description.lastPlayedDate =
            NSDate::dateWithTimeIntervalSinceReferenceDate(song.lastPlayed);
        description.releaseDate = NSDate::dateWithTimeIntervalSinceReferenceDate(song.released);
        description.dateAdded =
            NSDate::dateWithTimeIntervalSinceReferenceDate(song.lastPlayed - 90000000);
        builder.addSong(description);
    }
    return builder.finish();
}

void writeMusicXml(const std::vector<BenchSong>& songs, const std::string& file) {
    const auto instant = [](double seconds) {
        return isoTextOfDate(NSDate::dateWithTimeIntervalSinceReferenceDate(std::floor(seconds)))
                   .substr(0, 19) +
               "Z";
    };
    auto out = fmt::output_file(file);
    out.print(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n<dict>\n"
        "\t<key>Major Version</key><integer>1</integer>\n\t<key>Tracks</key>\n\t<dict>\n");
    const auto text = [&](const char* key, const std::string& value) {
        out.print("\t\t\t<key>{}</key><string>{}</string>\n", key, value);
    };
    const auto number = [&](const char* key, auto value) {
        out.print("\t\t\t<key>{}</key><integer>{}</integer>\n", key, value);
    };
    const auto date = [&](const char* key, double seconds) {
        out.print("\t\t\t<key>{}</key><date>{}</date>\n", key, instant(seconds));
    };
    for (std::size_t i = 0; i < songs.size(); ++i) {
        const BenchSong& song = songs[i];
        out.print("\t\t<key>{}</key>\n\t\t<dict>\n", i + 100);
        number("Track ID", i + 100);
        number("Size", static_cast<std::int64_t>(song.duration * 32000));
        number("Total Time", static_cast<std::int64_t>(song.duration * 1000));
        number("Disc Number", 1);
        number("Disc Count", 1);
        number("Track Number", i % 9 + 1);
        number("Track Count", 9);
        number("Year", 1990 + i % 30);
        date("Date Modified", song.lastPlayed - 80000000);
        date("Date Added", song.lastPlayed - 90000000);
        number("Bit Rate", 256);
        number("Sample Rate", 44100);
        number("Play Count", song.playCount);
        number("Play Date", 3000000000U + i);
        date("Play Date UTC", song.lastPlayed);
        number("Skip Count", song.skipCount);
        date("Release Date", song.released);
        number("Artwork Count", 1);
        text("Persistent ID", song.libraryID);
        text("Track Type", "File");
        text("Name", song.title);
        text("Artist", song.artist);
        text("Album Artist", song.artist);
        text("Album", song.albumTitle);
        text("Genre", song.genre);
        text("Kind", "AAC audio file");
        text("Sort Name", song.title);
        text("Sort Artist", song.artist.substr(4));
        text("Sort Album Artist", song.artist.substr(4));
        text("Sort Album", song.albumTitle);
        text("Location", fmt::format("file:///Users/listener/Music/Library/{}/{}/{:02} {}.m4a",
                                     song.artist, song.albumTitle, i % 9 + 1, song.title));
        out.print("\t\t</dict>\n");
    }
    out.print("\t</dict>\n\t<key>Playlists</key>\n\t<array>\n\t</array>\n</dict>\n</plist>\n");
}

}  // namespace tavrion::bench
