#include "bench/RowFiles.h"

#include <fmt/os.h>

#include "bench/TrendingWork.h"

namespace tavrion::bench {
namespace {

void writeSongs(const std::string& file) {
    auto out = fmt::output_file(file);
    out.print("id\ttitle\tartist\talbumID\tgenre\tduration\tlastEventDate\n");
    std::size_t id = 0;
    for (const BenchSong& song : fixtures().songs) {
        out.print("{}\t{}\t{}\t{}\t{}\t{}\t{}\n", ++id, song.title, song.artist, song.albumID,
                  song.genre, song.duration, song.lastPlayed);
    }
}

void writePlays(const std::string& file) {
    auto out = fmt::output_file(file);
    out.print("eventDate\tparentHistory\n");
    for (const peer_play& play : fixtures().plays) {
        out.print("{}\t{}\n", play.date, play.song);
    }
}

void writeRanking(const std::string& file) {
    TrendingWork work(lifetimeStart, lifetimeEnd);
    const TrendingSnapshot& ranking = work.update();
    auto out = fmt::output_file(file);
    for (const TrendingRow& row : ranking.songs) {
        out.print("song\t{}\t{}\n", *row->entity.item()->title(), row->playCount);
    }
    for (const TrendingRow& row : ranking.collections) {
        out.print("artist\t{}\t{}\n", *row->entity.representativeItem()->albumArtist(),
                  row->playCount);
    }
}

}  // namespace

void writeRows(const std::string& directory) {
    writeSongs(directory + "/songs.tsv");
    writePlays(directory + "/plays.tsv");
    auto range = fmt::output_file(directory + "/range.tsv");
    range.print("{}\t{}\n", lifetimeStart, lifetimeEnd);
    writeRanking(directory + "/ranking.tsv");
}

}  // namespace tavrion::bench
