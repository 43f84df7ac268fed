#!/usr/bin/env python3
"""Runs tools/show-sample with the built tavrionctl (its path is the first argument) and looks at what was recorded."""

import datetime
import json
import os
import stat
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "show-sample")
NOW = "2026-03-01T12:00:00Z"
TAVRIONCTL = ""


def show(folder, *options, now=NOW, zone="UTC", program=None):
    environment = {**os.environ, "TZ": zone, "LC_ALL": "C"}
    return subprocess.run([TOOL, "--songs", "200", "--evenings", "4", "--now", now, *options, program or TAVRIONCTL, folder],
                          env=environment, text=True, stdin=subprocess.DEVNULL, capture_output=True, check=False)


def ask(folder, *command):
    result = subprocess.run([TAVRIONCTL, "--json", "--data-dir", os.path.join(folder, "data"), *command], text=True,
                            stdin=subprocess.DEVNULL, capture_output=True, check=True)
    return json.loads(result.stdout)


class ShowSample(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.holder = holder.name
        self.folder = os.path.join(holder.name, "a folder", "sample")

    def shown(self, *options, **more):
        result = show(self.folder, *options, **more)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result.stdout

    def recorder(self):
        """A program that notes with which words and which data directory it is called, then does as tavrionctl does."""
        path = os.path.join(self.holder, "recorder")
        with open(path, "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\necho "$TAVRION_DATA_DIR|$*" >> "{self.holder}/calls"\nexec "{TAVRIONCTL}" "$@"\n')
        os.chmod(path, os.stat(path).st_mode | stat.S_IXUSR)
        return path

    def scans(self):
        """The instants of the scans that were asked for since the last question, and what else they were told."""
        with open(os.path.join(self.holder, "calls"), encoding="utf-8") as file:
            calls = [line.rstrip("\n").split("|") for line in file]
        os.remove(os.path.join(self.holder, "calls"))
        self.assertEqual({place for place, _ in calls}, {os.path.join(self.folder, "data")})
        scans = []
        for _, words in calls:
            words = words.split(" ")
            if "scan" in words:
                scans.append((words[words.index("--now") + 1], " ".join(words[words.index("scan") + 1:])))
        return scans

    def test_a_scan_at_each_evening_and_one_at_the_present(self):
        self.shown(program=self.recorder())
        self.assertEqual(self.scans(), [
            ("2026-02-25T21:00:00+00:00", "--since all --suspects keep-all"),
            ("2026-02-26T21:00:00+00:00", "--since rule --suspects keep-all"),
            ("2026-02-27T21:00:00+00:00", "--since rule --suspects keep-all"),
            ("2026-02-28T21:00:00+00:00", "--since rule --suspects keep-all"),
            (NOW, ""),
        ])

    def test_an_evening_that_has_come_counts(self):
        self.shown(program=self.recorder(), now="2026-03-01T21:00:00Z")
        self.assertEqual([instant[:10] for instant, _ in self.scans()[:-1]],
                         ["2026-02-26", "2026-02-27", "2026-02-28", "2026-03-01"])

    def test_evenings_are_those_of_the_zone_whatever_is_done_to_the_clocks(self):
        self.shown(program=self.recorder(), zone="Europe/Berlin", now="2026-03-31T12:00:00Z")
        self.assertEqual([instant for instant, _ in self.scans()[:-1]],
                         ["2026-03-27T21:00:00+01:00", "2026-03-28T21:00:00+01:00", "2026-03-29T21:00:00+02:00",
                          "2026-03-30T21:00:00+02:00"])

    def test_a_later_run_scans_only_the_evenings_since(self):
        program = self.recorder()
        self.shown(program=program)
        self.scans()
        self.shown(program=program)
        self.assertEqual(self.scans(), [(NOW, "")])
        self.shown(program=program, now="2026-03-10T22:00:00Z")
        self.assertEqual(self.scans()[:-1], [(f"2026-03-{day:02}T21:00:00+00:00", "--since rule --suspects keep-all")
                                             for day in range(1, 11)])

    def test_a_run_that_was_broken_off_goes_on(self):
        program = self.recorder()
        with open(program, "a+", encoding="utf-8") as file:
            file.seek(0)
            text = file.read()
            file.truncate(0)
            file.write(text.replace("exec", 'case "$*" in *02-27*) exit 1;; esac\nexec'))
        result = show(self.folder, program=program)
        self.assertEqual(result.returncode, 1)
        self.assertIn("2026-02-27", result.stderr)
        self.scans()
        whole = self.recorder()
        self.shown(program=whole)
        self.assertEqual([instant[:10] for instant, _ in self.scans()], ["2026-02-27", "2026-02-28", "2026-03-01"])

    def test_the_plays_of_the_days_are_there_with_their_dates(self):
        shown = self.shown()
        plays = sorted(play["eventDate"]["iso"] for play in ask(self.folder, "plays"))
        days = {(datetime.date(2026, 2, 26) + datetime.timedelta(days=i)).isoformat() for i in range(3)}
        self.assertTrue(days <= {play[:10] for play in plays}, plays[-40:])
        self.assertLess(plays[-1], NOW)
        self.assertIn(f"{len(plays)} dated plays of {len(ask(self.folder, 'histories'))} songs", shown)

    def test_it_prints_the_commands_that_it_shows(self):
        commands = [line for line in self.shown().splitlines() if line.startswith("$ ")]
        self.assertEqual(commands, ["$ export TAVRION_DATA_DIR=" + self.folder.replace(" ", "\\ ") + "/data",
                                    "$ tavrionctl library status", "$ tavrionctl scan",
                                    "$ tavrionctl history --range past-month | head -n 20",
                                    "$ tavrionctl trending --range past-month | head -n 10",
                                    "$ tavrionctl browse --tiles"])

    def test_it_shows_the_history_as_a_chart_and_what_was_played_most(self):
        shown = self.shown()
        history, _, rest = shown.partition("$ tavrionctl history")[2].partition("$ tavrionctl trending")
        self.assertIn("Minutes Listened", history)
        self.assertRegex(history, r"(?m)^[0-9,]+ min [|\u2524]")
        self.assertRegex(rest, r"(?m)^ +1  .*[0-9]+x")

    def test_a_folder_of_somebody_else_is_left_alone(self):
        os.makedirs(self.folder)
        with open(os.path.join(self.folder, "letter"), "w", encoding="utf-8") as file:
            file.write("dear reader")
        result = show(self.folder)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn(self.folder, result.stderr)
        self.assertEqual(os.listdir(self.folder), ["letter"])

    def test_a_command_that_fails_ends_it(self):
        result = show(self.folder, program="/bin/false")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        self.assertNotIn("$ tavrionctl", result.stdout)

    def test_wrong_usage(self):
        for options in (["--songs", "many"], ["--evenings", "0"], ["--moon", "1"], ["--songs"]):
            self.assertEqual(subprocess.run([TOOL, *options], capture_output=True, check=False).returncode, 2, options)
        self.assertEqual(show(self.folder, now="yesterweek").returncode, 2)
        self.assertFalse(os.path.exists(self.folder))


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: show_sample_test.py TAVRIONCTL")
    TAVRIONCTL = sys.argv.pop(1)
    unittest.main()
