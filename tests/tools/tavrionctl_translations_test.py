#!/usr/bin/env python3
"""Gives the built tavrionctl (its path is the first argument) a translation and reads what it prints."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

TAVRIONCTL = ""
TEXTS = '''msgid ""
msgstr "Content-Type: text/plain; charset=UTF-8\\n"

msgid "Songs"
msgstr "Titel"

msgid "See All (%lu)"
msgstr "Alle %lu zeigen"

msgid "%lux"
msgstr "%lu-mal"
'''


class Translations(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = holder.name
        messages = os.path.join(self.folder, "locale", "de", "LC_MESSAGES")
        os.makedirs(messages)
        subprocess.run(["msgfmt", "-o", os.path.join(messages, "tavrion.mo"), "-"], input=TEXTS, text=True, check=True)

    def ask(self, *arguments, **environment):
        environment = {**os.environ, "XDG_CACHE_HOME": self.folder, "TZ": "UTC", "LANGUAGE": "", **environment}
        done = subprocess.run([TAVRIONCTL, "--data-dir", os.path.join(self.folder, "data"), *arguments], text=True,
                              env=environment, stdin=subprocess.DEVNULL, capture_output=True, check=True)
        return done.stdout

    def search(self, **environment):
        self.ask("--now", "2026-03-01T12:00:00Z", "library", "use", "sample", "300", **environment)
        return self.ask("--now", "2026-03-01T12:00:00Z", "search", "a", **environment)

    def test_texts_are_in_the_language_of_the_locale(self):
        told = self.search(LC_ALL="de_DE.UTF-8", TEXTDOMAINDIR=os.path.join(self.folder, "locale"))
        self.assertRegex(told, r"(?m)^Titel$")
        self.assertRegex(told, r"Alle \d+ zeigen")

    def test_play_counts_are_in_the_language_too(self):
        german = {"LC_ALL": "de_DE.UTF-8", "TEXTDOMAINDIR": os.path.join(self.folder, "locale")}
        self.search(**german)
        self.ask("--now", "2026-03-01T12:00:00Z", "scan", "--since", "all", **german)
        for command in (["library", "songs"], ["trending", "--range", "lifetime", "--by", "plays"],
                        ["browse", "--sort", "play-count"]):
            told = self.ask("--now", "2026-03-01T12:00:00Z", *command, **german)
            self.assertTrue(re.search(r"\d+-mal", told), command)
            self.assertFalse(re.search(r"\d+x(\s|$)", told), command)

    def test_another_language_has_the_texts_as_they_are(self):
        told = self.search(LC_ALL="C", TEXTDOMAINDIR=os.path.join(self.folder, "locale"))
        self.assertRegex(told, r"(?m)^Songs$")
        self.assertRegex(told, r"See All \(\d+\)")


if __name__ == "__main__":
    TAVRIONCTL = os.path.abspath(sys.argv.pop(1))
    unittest.main()
