#include "bench/peer/library_peer.h"

#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>

struct library_peer {
    sqlite3* db;
    sqlite3_stmt *add_song, *add_playlist, *add_to_playlist;
};

static const char tables[] =
    "CREATE TABLE song (id INTEGER PRIMARY KEY, title TEXT, artist TEXT, album_artist TEXT,"
    " album_title TEXT, genre TEXT, duration REAL, last_played REAL, added REAL, released REAL,"
    " album INTEGER, play_count INTEGER, compilation INTEGER, media_type INTEGER);"
    "CREATE TABLE playlist (id INTEGER PRIMARY KEY, name TEXT);"
    "CREATE TABLE entry (playlist INTEGER, song INTEGER);"
    "BEGIN";
static const char indexes[] =
    "COMMIT;"
    "CREATE INDEX by_title ON song (title COLLATE NOCASE);"
    "CREATE INDEX by_album_artist ON song (album_artist COLLATE NOCASE);"
    "CREATE INDEX by_album_title ON song (album_title COLLATE NOCASE);"
    "CREATE INDEX by_album ON song (album);"
    "CREATE INDEX by_genre ON song (genre);"
    "CREATE INDEX by_play_count ON song (play_count);"
    "CREATE INDEX by_last_played ON song (last_played);"
    "CREATE INDEX by_added ON song (added);"
    "CREATE INDEX by_released ON song (released);"
    "CREATE INDEX by_name ON playlist (name COLLATE NOCASE);"
    "CREATE INDEX by_playlist ON entry (playlist);"
    "ANALYZE";

static void check(const library_peer* peer, int code) {
    if (code != SQLITE_OK && code != SQLITE_DONE && code != SQLITE_ROW) {
        fprintf(stderr, "library peer: %s\n", sqlite3_errmsg(peer->db));
        exit(1);
    }
}

static sqlite3_stmt* prepared(const library_peer* peer, const char* sql) {
    sqlite3_stmt* statement = NULL;
    check(peer, sqlite3_prepare_v2(peer->db, sql, -1, &statement, NULL));
    return statement;
}

static void run(const library_peer* peer, sqlite3_stmt* statement) {
    check(peer, sqlite3_step(statement));
    check(peer, sqlite3_reset(statement));
}

library_peer* library_peer_make(void) {
    library_peer* peer = calloc(1, sizeof *peer);
    if (peer == NULL) {
        fprintf(stderr, "library peer: no memory\n");
        exit(1);
    }
    check(peer, sqlite3_open(":memory:", &peer->db));
    check(peer, sqlite3_exec(peer->db, tables, NULL, NULL, NULL));
    peer->add_song =
        prepared(peer, "INSERT INTO song VALUES (NULL, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    peer->add_playlist = prepared(peer, "INSERT INTO playlist VALUES (NULL, ?)");
    peer->add_to_playlist =
        prepared(peer, "INSERT INTO entry VALUES ((SELECT max(id) FROM playlist), ?)");
    return peer;
}

static void bind_text(sqlite3_stmt* statement, int parameter, const char* text) {
    sqlite3_bind_text(statement, parameter, text, -1, SQLITE_STATIC);
}

static void bind_date(sqlite3_stmt* statement, int parameter, double date) {
    if (date == 0) {
        sqlite3_bind_null(statement, parameter);
    } else {
        sqlite3_bind_double(statement, parameter, date);
    }
}

void library_peer_add_song(library_peer* peer, const struct library_peer_song* song) {
    sqlite3_stmt* add = peer->add_song;
    bind_text(add, 1, song->title);
    bind_text(add, 2, song->artist);
    bind_text(add, 3, song->album_artist);
    bind_text(add, 4, song->album_title);
    bind_text(add, 5, song->genre);
    sqlite3_bind_double(add, 6, song->duration);
    bind_date(add, 7, song->last_played);
    bind_date(add, 8, song->added);
    bind_date(add, 9, song->released);
    sqlite3_bind_int64(add, 10, song->album);
    sqlite3_bind_int64(add, 11, song->play_count);
    sqlite3_bind_int(add, 12, song->compilation);
    sqlite3_bind_int(add, 13, song->media_type);
    run(peer, add);
}

void library_peer_add_playlist(library_peer* peer, const char* name) {
    bind_text(peer->add_playlist, 1, name);
    run(peer, peer->add_playlist);
}

void library_peer_add_to_playlist(library_peer* peer, int64_t song) {
    sqlite3_bind_int64(peer->add_to_playlist, 1, song);
    run(peer, peer->add_to_playlist);
}

void library_peer_finish(library_peer* peer) {
    check(peer, sqlite3_exec(peer->db, indexes, NULL, NULL, NULL));
}

int64_t library_peer_query(library_peer* peer, const char* sql, const char* text) {
    sqlite3_stmt* statement = prepared(peer, sql);
    if (sqlite3_bind_parameter_count(statement) > 0) {
        bind_text(statement, 1, text);
    }
    int64_t rows = 0;
    int code = 0;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            (void)sqlite3_column_text(statement, column);
        }
        ++rows;
    }
    check(peer, code);
    sqlite3_finalize(statement);
    return rows;
}
