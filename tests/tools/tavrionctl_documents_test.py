#!/usr/bin/env python3
"""Asks the built tavrionctl (its path is the first argument) for every command and option that it knows, and looks for them
in its man page and its bash completion."""

import os
import re
import subprocess
import sys
import unittest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
COMPLETION = os.path.join(ROOT, "src", "apps", "tavrionctl", "tavrionctl.bash")
TAVRIONCTL = ""


class Help:
    """What one command says of itself."""

    def __init__(self, path):
        text = subprocess.run([TAVRIONCTL, *path, "--help"], text=True, stdout=subprocess.PIPE, check=True).stdout
        self.options = re.findall(r"^  (?:-\w,)?(--[\w-]+)", text, flags=re.MULTILINE)
        _, _, commands = text.partition("\nSubcommands:\n")
        self.commands = re.findall(r"^  ([a-z][a-z-]*)", commands, flags=re.MULTILINE)


def all_helps(path=()):
    told = Help(path)
    helps = {path: told}
    for command in told.commands:
        helps.update(all_helps((*path, command)))
    return helps


def man_page():
    """The page as a reader sees it, apart from its lines' breaks."""
    with open(os.path.join(ROOT, "docs", "tavrionctl.1"), encoding="utf-8") as file:
        lines = [line for line in file if not line.startswith('.\\"')]
    text = "".join(lines).replace("\\-", "-")
    text = re.sub(r"^\.[A-Za-z]+ ?", "", text, flags=re.MULTILINE)
    return re.sub(r'\\f.|"', "", text)


def completed(*words):
    line = " ".join(f"'{word}'" for word in ("tavrionctl", *words))
    script = (f"source '{COMPLETION}'; tavrionctl() {{ '{TAVRIONCTL}' \"$@\"; }}; COMP_WORDS=({line}); "
              f"COMP_CWORD={len(words)}; _tavrionctl; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
    done = subprocess.run(["bash", "-c", script], text=True, capture_output=True, check=True)
    assert done.stderr == "", done.stderr
    return done.stdout.split()


class Documents(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.helps = all_helps()

    def test_the_program_tells_of_its_commands(self):
        self.assertIn(("library", "use"), self.helps)
        self.assertIn("--json", self.helps[()].options)

    def test_the_man_page_knows_every_command_and_option(self):
        page = man_page()
        for path, told in self.helps.items():
            if path and not told.commands:
                name = " ".join(path)
                self.assertRegex(page, rf"(?m)^{name}\b", f"docs/tavrionctl.1 has no entry '{name}'")
            for option in told.options:
                self.assertRegex(page, rf"{option}(?![\w-])", f"docs/tavrionctl.1 does not know {option} of {path}")

    def test_the_man_page_knows_no_option_that_is_none(self):
        known = {option for told in self.helps.values() for option in told.options}
        self.assertLessEqual(set(re.findall(r"--[a-z][\w-]+", man_page())), known)

    def test_the_completion_knows_every_command_and_option(self):
        for path, told in self.helps.items():
            if told.commands:
                self.assertEqual(sorted(completed(*path, "")), sorted(told.commands))
            self.assertLessEqual(set(told.options), set(completed(*path, "-")), path)

    def test_the_completion_goes_by_what_was_typed(self):
        self.assertEqual(completed("sc"), ["scan"])
        self.assertEqual(completed("--data-dir", "scan", "--json", "library", "st"), ["status"])
        self.assertEqual(completed("scan", "--since", ""), ["rule", "installation", "all"])
        self.assertEqual(completed("trending", "--by", "t"), ["time"])
        self.assertEqual(completed("library", "use", ""), [], "a file is the user's own")


if __name__ == "__main__":
    TAVRIONCTL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
