/* The peer of the library: the same songs as a table of SQLite in memory, with an index for every
   way to look them up. A failure ends the process with one line. */
#ifndef BENCH_PEER_LIBRARY_PEER_H
#define BENCH_PEER_LIBRARY_PEER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct library_peer library_peer;

struct library_peer_song {
    const char *title, *artist, *album_artist, *album_title, *genre;
    double duration, last_played, added, released; /* 0 for a date that is not there */
    int64_t album, play_count;
    int compilation, media_type;
};

/* Tables without rows; they stay for the life of the process. */
library_peer* library_peer_make(void);
/* Its row id is the count of songs so far. */
void library_peer_add_song(library_peer* peer, const struct library_peer_song* song);
void library_peer_add_playlist(library_peer* peer, const char* name);
/* Adds a song to the playlist that was added last. */
void library_peer_add_to_playlist(library_peer* peer, int64_t song);
/* Makes the indexes. After all rows, before the first query. */
void library_peer_finish(library_peer* peer);
/* Runs one query with ?1 bound to the text and reads every column of every row; gives how many rows
 * there were. */
int64_t library_peer_query(library_peer* peer, const char* sql, const char* text);

#ifdef __cplusplus
}
#endif
#endif
