#!/usr/bin/python3
"""Times `beet ls` once over a library of 100,000 made songs and prints one JSON object.

  bench/peer/beets_peer.py [SONGS]

{"seconds": S, "songs": N}, or {"missing": "why"} where Debian's package beets is not installed. The library lies in a
temporary directory and is made by beets' own library module, so that its tables are whatever that version wants. Runs
under Debian's own Python, for which the package is.
"""
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

# Where Debian keeps the module, apart from those that other programs may use.
sys.path.append("/usr/share/beets")


def made_library(file, count):
    from beets import library
    rng = random.Random(7)
    made = library.Library(file, directory=os.path.dirname(file))
    with made.transaction():
        for number in range(count):
            made.add(library.Item(
                title=f"Song {rng.randrange(10 * count)}", artist=f"Artist {rng.randrange(5000)}",
                album=f"Album {rng.randrange(12000)}", genre=f"Genre {rng.randrange(200)}",
                length=100.0 + rng.randrange(300), added=1.3e9 + rng.randrange(300_000_000),
                path=os.path.join(os.path.dirname(file), f"{number}.mp3").encode()))


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 100_000
    beet = shutil.which("beet")
    try:
        import beets  # noqa: F401
    except ImportError:
        beet = None
    if beet is None:
        print(json.dumps({"missing": "the package beets is not installed (apt-get install beets)"}))
        return
    with tempfile.TemporaryDirectory(prefix="tavrion-beets-") as scratch:
        os.environ["BEETSDIR"] = scratch
        file = os.path.join(scratch, "library.db")
        made_library(file, count)
        with open(os.path.join(scratch, "config.yaml"), "w", encoding="utf-8") as config:
            config.write(f"library: {file}\ndirectory: {scratch}\n")
        begin = time.perf_counter()
        listed = subprocess.run([beet, "ls", "-f", "$title", "added-"], stdout=subprocess.PIPE, check=True)
        seconds = time.perf_counter() - begin
    lines = listed.stdout.count(b"\n")
    if lines != count:
        sys.exit(f"beets_peer: beet ls listed {lines} songs of {count}")
    print(json.dumps({"seconds": seconds, "songs": count}))


if __name__ == "__main__":
    main()
