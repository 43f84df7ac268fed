#!/usr/bin/env python3
"""Runs tools/arrows on small made-up trees: each kind of finding is found, and a clean tree passes."""

import os
import subprocess
import sys
import tempfile
import unittest

ARROWS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "arrows")


def run_on(files):
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            full = os.path.join(root, "src", path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as file:
                file.write(text)
        return subprocess.run([sys.executable, ARROWS, "--root", root], capture_output=True, text=True, check=False)


class ArrowsTest(unittest.TestCase):
    def assert_clean(self, files):
        result = run_on(files)
        self.assertEqual((result.returncode, result.stdout), (0, ""), result.stderr)

    def assert_finds(self, files, *expected):
        """Each finding is exactly one line, and each expected one begins with its place and holds its reason."""
        result = run_on(files)
        lines = result.stdout.splitlines()
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertEqual(len(lines), len(expected), result.stdout)
        for line, (place, reason) in zip(lines, expected):
            self.assertTrue(line.startswith(f"src/{place}: "), line)
            self.assertIn(reason, line)

    def test_a_clean_tree_passes(self):
        self.assert_clean({
            "platform/foundation/NSDate.h": "#pragma once\n#include <vector>\n#include <unicode/calendar.h>\n",
            "platform/foundation/Defaults.cpp": "#include <plist/plist.h>\n#include <plist.h>\n",
            "platform/dispatch/Queue.h": '#include "platform/foundation/NSDate.h"\n',
            "platform/sqlite/Database.cpp": '#include <sqlite3.h>\n#include "platform/dispatch/Queue.h"\n',
            "platform/coredata/Context.h": '#include "platform/dispatch/Queue.h"\n',
            "platform/mediaplayer/Source.h": '#include "platform/dispatch/Queue.h"\n',
            "sources/musicxml/Reader.h": "",
            "sources/musicxml/Reader.cpp":
                '#include <expat.h>\n#include "platform/mediaplayer/Source.h"\n#include "sources/musicxml/Reader.h"\n',
            "session/Session.cpp": '#include "sources/musicxml/Reader.h"\n',
            "platform/testing/Clock.h": '#include "platform/coredata/Context.h"\n',
            "recording/Scan.h": '#include "platform/coredata/Context.h"\n#include "recording/Port.h"\n',
            "recording/Port.h": "",
            "persistence/Store.cpp": '#include "recording/Scan.h"\n',
            "kit/screens/Model.h": "#include <QAbstractListModel>\n#include <QtGlobal>\n",
            "kit/screens/Cell.qml": "import QtQuick\n",
            "shell/screens/Page.qml": 'import QtQuick\nimport "../../kit/screens"\nimport Tavrion.Kit\n',
            "apps/tavrion/main.cpp": '#include <QGuiApplication>\n#include "persistence/../recording/Scan.h"\n',
            "apps/tavrionctl/main.cpp": '#include "recording/Scan.h"\n#include "Command.h"\n',
            "apps/tavrionctl/Command.h": "",
        })

    def test_an_upward_arrow_between_floors(self):
        floors = ["platform/foundation", "kit", "sources/mpd", "recording", "library", "timeviews", "awards",
                  "persistence", "shell", "session", "apps/tavrionctl"]
        for lower, upper in zip(floors, floors[1:]):
            with self.subTest(lower=lower):
                self.assert_finds({f"{lower}/Low.h": f'\n#include "{upper}/High.h"\n', f"{upper}/High.h": ""},
                                  (f"{lower}/Low.h:2", "is above"))

    def test_an_upward_or_sideways_arrow_between_rooms_of_the_platform(self):
        pairs = [("foundation", "dispatch"), ("dispatch", "sqlite"), ("sqlite", "coredata"), ("coredata", "cloudkit"),
                 ("dispatch", "mediaplayer"), ("coredata", "mediaplayer"),
                 ("mediaplayer", "sqlite")]
        for lower, upper in pairs:
            with self.subTest(lower=lower, upper=upper):
                self.assert_finds(
                    {f"platform/{lower}/Low.h": f'#include "platform/{upper}/High.h"\n', f"platform/{upper}/High.h": ""},
                    (f"platform/{lower}/Low.h:1", f"platform/{upper} is not below platform/{lower}"))

    def test_only_those_who_choose_a_library_name_its_source(self):
        for folder in ("recording", "library", "shell"):
            with self.subTest(folder=folder):
                self.assert_finds({f"{folder}/A.cpp": '#include "sources/mpd/Source.h"\n', "sources/mpd/Source.h": ""},
                                  (f"{folder}/A.cpp:1", "only the floors that choose a library"))

    def test_one_player_knows_no_other(self):
        self.assert_finds({"sources/mpd/A.cpp": '#include "sources/musicxml/B.h"\n#include "sources/C.h"\n',
                           "sources/musicxml/B.h": "", "sources/C.h": ""},
                          ("sources/mpd/A.cpp:1", "sources/musicxml is another player's folder"))

    def test_the_product_never_includes_the_testing_room(self):
        for folder in ("platform/coredata", "recording", "apps/tavrionctl"):
            with self.subTest(folder=folder):
                self.assert_finds(
                    {f"{folder}/A.cpp": '#include "platform/testing/Clock.h"\n', "platform/testing/Clock.h": ""},
                    (f"{folder}/A.cpp:1", "platform/testing is for tests only"))

    def test_a_rooms_own_testing_folder_wraps_its_library_and_is_for_tests_only(self):
        files = {
            "platform/sqlite/testing/Disk.h": "#include <sqlite3.h>\n",
            "platform/testing/Store.h": '#include "platform/sqlite/testing/Disk.h"\n',
        }
        self.assert_clean(files)
        self.assert_finds({**files, "platform/sqlite/A.cpp": '#include "platform/sqlite/testing/Disk.h"\n'},
                          ("platform/sqlite/A.cpp:1", "platform/sqlite/testing is for tests only"))

    def test_a_circle_of_files(self):
        self.assert_finds({
            "recording/A.h": '#include "recording/B.h"\n',
            "recording/B.h": '// B\n#include "recording/C.h"\n',
            "recording/C.h": '\n\n#include "recording/A.h"\n',
        }, ("recording/C.h:3", "recording/A.h -> recording/B.h -> recording/C.h -> recording/A.h"))

    def test_a_file_that_includes_itself(self):
        self.assert_finds({"recording/A.h": '#include "A.h"\n'}, ("recording/A.h:1", "circle"))

    def test_two_ways_to_one_file_are_no_circle(self):
        self.assert_clean({
            "recording/A.h": '#include "recording/B.h"\n#include "recording/C.h"\n',
            "recording/B.h": '#include "recording/D.h"\n',
            "recording/C.h": '#include "recording/D.h"\n',
            "recording/D.h": "",
        })

    def test_qt_outside_the_screens(self):
        for header in ("QObject", "QtGlobal", "QtCore/QObject", "Qt", "qobject.h"):
            for path in ("kit/A.h", "apps/tavrionctl/A.h", "platform/dispatch/A.h"):
                with self.subTest(header=header, path=path):
                    self.assert_finds({path: f"#include <{header}>\n"}, (f"{path}:1", "Qt belongs to"))

    def test_qml_outside_the_screens(self):
        self.assert_finds({"kit/A.h": "", "kit/Cell.qml": "import QtQuick\n"}, ("kit/Cell.qml:1", "QML belongs to"))

    def test_an_upward_import_in_qml(self):
        self.assert_finds({
            "shell/A.h": "",
            "shell/screens/Page.qml": "",
            "kit/screens/Cell.qml": 'import QtQuick\nimport "../../shell/screens"\nimport Tavrion.Shell\n',
        }, ("kit/screens/Cell.qml:2", "is above"), ("kit/screens/Cell.qml:3", "is above"))

    def test_a_qml_import_of_a_folder_that_is_not_there(self):
        self.assert_finds({"kit/A.h": "", "kit/screens/Cell.qml": 'import "../nothing"\n'},
                          ("kit/screens/Cell.qml:1", "there is no such folder"))

    def test_a_wrapped_library_outside_its_room(self):
        rooms = {"sqlite3.h": "platform/sqlite", "unicode/ucol.h": "platform/foundation",
                 "plist/plist.h": "platform/foundation", "libintl.h": "platform/foundation",
                 "nlohmann/json.hpp": "platform/foundation",
                 "expat.h": "sources/musicxml"}
        for header, room in rooms.items():
            for spelling in (f"<{header}>", f'"{header}"'):
                with self.subTest(spelling=spelling):
                    self.assert_finds({"platform/coredata/A.cpp": f"#include {spelling}\n"},
                                      ("platform/coredata/A.cpp:1", f"belongs to {room}"))
            self.assert_clean({f"{room}/A.cpp": f"#include <{header}>\n"})

    def test_a_library_wrapped_by_one_file(self):
        wrapper = "apps/tavrionctl/CommandSyntax.cpp"
        self.assert_clean({wrapper: "#include <CLI/CLI.hpp>\n"})
        self.assert_finds({"apps/tavrionctl/CommandSyntax.h": "#include <CLI/App.hpp>\n"},
                          ("apps/tavrionctl/CommandSyntax.h:1", f"belongs to {wrapper}"))

    def test_an_include_that_leads_nowhere(self):
        self.assert_finds({"recording/A.cpp": '#include "recording/A.h"\n#  include <platform/foundation/NoDate.h>\n'},
                          ("recording/A.cpp:1", "there is no such file"), ("recording/A.cpp:2", "there is no such file"))

    def test_an_include_out_of_the_sources_leads_nowhere(self):
        self.assert_finds({"recording/A.cpp": '#include "../../outside.h"\n'}, ("recording/A.cpp:1", "no such file"))

    def test_an_include_that_names_no_file(self):
        self.assert_finds({"recording/A.cpp": "#include HEADER\n"}, ("recording/A.cpp:1", "must name its file"))

    def test_an_angled_include_of_an_own_file_is_an_arrow_too(self):
        self.assert_finds({"recording/A.h": "#include <persistence/B.h>\n", "persistence/B.h": ""},
                          ("recording/A.h:1", "is above"))

    def test_a_floor_or_room_without_a_place_is_found(self):
        self.assert_finds({"attic/A.h": '#include "recording/B.h"\n', "recording/B.h": ""},
                          ("attic/A.h:1", "the floor attic is unknown"))
        self.assert_finds({"platform/gamekit/A.h": '#include "platform/dispatch/B.h"\n', "platform/dispatch/B.h": ""},
                          ("platform/gamekit/A.h:1", "the room platform/gamekit is unknown"))

    def test_comments_and_strings_are_not_includes(self):
        self.assert_clean({"recording/A.cpp": (
            '// #include "persistence/B.h"\n/*\n#include "persistence/B.h"\n*/\n'
            'const char* text = R"x(\n#include "persistence/B.h"\n)x";\n'), "persistence/B.h": ""})

    def test_a_comment_opener_in_a_line_comment_or_string_hides_nothing(self):
        for opener in ("// see */screens/* and src/*", 'const char* pattern = "src/*";', "// it's \"half open"):
            with self.subTest(opener=opener):
                self.assert_finds({"recording/A.cpp": f'{opener}\n#include "persistence/B.h"\n/* end */\n',
                                   "persistence/B.h": ""}, ("recording/A.cpp:2", "is above"))

    def test_a_tree_without_sources_is_an_error(self):
        result = run_on({"recording/notes.txt": ""})
        self.assertEqual(result.returncode, 2)
        self.assertIn("no source file", result.stderr)
        result = subprocess.run([sys.executable, ARROWS, "--root", "/nonexistent"], capture_output=True, text=True,
                                check=False)
        self.assertEqual(result.returncode, 2)
        self.assertIn("there is no folder", result.stderr)


if __name__ == "__main__":
    unittest.main()
