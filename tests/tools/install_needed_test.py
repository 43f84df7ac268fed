#!/usr/bin/env python3
"""Runs tools/install-needed with a package manager of our own: only what is missing is asked for, and only then."""

import os
import subprocess
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "install-needed")

DPKG_QUERY = """#!/bin/sh
for package in $MISSING; do
    if [ "$package" = "$3" ]; then echo "dpkg-query: no packages found" >&2; exit 1; fi
done
for package in $REMOVED; do
    if [ "$package" = "$3" ]; then printf 'deinstall ok config-files'; exit 0; fi
done
printf 'install ok installed'
"""
APT_GET = """#!/bin/sh
echo "frontend=$DEBIAN_FRONTEND $*" >> "$CALLS"
[ "$1" != "$APT_FAILS_AT" ]
"""
# Stands in for the rights of root, so that the test does not depend on who runs it.
SUDO = """#!/bin/sh
exec "$@"
"""


class InstallNeededTest(unittest.TestCase):
    def run_tool(self, *groups, **environment):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in {"dpkg-query": DPKG_QUERY, "apt-get": APT_GET, "sudo": SUDO}.items():
                path = os.path.join(folder, name)
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
                os.chmod(path, 0o755)
            calls = os.path.join(folder, "calls")
            result = subprocess.run(
                [TOOL, *groups], capture_output=True, text=True, check=False, stdin=subprocess.DEVNULL,
                env={"PATH": f"{folder}:{os.environ['PATH']}", "CALLS": calls, **environment})
            made = []
            if os.path.exists(calls):
                with open(calls, encoding="utf-8") as file:
                    made = file.read().splitlines()
            return result, made

    def test_nothing_missing_asks_nothing_of_the_network(self):
        result, calls = self.run_tool()
        self.assertEqual((result.returncode, calls), (0, []), result.stderr)

    def test_only_the_missing_packages_are_installed(self):
        result, calls = self.run_tool("build", MISSING="libfmt-dev", REMOVED="libplist-dev")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(calls, [
            "frontend= update",
            "frontend=noninteractive install -y --no-install-recommends libfmt-dev libplist-dev",
        ])

    def test_a_group_leaves_the_packages_of_other_groups_alone(self):
        for group, missing, wanted in [("build", "shellcheck", False), ("lint", "shellcheck", True),
                                       ("test", "libgtest-dev", True), ("build", "libgtest-dev", False)]:
            with self.subTest(group=group, missing=missing):
                result, calls = self.run_tool(group, MISSING=missing)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertEqual(bool(calls), wanted)

    def test_without_a_group_all_groups_are_meant(self):
        _, calls = self.run_tool(MISSING="cmake libgtest-dev shellcheck")
        self.assertTrue(calls[1].endswith(" cmake libgtest-dev shellcheck"), calls)

    def test_several_groups(self):
        _, calls = self.run_tool("build", "test", MISSING="cmake libgtest-dev shellcheck")
        self.assertTrue(calls[1].endswith(" cmake libgtest-dev"), calls)

    def test_a_failure_says_what_is_still_missing(self):
        for step in ("update", "install"):
            with self.subTest(step=step):
                result, _ = self.run_tool("build", MISSING="cmake", APT_FAILS_AT=step)
                self.assertEqual(result.returncode, 1)
                self.assertIn("cmake", result.stderr)
                self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)

    def test_an_unknown_group_is_wrong_usage(self):
        result, calls = self.run_tool("everything")
        self.assertEqual((result.returncode, calls), (2, []))
        self.assertIn("everything", result.stderr)


if __name__ == "__main__":
    unittest.main()
