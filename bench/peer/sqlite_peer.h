/* The peer: what a plain C program on SQLite does with the same rows. Every function is one piece
   of work that is timed as a whole; a failure ends the process with one line. */
#ifndef BENCH_PEER_SQLITE_PEER_H
#define BENCH_PEER_SQLITE_PEER_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct peer_song {
    const char *title, *artist, *album_id, *genre, *store_id, *library_id;
    double duration, last_event;
    int64_t play_count, skip_count;
};

struct peer_play {
    double date;
    int32_t is_estimate;
    uint32_t song; /* its row id */
};

struct peer_totals {
    int64_t plays, songs;
    double seconds;
};

enum { peer_most_songs = 100, peer_most_artists = 15 };

/* Best first; how many plays each has, and the row ids of the songs. */
struct peer_ranking {
    size_t songs, artists;
    int64_t song_ids[peer_most_songs], song_plays[peer_most_songs];
    int64_t artist_plays[peer_most_artists];
};

/* Makes a file with the tables of `schema`, in WAL mode. */
void peer_create(const char* file, const char* schema);
/* Inserts all rows in one transaction that is synced to the disk, from row id 1 on. */
void peer_insert(const char* file, const struct peer_song* songs, size_t song_count,
                 const struct peer_play* plays, size_t play_count);
/* Indexes for what is looked up: title with duration, both identifiers, the date and the song of a
 * play. */
void peer_index(const char* file);
/* Reads every column of every row; gives how many rows there were. */
int64_t peer_read_all(const char* file);
/* One prepared, indexed look-up a song by title, duration and library identifier; gives how many
 * were found. */
int64_t peer_look_up(const char* file, const struct peer_song* songs, size_t song_count);
/* Plays strictly between two dates, their distinct songs and the sum of their durations. */
struct peer_totals peer_aggregate(const char* file, double start, double end);
/* Reads those plays, the newest first, and adds up the durations of their songs; counts no songs.
 */
struct peer_totals peer_history(const char* file, double start, double end);
/* The songs and the artists with the most plays strictly between two dates. */
struct peer_ranking peer_trending(const char* file, double start, double end);

#ifdef __cplusplus
}
#endif
#endif
