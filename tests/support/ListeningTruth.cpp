#include "tests/support/ListeningTruth.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numeric>

#include "platform/foundation/NSDate.h"

namespace tavrion {
namespace {

constexpr double hour = 3600;
constexpr double day = 24 * hour;
/// 2026-03-01 12:00:00 UTC.
constexpr double beginning = 794059200;

/// Those in (36, end): the largest share of a span that is asked for is a sixth, and of two
/// different ones beyond 36 no sixths agree.
std::vector<std::uint32_t> primesBelow(std::uint32_t end) {
    std::vector<bool> isComposite(end, false);
    std::vector<std::uint32_t> primes;
    for (std::uint32_t n = 2; n < end; ++n) {
        if (isComposite[n]) {
            continue;
        }
        if (n > 36) {
            primes.push_back(n);
        }
        for (std::uint64_t multiple = std::uint64_t{n} * n; multiple < end; multiple += n) {
            isComposite[multiple] = true;
        }
    }
    return primes;
}

}  // namespace

ListeningTruth::ListeningTruth(std::size_t songs, std::mt19937& random)
    : random_(random),
      songs_(songs),
      now_(beginning),
      previousScan_(beginning),
      installation_(std::floor(beginning / day) * day) {
    for (std::size_t i = 0; i < songs; ++i) {
        songs_[i].title = fmt::format("Song {}", i);
        songs_[i].persistentID = nextIdentifier_++;
        songs_[i].count = 1 + below(40);
        songs_[i].lastPlayed = beginning - hour + static_cast<double>(i);
    }
}

std::string ListeningTruth::instantText(double seconds) {
    // Without the milliseconds, which an export does not have.
    return isoTextOfDate(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds)).substr(0, 19) +
           "Z";
}

std::string ListeningTruth::nowText() const {
    return instantText(now_);
}

double ListeningTruth::sinceDate() const {
    const double twoDaysAgo = now_ - 2 * day;
    return previousScan_ < twoDaysAgo ? installation_ : std::max(installation_, twoDaysAgo);
}

void ListeningTruth::playOn() {
    const double from = now_;
    const std::size_t hours = 1 + below(6 * 24);
    now_ = from + static_cast<double>(hours) * hour;
    changeIdentifiers();
    playSome(from, primesBelow(static_cast<std::uint32_t>(hours) * 3600));
}

// Before the plays of the round: whoever is also played then has a first sight with more than one
// new play, of which only the last can be known.
void ListeningTruth::changeIdentifiers() {
    constexpr std::size_t changes = 3;
    const double since = sinceDate();
    std::vector<Song*> seen;
    for (Song& song : songs_) {
        if (song.lastPlayed > since) {
            seen.push_back(&song);
        }
    }
    for (std::size_t i = 0; i < changes && !seen.empty(); ++i) {
        seen[below(seen.size())]->persistentID = nextIdentifier_++;
    }
}

void ListeningTruth::playSome(double from, const std::vector<std::uint32_t>& primes) {
    constexpr std::uint64_t rises[] = {1, 1, 1, 1, 1, 2, 3, 6};
    std::vector<std::uint32_t> spans;
    std::sample(primes.begin(), primes.end(), std::back_inserter(spans), songs_.size() / 7,
                random_);
    std::vector<std::size_t> chosen(songs_.size());
    std::iota(chosen.begin(), chosen.end(), std::size_t{0});
    std::shuffle(chosen.begin(), chosen.end(), random_);
    for (std::size_t i = 0; i < spans.size(); ++i) {
        Song& song = songs_[chosen[i]];
        // The youngest identifiers are those of this round.
        const bool isNew = song.persistentID + 3 >= nextIdentifier_;
        const std::uint64_t rise = isNew ? 1 : rises[below(std::size(rises))];
        song.count += rise;
        song.recorded += rise;
        song.lastPlayed = from + spans[i];
    }
}

void ListeningTruth::write(const std::filesystem::path& file) const {
    std::ofstream stream(file, std::ios::binary);
    stream << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
              "<key>Tracks</key><dict>\n";
    for (std::size_t i = 0; i < songs_.size(); ++i) {
        const Song& song = songs_[i];
        stream << fmt::format(
            "<key>{0}</key><dict><key>Track ID</key><integer>{0}</integer><key>Name</key>"
            "<string>{1}</string><key>Artist</key><string>Band {2}</string><key>Album</key>"
            "<string>Album {2}</string><key>Total Time</key><integer>{3}</integer>"
            "<key>Play Count</key><integer>{4}</integer><key>Play Date UTC</key><date>{5}</date>"
            "<key>Persistent ID</key><string>{6:016X}</string></dict>\n",
            i + 1, song.title, i / 10, 100000 + 1000 * i, song.count, instantText(song.lastPlayed),
            song.persistentID);
    }
    stream << "</dict><key>Playlists</key><array/></dict></plist>\n";
}

std::map<std::string, std::size_t> ListeningTruth::playsOfTitles() const {
    std::map<std::string, std::size_t> plays;
    for (const Song& song : songs_) {
        plays[song.title] = song.recorded;
    }
    return plays;
}

std::map<std::string, std::uint64_t> ListeningTruth::countsOfTitles() const {
    std::map<std::string, std::uint64_t> counts;
    for (const Song& song : songs_) {
        counts[song.title] = song.count;
    }
    return counts;
}

}  // namespace tavrion
