#!/usr/bin/env python3
"""Runs tools/try-installed on made-up build folders that install a stand-in for tavrionctl."""

import os
import subprocess
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "try-installed")

# Says what the true one says, and notes how it was called and where it is at home.
STAND_IN = """#!/bin/sh
echo "$*|$HOME|$TAVRION_DATA_DIR|$TZ" >> "{calls}"
case "$*" in
    *--version*) echo "tavrionctl 1.0" ;;
    *"library use"*) echo '{{"kind":"sample"}}' ;;
    *scan*) echo '{{"eventsCreated":5}}' ;;
    *history*) echo '{{"sections":[{{"plays":[]}}]}}' ;;
esac
"""


class TryInstalledTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.realpath(folder.name)
        self.calls = os.path.join(self.root, "calls")
        self.temporary = os.path.join(self.root, "temporary")
        os.mkdir(self.temporary)

    def try_installed(self, program, script=None):
        """The tool's result for a build that installs the program by this script of CMake's."""
        build = os.path.join(self.root, "build")
        os.makedirs(build, exist_ok=True)
        with open(os.path.join(build, "tavrionctl"), "w", encoding="utf-8") as file:
            file.write(program)
        with open(os.path.join(build, "cmake_install.cmake"), "w", encoding="utf-8") as file:
            file.write(script or f'file(INSTALL DESTINATION "/usr/local/bin" TYPE PROGRAM FILES "{build}/tavrionctl")\n')
        environment = {**os.environ, "TMPDIR": self.temporary, "TAVRION_DATA_DIR": "mine", "TZ": "Asia/Tokyo"}
        return subprocess.run([TOOL, build], env=environment, capture_output=True, text=True, check=False)

    def stand_in(self):
        return STAND_IN.format(calls=self.calls)

    def assert_fails(self, result, reason):
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn(reason, result.stderr)
        self.assertNotIn("works", result.stdout)
        self.assertEqual(os.listdir(self.temporary), [])

    def test_a_program_that_works_is_tried_with_a_home_of_its_own(self):
        result = self.try_installed(self.stand_in())
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("the installed tavrionctl works", result.stdout)
        with open(self.calls, encoding="utf-8") as file:
            calls = [line.rstrip("\n").split("|") for line in file]
        self.assertEqual(len(calls), 4)
        for _, home, data, zone in calls:
            self.assertTrue(home.startswith(self.temporary), home)
            self.assertEqual((data, zone), ("", "UTC"))
        self.assertEqual(os.listdir(self.temporary), [], "what was installed is removed again")

    def test_a_program_that_fails_at_one_command_fails(self):
        for word in ("--version", "library use", "scan", "history"):
            with self.subTest(word=word):
                program = self.stand_in().replace("case", f'case "$*" in *"{word}"*) exit 7 ;; esac\ncase', 1)
                self.assert_fails(self.try_installed(program), "ended with status 7")

    def test_a_program_that_does_not_say_what_it_should_fails(self):
        for said in ("tavrionctl 1.0", '"kind"', '"eventsCreated"', '"sections"'):
            with self.subTest(said=said):
                self.assert_fails(self.try_installed(self.stand_in().replace(said, "nothing")), "does not say")

    def test_a_build_that_installs_no_program_fails(self):
        self.assert_fails(self.try_installed(self.stand_in(), "# Nothing.\n"), "no tavrionctl in bin/")
        elsewhere = f'file(INSTALL DESTINATION "/usr/share" TYPE PROGRAM FILES "{self.root}/build/tavrionctl")\n'
        self.assert_fails(self.try_installed(self.stand_in(), elsewhere), "no tavrionctl in bin/")

    def test_an_installation_that_fails_is_reported(self):
        self.assert_fails(self.try_installed(self.stand_in(), 'message(FATAL_ERROR "the disk is full")\n'), "the disk is full")

    def test_without_a_folder_it_is_wrong_usage(self):
        self.assertEqual(subprocess.run([TOOL], capture_output=True, check=False).returncode, 2)


if __name__ == "__main__":
    unittest.main()
