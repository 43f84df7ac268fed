#!/usr/bin/env python3
"""The two made exports tell a story that a scan can follow: the same songs, risen counts, dates in the right order."""

import datetime
import os
import plistlib
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "make-small-library")
NOW = datetime.datetime(2026, 3, 1, 12, 0)
A_DAY_AGO = NOW - datetime.timedelta(days=1)
PLAY_DATE_ORIGIN = datetime.datetime(1904, 1, 1)


def run(*arguments, zone="UTC"):
    return subprocess.run([sys.executable, TOOL, *arguments], env={**os.environ, "TZ": zone}, text=True,
                          stdin=subprocess.DEVNULL, capture_output=True, check=False)


def export(state, now="2026-03-01T12:00:00Z", zone="UTC"):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "Library.xml")
        result = run(state, "--now", now, path, zone=zone)
        if result.returncode != 0 or os.listdir(folder) != ["Library.xml"]:
            raise AssertionError(f"{os.listdir(folder)} {result.stderr}")
        with open(path, "rb") as file:
            return plistlib.load(file), result.stdout.strip()


def by_persistent_id(library):
    return {track["Persistent ID"]: track for track in library["Tracks"].values()}


class SmallLibrary(unittest.TestCase):
    def setUp(self):
        self.before, self.first_instant = export("before")
        self.after, self.second_instant = export("after")

    def test_the_exports_are_a_day_apart(self):
        self.assertEqual((self.before["Date"], self.after["Date"]), (A_DAY_AGO, NOW))
        self.assertEqual((self.first_instant, self.second_instant), ("2026-02-28T12:00:00Z", "2026-03-01T12:00:00Z"))

    def test_the_songs_stay_and_are_numbered_anew(self):
        before, after = by_persistent_id(self.before), by_persistent_id(self.after)
        self.assertGreater(len(before), 10)
        self.assertEqual(len(before), len(self.before["Tracks"]))
        self.assertEqual(before.keys(), after.keys())
        for identifier, track in before.items():
            self.assertEqual(track["Name"], after[identifier]["Name"])
            self.assertNotEqual(track["Track ID"], after[identifier]["Track ID"])

    def test_no_two_songs_would_be_folded(self):
        songs = {(track["Name"], track["Total Time"]) for track in self.before["Tracks"].values()}
        self.assertEqual(len(songs), len(self.before["Tracks"]))

    def test_every_play_lies_before_its_export(self):
        for track in self.before["Tracks"].values():
            self.assertLess(track.get("Play Date UTC", datetime.datetime.min), A_DAY_AGO)
        for track in self.after["Tracks"].values():
            self.assertLess(track.get("Play Date UTC", datetime.datetime.min), NOW)

    def test_counts_rise_with_their_dates_and_stay_with_them(self):
        before, after = by_persistent_id(self.before), by_persistent_id(self.after)
        rises = []
        for identifier, track in before.items():
            rise = after[identifier].get("Play Count", 0) - track.get("Play Count", 0)
            if rise == 0:
                self.assertEqual(track.get("Play Date UTC"), after[identifier].get("Play Date UTC"))
            else:
                self.assertGreater(after[identifier]["Play Date UTC"], A_DAY_AGO)
                rises.append(rise)
        # A play that was witnessed, several that must be estimated, and none that would ask a question.
        self.assertIn(1, rises)
        self.assertIn(4, rises)
        self.assertTrue(all(0 < rise < 5 for rise in rises), rises)

    def test_one_song_is_heard_for_the_first_time_and_one_never(self):
        before, after = by_persistent_id(self.before), by_persistent_id(self.after)
        unheard = {identifier for identifier, track in before.items() if "Play Count" not in track}
        self.assertEqual(sorted("Play Count" in after[identifier] for identifier in unheard), [False, True])

    def test_the_play_date_is_the_wall_clock_of_the_zone(self):
        for zone, hours in (("UTC", 0), ("Asia/Kolkata", 5.5), ("America/Bogota", -5)):
            for track in export("after", zone=zone)[0]["Tracks"].values():
                if "Play Date" in track:
                    wall_clock = PLAY_DATE_ORIGIN + datetime.timedelta(seconds=track["Play Date"])
                    self.assertEqual(wall_clock - track["Play Date UTC"], datetime.timedelta(hours=hours), zone)

    def test_the_playlists_name_tracks_of_the_same_export(self):
        for library in (self.before, self.after):
            numbers = {track["Track ID"] for track in library["Tracks"].values()}
            self.assertEqual({int(key) for key in library["Tracks"]}, numbers)
            for playlist in library["Playlists"]:
                self.assertTrue({item["Track ID"] for item in playlist["Playlist Items"]} <= numbers)

    def test_wrong_usage_and_a_place_that_can_not_be_written(self):
        self.assertEqual(run("sometime", "x.xml").returncode, 2)
        self.assertEqual(run("before", "--now", "2026-03-01T12:00:00", "x.xml").returncode, 2)
        result = run("before", "/nowhere/at/all/Library.xml")
        self.assertEqual(result.returncode, 1)
        self.assertIn("/nowhere/at/all/Library.xml", result.stderr)
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)


if __name__ == "__main__":
    unittest.main()
