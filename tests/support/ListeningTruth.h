// A music library that a test makes up and plays on, as the file that the program reads, and what
// the program must have recorded of it.
//
// Queue: the test's thread. Instants are seconds since 2001-01-01 UTC. Time goes on in rounds, each
// with a scan at its end. Every play has an instant of its own: the last plays of a round are prime
// numbers of seconds behind its beginning, so that no share of one span is a share of another.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tavrion {

class ListeningTruth {
  public:
    /// `songs` songs, each played before the first scan.
    ListeningTruth(std::size_t songs, std::mt19937& random);

    /// When the next scan looks; moves on with each round.
    double now() const { return now_; }
    /// The same as `--now` wants it.
    std::string nowText() const;
    /// Lets an hour to six days pass, in which some songs are played; a few lose their identifier,
    /// as after a new import of their files.
    void playOn();
    /// Lets time pass without a play.
    void pass(double seconds) { now_ += seconds; }
    /// A scan has recorded everything up to now.
    void noteScan() { previousScan_ = now_; }

    /// The library as an exported file.
    void write(const std::filesystem::path& file) const;
    std::size_t songCount() const { return songs_.size(); }
    /// How many plays of each title must be recorded once everything is.
    std::map<std::string, std::size_t> playsOfTitles() const;
    /// The library's own counts.
    std::map<std::string, std::uint64_t> countsOfTitles() const;

  private:
    struct Song {
        std::string title;
        std::uint64_t persistentID = 0;
        std::uint64_t count = 1;
        double lastPlayed = 0;
        std::size_t recorded = 1;
    };
    static std::string instantText(double seconds);
    std::size_t below(std::size_t bound) { return random_() % bound; }
    /// From when on the program looks at songs, by its rule.
    double sinceDate() const;
    void playSome(double from, const std::vector<std::uint32_t>& primes);
    void changeIdentifiers();

    std::mt19937& random_;
    std::vector<Song> songs_;
    double now_;
    double previousScan_;
    double installation_;
    std::uint64_t nextIdentifier_ = 1;
};

}  // namespace tavrion
