#!/usr/bin/env python3
"""Runs cmake/SampleData.cmake on made-up tables: what it makes of a line, and what it refuses."""

import os
import subprocess
import tempfile
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
SCRIPT = os.path.join(ROOT, "cmake", "SampleData.cmake")
ONE_OF_EACH = {
    "given name": "Zoë", "surname": "O'Hara", "place": "Quarry Road", "adjective": "Blue", "noun": "Door", "doing": "Asking",
    "time": "Monday", "orchestra": "Symphony Orchestra", "choir": "Consort", "small ensemble": "Trio",
    "style": "14\t1955\t60\t420\t0\tFolk|R&B/Soul", "work": "A. Composer\tThe Work, Book I\tBaroque\tvoice\t2\t60\t420\tOne|Two: 茉莉花",
    "folk tune": "Oh! Susanna\tTraditional", "old tune": "$x ${y} #1\tX",
}


def run(table):
    """The result, and the source file that it made."""
    with tempfile.TemporaryDirectory() as folder:
        table_file, source = os.path.join(folder, "Names.tsv"), os.path.join(folder, "Data.cpp")
        with open(table_file, "w", encoding="utf-8") as file:
            file.write(table)
        result = subprocess.run(["cmake", "-D", f"INPUT={table_file}", "-D", f"OUTPUT={source}", "-P", SCRIPT], text=True,
                                capture_output=True, check=False)
        if not os.path.exists(source):
            return result, None
        with open(source, encoding="utf-8") as file:
            return result, file.read()


def table_of(lists):
    return "# A note, with \"anything\"; [in it\n\n" + "".join(f"{name}\t{line}\n" for name, line in lists.items())


class SampleDataTest(unittest.TestCase):
    def assert_refused(self, table, reason):
        result, source = run(table)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(reason, " ".join(result.stderr.split()))
        self.assertIsNone(source)

    def test_each_list_is_an_array_in_the_order_of_its_lines(self):
        result, source = run(table_of(ONE_OF_EACH) + "given name\tAnna Maria\n")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn('constexpr std::array<std::string_view, 2> givenNames{{\n    {"Zoë"},\n    {"Anna Maria"},\n}};\n', source)
        self.assertIn('constexpr std::array<SampleWork, 1> works{{\n    {"A. Composer", "The Work, Book I", "Baroque", '
                      'SampleForces::voice, 2, 60, 420, "One|Two: 茉莉花"},\n}};\n', source)
        self.assertIn('{14, 1955, 60, 420, 0, "Folk|R&B/Soul"}', source)
        self.assertIn('{"$x ${y} #1", "X"}', source)
        self.assertIn("constinit const std::span<const SampleTune> SampleData::oldTunes(tavrion::oldTunes);\n", source)

    def test_a_list_without_an_entry_is_refused(self):
        for name in ONE_OF_EACH:
            with self.subTest(name=name):
                self.assert_refused(table_of({each: line for each, line in ONE_OF_EACH.items() if each != name}),
                                    f"the list '{name}' has no entry")

    def test_lines_that_make_no_sense_are_refused(self):
        for line, reason in {
                "nouns\tDoor": "no list of this name", "n.un\tDoor": "no list of this name", "Door": "no list of this name",
                "noun": "0 columns in place of 1", "noun\tDoor\tGate": "2 columns in place of 1",
                "noun\t Door": "does not belong here", "noun\tDoor ": "does not belong here",
                "noun\tDo\"or": "can be in a line", "noun\tDoor;": "can be in a line", "noun\tDoor]": "can be in a line",
                "noun\t\\Door": "can be in a line", "folk tune\t\tX": "does not belong here",
                "style\t14\t1955\tx\t420\t0\tFolk": "'x' does not belong here",
                "style\t014\t1955\t60\t420\t0\tFolk": "'014' does not belong here",
                "work\tA\tB\tC\tkazoo\t2\t60\t420\tD": "'kazoo' does not belong here"}.items():
            with self.subTest(line=line):
                self.assert_refused(table_of(ONE_OF_EACH) + line + "\n", reason)

    def test_the_projects_own_table_is_good(self):
        with open(os.path.join(ROOT, "src/sources/sample/SampleNames.tsv"), encoding="utf-8") as file:
            result, source = run(file.read())
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("Symphony", source)


if __name__ == "__main__":
    unittest.main()
