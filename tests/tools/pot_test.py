#!/usr/bin/env python3
"""The template of translations is what the sources say, and tools/pot notices when it is not."""

import os
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "pot")


def pot(*arguments):
    return subprocess.run([sys.executable, TOOL, *arguments], text=True, capture_output=True, check=False)


class Pot(unittest.TestCase):
    def test_the_template_of_the_project_is_current(self):
        done = pot("--check")
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_a_new_text_is_missed_until_the_template_is_made_anew(self):
        with tempfile.TemporaryDirectory() as root:
            os.makedirs(os.path.join(root, "src"))
            file = os.path.join(root, "src", "a.cpp")
            with open(file, "w", encoding="utf-8") as out:
                out.write('auto a = NSLocalizedString("One");\n')
            self.assertEqual(pot("--check", "--root", root).returncode, 1)
            self.assertEqual(pot("--root", root).returncode, 0)
            self.assertEqual(pot("--check", "--root", root).returncode, 0)
            with open(file, "a", encoding="utf-8") as out:
                out.write('auto b = localizedCount("%lu song", "%lu songs", 2);\n')
            missed = pot("--check", "--root", root)
            self.assertEqual(missed.returncode, 1)
            self.assertIn("run tools/pot", missed.stderr)
            self.assertEqual(pot("--root", root).returncode, 0)
            with open(os.path.join(root, "po", "tavrion.pot"), encoding="utf-8") as template:
                self.assertIn('msgid_plural "%lu songs"', template.read())


if __name__ == "__main__":
    unittest.main()
