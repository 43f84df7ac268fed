#include "bench/peer/sqlite_peer.h"

#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>

static void check(sqlite3* db, int code) {
    if (code != SQLITE_OK && code != SQLITE_DONE && code != SQLITE_ROW) {
        fprintf(stderr, "bench peer: %s\n", sqlite3_errmsg(db));
        exit(1);
    }
}

static sqlite3* opened(const char* file) {
    sqlite3* db = NULL;
    check(db,
          sqlite3_open_v2(file, &db,
                          SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, NULL));
    check(db, sqlite3_exec(db, "PRAGMA synchronous = FULL", NULL, NULL, NULL));
    return db;
}

static sqlite3_stmt* prepared(sqlite3* db, const char* sql) {
    sqlite3_stmt* statement = NULL;
    check(db, sqlite3_prepare_v2(db, sql, -1, &statement, NULL));
    return statement;
}

static void run(sqlite3* db, const char* sql) {
    check(db, sqlite3_exec(db, sql, NULL, NULL, NULL));
}

static void bind_text(sqlite3_stmt* statement, int parameter, const char* text) {
    sqlite3_bind_text(statement, parameter, text, -1, SQLITE_STATIC);
}

void peer_create(const char* file, const char* schema) {
    sqlite3* db = opened(file);
    run(db, "PRAGMA page_size = 4096; PRAGMA journal_mode = WAL");
    run(db, schema);
    sqlite3_close(db);
}

static void insert_songs(sqlite3* db, const struct peer_song* songs, size_t count) {
    sqlite3_stmt* insert = prepared(
        db,
        "INSERT INTO PlaybackHistory (id, albumID, artist, duration, excludeFromTrends, genre, "
        "lastEventDate, libraryID, playCount, skipCount, storeID, title) "
        "VALUES (?1, ?2, ?3, ?4, 0, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
    for (size_t i = 0; i < count; ++i) {
        const struct peer_song* song = &songs[i];
        sqlite3_bind_int64(insert, 1, (sqlite3_int64)i + 1);
        bind_text(insert, 2, song->album_id);
        bind_text(insert, 3, song->artist);
        sqlite3_bind_double(insert, 4, song->duration);
        bind_text(insert, 5, song->genre);
        sqlite3_bind_double(insert, 6, song->last_event);
        bind_text(insert, 7, song->library_id);
        sqlite3_bind_int64(insert, 8, song->play_count);
        sqlite3_bind_int64(insert, 9, song->skip_count);
        bind_text(insert, 10, song->store_id);
        bind_text(insert, 11, song->title);
        check(db, sqlite3_step(insert));
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
}

static void insert_plays(sqlite3* db, const struct peer_play* plays, size_t count) {
    sqlite3_stmt* insert =
        prepared(db,
                 "INSERT INTO PlayEvent (id, eventDate, isInterpolated, parentHistory) "
                 "VALUES (?1, ?2, ?3, ?4)");
    for (size_t i = 0; i < count; ++i) {
        sqlite3_bind_int64(insert, 1, (sqlite3_int64)i + 1);
        sqlite3_bind_double(insert, 2, plays[i].date);
        sqlite3_bind_int(insert, 3, plays[i].is_estimate);
        sqlite3_bind_int64(insert, 4, plays[i].song);
        check(db, sqlite3_step(insert));
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
}

void peer_insert(const char* file, const struct peer_song* songs, size_t song_count,
                 const struct peer_play* plays, size_t play_count) {
    sqlite3* db = opened(file);
    run(db, "BEGIN IMMEDIATE");
    insert_songs(db, songs, song_count);
    insert_plays(db, plays, play_count);
    run(db, "COMMIT");
    sqlite3_close(db);
}

void peer_index(const char* file) {
    sqlite3* db = opened(file);
    run(db,
        "CREATE INDEX byIdentity ON PlaybackHistory (title, duration);"
        "CREATE INDEX byStoreID ON PlaybackHistory (storeID);"
        "CREATE INDEX byLibraryID ON PlaybackHistory (libraryID);"
        "CREATE INDEX byDate ON PlayEvent (eventDate);"
        "CREATE INDEX bySong ON PlayEvent (parentHistory);"
        "ANALYZE; PRAGMA wal_checkpoint(TRUNCATE);");
    sqlite3_close(db);
}

/* Every column is read as what it is, as a program that wants the rows would. */
static int64_t read_table(sqlite3* db, const char* sql) {
    sqlite3_stmt* rows = prepared(db, sql);
    const int columns = sqlite3_column_count(rows);
    int64_t count = 0;
    volatile double numbers = 0;
    volatile int64_t bytes = 0;
    int code = sqlite3_step(rows);
    for (; code == SQLITE_ROW; code = sqlite3_step(rows)) {
        for (int i = 0; i < columns; ++i) {
            switch (sqlite3_column_type(rows, i)) {
                case SQLITE_INTEGER:
                    bytes += sqlite3_column_int64(rows, i);
                    break;
                case SQLITE_FLOAT:
                    numbers += sqlite3_column_double(rows, i);
                    break;
                case SQLITE_TEXT:
                    bytes += sqlite3_column_text(rows, i)[0] + sqlite3_column_bytes(rows, i);
                    break;
                default:
                    break;
            }
        }
        ++count;
    }
    check(db, code);
    sqlite3_finalize(rows);
    return count;
}

int64_t peer_read_all(const char* file) {
    sqlite3* db = opened(file);
    const int64_t count =
        read_table(db,
                   "SELECT id, albumID, artist, duration, excludeFromTrends, genre, lastEventDate, "
                   "libraryID, playCount, skipCount, storeID, title FROM PlaybackHistory "
                   "ORDER BY id") +
        read_table(
            db, "SELECT id, eventDate, isInterpolated, parentHistory FROM PlayEvent ORDER BY id") +
        read_table(db, "SELECT id, dates, identifier, tier FROM Achievement ORDER BY id");
    sqlite3_close(db);
    return count;
}

int64_t peer_look_up(const char* file, const struct peer_song* songs, size_t song_count) {
    sqlite3* db = opened(file);
    run(db, "BEGIN");
    sqlite3_stmt* look_up = prepared(db,
                                     "SELECT id, playCount, lastEventDate FROM PlaybackHistory "
                                     "WHERE title = ?1 AND duration = ?2 AND libraryID = ?3");
    int64_t found = 0;
    for (size_t i = 0; i < song_count; ++i) {
        bind_text(look_up, 1, songs[i].title);
        sqlite3_bind_double(look_up, 2, songs[i].duration);
        bind_text(look_up, 3, songs[i].library_id);
        const int code = sqlite3_step(look_up);
        check(db, code);
        found += code == SQLITE_ROW && sqlite3_column_int64(look_up, 1) == songs[i].play_count &&
                 sqlite3_column_double(look_up, 2) == songs[i].last_event;
        sqlite3_reset(look_up);
    }
    sqlite3_finalize(look_up);
    run(db, "COMMIT");
    sqlite3_close(db);
    return found;
}

struct peer_totals peer_aggregate(const char* file, double start, double end) {
    sqlite3* db = opened(file);
    /* The whole range is read without the index, which is several times as fast as through it. */
    sqlite3_stmt* totals =
        prepared(db,
                 "SELECT count(*), count(DISTINCT parentHistory), sum(duration) FROM PlayEvent "
                 "JOIN PlaybackHistory ON PlaybackHistory.id = parentHistory "
                 "WHERE +eventDate > ?1 AND +eventDate < ?2");
    sqlite3_bind_double(totals, 1, start);
    sqlite3_bind_double(totals, 2, end);
    check(db, sqlite3_step(totals));
    const struct peer_totals result = {sqlite3_column_int64(totals, 0),
                                       sqlite3_column_int64(totals, 1),
                                       sqlite3_column_double(totals, 2)};
    sqlite3_finalize(totals);
    sqlite3_close(db);
    return result;
}

/* Every song's duration at its row id, so that a play needs no look-up. */
static double* read_durations(sqlite3* db, sqlite3_int64* most) {
    sqlite3_stmt* last = prepared(db, "SELECT coalesce(max(id), 0) FROM PlaybackHistory");
    check(db, sqlite3_step(last));
    *most = sqlite3_column_int64(last, 0);
    sqlite3_finalize(last);
    double* durations = calloc((size_t)*most + 1, sizeof(double));
    if (durations == NULL) {
        fprintf(stderr, "bench peer: out of memory\n");
        exit(1);
    }
    sqlite3_stmt* songs = prepared(db, "SELECT id, duration FROM PlaybackHistory");
    while (sqlite3_step(songs) == SQLITE_ROW) {
        durations[sqlite3_column_int64(songs, 0)] = sqlite3_column_double(songs, 1);
    }
    sqlite3_finalize(songs);
    return durations;
}

struct peer_totals peer_history(const char* file, double start, double end) {
    sqlite3* db = opened(file);
    sqlite3_int64 most = 0;
    double* durations = read_durations(db, &most);
    sqlite3_stmt* plays = prepared(db,
                                   "SELECT id, eventDate, isInterpolated, parentHistory "
                                   "FROM PlayEvent WHERE eventDate > ?1 AND eventDate < ?2 "
                                   "ORDER BY eventDate DESC");
    sqlite3_bind_double(plays, 1, start);
    sqlite3_bind_double(plays, 2, end);
    struct peer_totals totals = {0, 0, 0};
    volatile double dates = 0;
    volatile int64_t numbers = 0;
    int code = sqlite3_step(plays);
    for (; code == SQLITE_ROW; code = sqlite3_step(plays)) {
        const sqlite3_int64 song = sqlite3_column_int64(plays, 3);
        numbers += sqlite3_column_int64(plays, 0) + sqlite3_column_int(plays, 2);
        dates += sqlite3_column_double(plays, 1);
        totals.seconds += song <= most ? durations[song] : 0;
        ++totals.plays;
    }
    check(db, code);
    sqlite3_finalize(plays);
    sqlite3_close(db);
    free(durations);
    return totals;
}

struct peer_ranking peer_trending(const char* file, double start, double end) {
    sqlite3* db = opened(file);
    run(db, "PRAGMA temp_store = MEMORY");
    /* The plays are counted once for both lists. */
    sqlite3_stmt* count =
        prepared(db,
                 "CREATE TEMP TABLE counted AS SELECT parentHistory AS song, count(*) AS plays "
                 "FROM PlayEvent WHERE eventDate > ?1 AND eventDate < ?2 GROUP BY parentHistory");
    sqlite3_bind_double(count, 1, start);
    sqlite3_bind_double(count, 2, end);
    check(db, sqlite3_step(count));
    sqlite3_finalize(count);
    struct peer_ranking ranking = {0};
    sqlite3_stmt* songs =
        prepared(db,
                 "SELECT id, plays FROM counted JOIN PlaybackHistory ON id = song "
                 "WHERE excludeFromTrends IS NOT 1 "
                 "ORDER BY plays DESC, lastEventDate DESC, id LIMIT 100");
    while (sqlite3_step(songs) == SQLITE_ROW) {
        ranking.song_ids[ranking.songs] = sqlite3_column_int64(songs, 0);
        ranking.song_plays[ranking.songs++] = sqlite3_column_int64(songs, 1);
    }
    sqlite3_finalize(songs);
    sqlite3_stmt* artists =
        prepared(db,
                 "SELECT artist, sum(plays) AS sum FROM counted JOIN PlaybackHistory ON id = song "
                 "WHERE excludeFromTrends IS NOT 1 GROUP BY artist ORDER BY sum DESC LIMIT 15");
    while (sqlite3_step(artists) == SQLITE_ROW) {
        ranking.artist_plays[ranking.artists++] = sqlite3_column_int64(artists, 1);
    }
    sqlite3_finalize(artists);
    sqlite3_close(db);
    return ranking;
}
