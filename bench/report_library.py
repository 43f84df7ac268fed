"""The rows of bench/report that tell how fast the great library is listed, counted and searched."""
import json
import os
import subprocess
import sys

BROWSE_BAR_MS = 60
SEARCH_BAR_MS = 40
TILES_BAR_MS = 50
LARGEST_GENRE_BAR_MS = 20
# A million songs may take this many times what a hundred thousand take.
GROWTH_BAR = 15
GROWTH_SONGS = [10_000, 100_000, 1_000_000]
GROWTH_WORK = ["browse-songs-play-count", "browse-albums-release-date", "browse-artists-alphabetical", "tiles",
               "largest-genre", "search-1-letter", "search-3-letters", "search-no-hit"]
BEETS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "peer", "beets_peer.py")


def one_time(row, rows, times, name, work, bar):
    ours = times[f"{name}/tavrion"]
    row(rows, work, f"{ours:.1f} ms", f"{bar} ms", ours <= bar)


def beside_peer(row, rows, times, name, work, bar):
    ours, peers = times[f"{name}/tavrion"], times[f"{name}/peer"]
    row(rows, f"{work} / SQLite", f"{ours / peers:.2f}  ({ours:.1f} ms / {peers:.1f} ms)", f"1, {bar} ms",
        ours <= bar and ours <= peers)


def library_rows(row, rows, measured, repetitions):
    times, _ = measured("^(browse-|search-|tiles|largest-genre)", min(repetitions, 3))
    for name in sorted(times):
        kind, _, rest = name.split("/")[0].partition("-")
        if not name.endswith("/peer"):
            continue
        work = rest.replace("-", " ")
        if kind == "browse":
            beside_peer(row, rows, times, name.split("/")[0], f"browse {work}", BROWSE_BAR_MS)
        else:
            beside_peer(row, rows, times, name.split("/")[0], f"a keystroke, {work}", SEARCH_BAR_MS)
    one_time(row, rows, times, "tiles", "the eight tiles of the library", TILES_BAR_MS)
    one_time(row, rows, times, "largest-genre", "statistics of the largest genre", LARGEST_GENRE_BAR_MS)
    row(rows, "a search made ready, once a library", f"{times['search-index/tavrion']:.0f} ms", "none", True)
    beets_row(row, rows, times["browse-songs-last-played/tavrion"])


def beets_row(row, rows, ours):
    """A process of its own that reads its file, so that the ratio says little; it is what people have today."""
    done = subprocess.run([BEETS], stdout=subprocess.PIPE, check=False, text=True)
    if done.returncode != 0:
        sys.exit(f"report: {BEETS} ended with {done.returncode}")
    told = json.loads(done.stdout)
    if "seconds" in told:
        row(rows, "beet ls of as many songs, last added first", f"{told['seconds']:.2f} s  ({ours:.1f} ms here)",
            "none", True)
    else:
        print(f"report: no row for beet ls: {told['missing']}")


def library_growth(measured):
    work = "|".join(GROWTH_WORK)
    table = []
    for songs in GROWTH_SONGS:
        times, _ = measured(f"^({work})/tavrion", 1, songs=songs)
        table.append({"songs": songs, **{name: times[f"{name}/tavrion"] for name in GROWTH_WORK}})
    return table


def growth_rows(row, rows, table):
    for name in GROWTH_WORK:
        before, after = table[-2][name], table[-1][name]
        row(rows, f"{name.replace('-', ' ')}, 1,000,000 songs / 100,000",
            f"{after / before:.1f}  ({after:.1f} ms / {before:.1f} ms)", str(GROWTH_BAR), after <= GROWTH_BAR * before)
