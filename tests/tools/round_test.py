#!/usr/bin/env python3
"""Runs tools/show-round with the built tavrionctl (its path is the first argument) and looks at what was recorded."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "show-round")
NOW = "2026-03-01T12:00:00Z"
TAVRIONCTL = ""


def round_in(folder, zone="UTC"):
    environment = {**os.environ, "TZ": zone, "LC_ALL": "C"}
    return subprocess.run([TOOL, TAVRIONCTL, folder, NOW], env=environment, text=True, stdin=subprocess.DEVNULL,
                          capture_output=True, check=False)


def recorded(folder):
    """Every play as (instant, title, whether it is an estimate), oldest first."""
    result = subprocess.run([TAVRIONCTL, "--json", "--data-dir", os.path.join(folder, "data"), "plays"], text=True,
                            stdin=subprocess.DEVNULL, capture_output=True, check=True)
    return sorted((play["eventDate"]["iso"], play["title"], play["isInterpolated"]) for play in json.loads(result.stdout))


class Round(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = os.path.join(holder.name, "a folder")

    def plays_after_round(self, zone="UTC"):
        result = round_in(self.folder, zone)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return recorded(self.folder)

    def test_the_first_scan_takes_the_last_plays_and_the_second_the_day(self):
        plays = self.plays_after_round()
        first = [play for play in plays if play[0] < "2026-02-28T12:00:00"]
        self.assertEqual((len(first), len(plays)), (13, 26))
        self.assertFalse(any(is_estimate for _, _, is_estimate in first))
        self.assertEqual([play for play in plays if play[1] == "Gymnopédie No. 1"], [
            ("2026-02-28T10:00:00.000Z", "Gymnopédie No. 1", False),
            ("2026-02-28T17:52:30.000Z", "Gymnopédie No. 1", True),
            ("2026-02-28T23:45:00.000Z", "Gymnopédie No. 1", True),
            ("2026-03-01T05:37:30.000Z", "Gymnopédie No. 1", True),
            ("2026-03-01T11:30:00.000Z", "Gymnopédie No. 1", False),
        ])
        self.assertEqual([play for play in plays if play[1] == "Weeping Willow"],
                         [("2026-03-01T11:05:00.000Z", "Weeping Willow", False)])

    def test_the_zone_of_the_computer_does_not_move_a_play(self):
        plays = self.plays_after_round()
        for zone in ("Asia/Kolkata", "America/Bogota", "Pacific/Kiritimati"):
            self.assertEqual(self.plays_after_round(zone), plays, zone)

    def test_it_prints_the_commands_that_it_runs(self):
        shown = round_in(self.folder).stdout.splitlines()
        commands = [line for line in shown if line.startswith("$ ")]
        self.assertEqual(commands[0], "$ export TAVRION_DATA_DIR=" + self.folder.replace(" ", "\\ ") + "/data")
        self.assertEqual([line.split("Z ")[1].split(" ")[0] for line in commands[1:]],
                         ["library", "scan", "plays", "scan", "plays"])

    def test_a_folder_of_somebody_else_is_left_alone(self):
        os.makedirs(self.folder)
        with open(os.path.join(self.folder, "letter"), "w", encoding="utf-8") as file:
            file.write("dear reader")
        result = round_in(self.folder)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn(self.folder, result.stderr)
        self.assertEqual(os.listdir(self.folder), ["letter"])

    def test_a_command_that_fails_ends_the_round(self):
        result = subprocess.run([TOOL, "/bin/false", self.folder, NOW], text=True, stdin=subprocess.DEVNULL,
                                capture_output=True, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertNotIn("scan", result.stdout)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: round_test.py TAVRIONCTL")
    TAVRIONCTL = sys.argv.pop(1)
    unittest.main()
