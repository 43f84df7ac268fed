// The peer that is a column store: DuckDB over the same rows in memory.
//
//   node duckdb_peer.mjs DIRECTORY REPETITIONS
//
// DIRECTORY holds what `tavrion_bench --rows` writes. Prints the milliseconds of each repetition, one a line: both
// rankings, songs and artists, from the query to the rows, with as many threads as are best for it. Ends with status 1
// when it ranks otherwise than Tavrion. Needs the module @duckdb/node-api beside itself.
import { readFileSync } from "node:fs";
import { availableParallelism } from "node:os";
import { join } from "node:path";
import { DuckDBInstance } from "@duckdb/node-api";

const [directory, repetitions] = process.argv.slice(2);
const file = (name) => join(directory, name);
const [start, end] = readFileSync(file("range.tsv"), "utf8").trim().split("\t");

// The fastest of the forms that were tried: the plays are counted once for both rankings, and only the best songs are
// joined with their titles.
const countSql = `CREATE OR REPLACE TEMP TABLE counted AS SELECT parentHistory AS id, count(*) AS plays FROM plays
                  WHERE eventDate > ${start} AND eventDate < ${end} GROUP BY parentHistory`;
const songsSql = `SELECT title, plays FROM
                      (SELECT id, plays, lastEventDate FROM counted JOIN songs USING (id) WHERE NOT excludeFromTrends
                       ORDER BY plays DESC, lastEventDate DESC, id LIMIT 100) AS best JOIN songs USING (id)
                  ORDER BY plays DESC, best.lastEventDate DESC, id`;
const artistsSql = `SELECT artist, sum(plays)::BIGINT AS sum FROM counted JOIN songs USING (id)
                    WHERE NOT excludeFromTrends GROUP BY artist ORDER BY sum DESC, artist LIMIT 15`;

async function load(connection) {
    const options = "delim = '\\t', header = true, quote = ''";
    await connection.run(
        `CREATE TABLE songs AS SELECT * REPLACE (id::INTEGER AS id), false AS excludeFromTrends
         FROM read_csv('${file("songs.tsv")}', ${options})`,
    );
    await connection.run(
        `CREATE TABLE plays AS SELECT eventDate::DOUBLE AS eventDate, parentHistory::INTEGER AS parentHistory
         FROM read_csv('${file("plays.tsv")}', ${options})`,
    );
}

function demandSame(songs, artists) {
    const lines = [...songs.map((row) => ["song", ...row]), ...artists.map((row) => ["artist", ...row])];
    const found = lines.map((line) => line.join("\t")).join("\n");
    if (found !== readFileSync(file("ranking.tsv"), "utf8").trimEnd()) {
        console.error("duckdb_peer: it ranks otherwise than Tavrion");
        process.exit(1);
    }
}

const connection = await (await DuckDBInstance.create(":memory:")).connect();
await load(connection);
const rowsOf = async (sql) => (await connection.runAndReadAll(sql)).getRows();
async function rank() {
    await connection.run(countSql);
    return [await rowsOf(songsSql), await rowsOf(artistsSql)];
}
demandSame(...(await rank()));
async function timed() {
    const begin = performance.now();
    await rank();
    return performance.now() - begin;
}
async function timesWith(threads) {
    await connection.run(`SET threads = ${threads}`);
    await rank();
    const times = [];
    for (let i = 0; i < Number(repetitions); ++i) {
        times.push(await timed());
    }
    return times;
}
// On few cores the threads cost more than they bring.
const median = (times) => [...times].sort((a, b) => a - b)[Math.floor(times.length / 2)];
const candidates = [await timesWith(1), await timesWith(availableParallelism())];
const best = candidates.reduce((a, b) => (median(b) < median(a) ? b : a));
console.log(best.join("\n"));
