// Every list of Browse over a great library: no grouping and no sort may take more than 60 ms. The
// names are "browse/GROUPING/SORT"; there is no peer, the bar is the time itself. The eight tiles
// together ("browse/tiles") may take 50 ms, and the statistics of the largest genre, which a third
// of the songs have ("browse/statistics/largest-genre"), 20 ms.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <random>

#include "library/RVBrowseCollectionViewController.h"
#include "library/RVQueryManager+Results.h"
#include "library/RVQueryManager+Statistics.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/MediaSnapshotBuilder.h"

namespace tavrion::bench {
namespace {

constexpr unsigned songCount = 100000;
constexpr unsigned albumCount = 12000;
constexpr unsigned artistCount = 5000;
constexpr unsigned playlistCount = 300;

class Names {
  public:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    /// Two words, with capitals, articles and digits as in real libraries.
    std::string name() {
        return (below(6) == 0 ? "The " : "") + word() + " " + (below(20) == 0 ? "1999" : word());
    }
    NSDate date() {
        return NSDate::dateWithTimeIntervalSinceReferenceDate(4e8 + below(300'000'000));
    }

  private:
    std::string word() {
        std::string letters;
        for (unsigned length = 3 + below(8); letters.size() < length;) {
            letters += static_cast<char>((letters.empty() ? 'A' : 'a') + below(26));
        }
        return letters;
    }
    std::mt19937_64 random_{7};
};

void addSong(MediaSnapshotBuilder& builder, Names& names, unsigned number,
             const std::vector<std::string>& artists, const std::vector<std::string>& albums) {
    const unsigned album = number < albumCount ? number : names.below(albumCount);
    const bool isCompilation = album % 20 == 0;
    const std::string title = names.name();
    const std::string genre =
        album % 3 == 0 ? std::string("Genre") : fmt::format("Genre {}", album % 200);
    const std::string& own =
        artists[isCompilation ? names.below(artistCount) : album % artistCount];
    SongDescription song;
    song.persistentID = number + 1;
    song.title = title;
    song.artist = own;
    song.albumArtist = isCompilation ? std::string_view("Various Artists") : std::string_view(own);
    song.albumTitle = albums[album];
    song.genre = genre;
    song.isCompilation = isCompilation;
    song.playbackDuration = 100 + names.below(300);
    song.playCount = names.below(50);
    song.lastPlayedDate = song.playCount == 0 ? std::nullopt : std::optional(names.date());
    song.dateAdded = names.date();
    song.releaseDate = names.below(3) != 0 ? std::nullopt : std::optional(names.date());
    song.year = 1960 + album % 65;
    builder.addSong(song);
}

std::shared_ptr<const MediaSnapshot> greatLibrary() {
    Names names;
    std::vector<std::string> artists(artistCount);
    std::vector<std::string> albums(albumCount);
    std::generate(artists.begin(), artists.end(), [&] { return names.name(); });
    std::generate(albums.begin(), albums.end(), [&] { return names.name(); });
    MediaSnapshotBuilder builder;
    for (unsigned number = 0; number < songCount; ++number) {
        addSong(builder, names, number, artists, albums);
    }
    for (unsigned number = 0; number < playlistCount; ++number) {
        const std::string name = names.name();
        std::vector<std::uint64_t> songs(names.below(500));
        std::generate(songs.begin(), songs.end(), [&] { return 1 + names.below(songCount); });
        builder.addPlaylist({name, 1'000'000 + number, 0, false, number % 10 == 0, false, songs});
    }
    return builder.finish();
}

/// Plugged for the life of one measurement; the library is made once.
class BrowseEnvironment {
  public:
    explicit BrowseEnvironment(bool splitsCompilations) {
        defaults_->setObject(RVQueryManager::splitCompilationsKey, splitsCompilations);
        static const std::shared_ptr<const MediaSnapshot> snapshot = greatLibrary();
        library_.publish(snapshot);
    }

  private:
    FixedClock clock_{NSDate::dateWithTimeIntervalSinceReferenceDate(7e8)};
    Port<Clock>::Plug clockPlug_{clock_};
    Regional region_{*NSTimeZone::timeZoneWithName("Europe/Berlin"), "en_US"};
    Port<Regional>::Plug regionPlug_{region_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
    MPMediaLibrary library_;
    Port<MPMediaLibrary>::Plug libraryPlug_{library_};
};

struct Grouping {
    const char* name;
    MPMediaGrouping type;
    bool splitsCompilations = false;
};

constexpr std::array groupings{
    Grouping{"songs", MPMediaGrouping::title},
    Grouping{"albums", MPMediaGrouping::album},
    Grouping{"artists", MPMediaGrouping::albumArtist},
    Grouping{"artists-split", MPMediaGrouping::albumArtist, true},
    Grouping{"genres", MPMediaGrouping::genre},
    Grouping{"playlists", MPMediaGrouping::playlist},
};
constexpr std::array sorts{"alphabetical",  "play-count", "last-played",
                           "time-listened", "date-added", "release-date"};

void browse(benchmark::State& state, const Grouping& grouping, RVSortType sort) {
    const BrowseEnvironment environment(grouping.splitsCompilations);
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(
            RVQueryManager::resultsForQuery(nullptr, grouping.type, sort, false));
    }
}

void tiles(benchmark::State& state) {
    const BrowseEnvironment environment(false);
    for (auto step : state) {
        static_cast<void>(step);
        for (std::uint64_t index = 0; index < RVBrowseCollectionViewController::statisticCount;
             ++index) {
            benchmark::DoNotOptimize(RVBrowseCollectionViewController::statForIndex(index));
        }
    }
}

void statisticsOfLargestGenre(benchmark::State& state) {
    const BrowseEnvironment environment(false);
    const std::vector<MPMediaItemCollection> genres = MPMediaQuery::genresQuery().collections();
    const auto largest = std::max_element(
        genres.begin(), genres.end(),
        [](const auto& one, const auto& other) { return one.count() < other.count(); });
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(RVQueryManager::statsForMediaEntity(*largest));
    }
    state.counters["songs"] = static_cast<double>(largest->count());
}

void registerTimed(const std::string& name, void (*measure)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name.c_str(), measure)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(10);
}

bool registerAll() {
    registerTimed("browse/tiles", tiles);
    registerTimed("browse/statistics/largest-genre", statisticsOfLargestGenre);
    for (const Grouping& grouping : groupings) {
        for (RVSortType sort = 0; sort < sorts.size(); ++sort) {
            benchmark::RegisterBenchmark(
                fmt::format("browse/{}/{}", grouping.name, sorts[sort]).c_str(),
                [&grouping, sort](benchmark::State& state) { browse(state, grouping, sort); })
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime()
                ->Iterations(10);
        }
    }
    return true;
}

[[maybe_unused]] const bool isRegistered = registerAll();

}  // namespace
}  // namespace tavrion::bench
