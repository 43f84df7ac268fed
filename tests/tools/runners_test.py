#!/usr/bin/env python3
"""Runs tools/tidy, tools/fuzz and tools/lint in made-up trees, with stand-ins for clang-tidy and fuzz targets."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest

TOOLS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools")


class Tree(unittest.TestCase):
    """A project root of its own, with a copy of one tool and of those it calls."""

    tool = ""
    called = ()

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.realpath(folder.name)
        os.makedirs(os.path.join(self.root, "tools"))
        for tool in (self.tool, *self.called):
            shutil.copy(os.path.join(TOOLS, tool), os.path.join(self.root, "tools", tool))

    def write(self, path, text, executable=False):
        full = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(text)
        if executable:
            os.chmod(full, 0o755)

    def run_command(self, *words):
        # A hook of git that runs the tests names its own repository in the environment.
        environment = {name: value for name, value in os.environ.items() if not name.startswith("GIT_")}
        return subprocess.run(words, cwd=self.root, env=environment, capture_output=True, text=True, check=False,
                              stdin=subprocess.DEVNULL)

    def run_tool(self, *words):
        return self.run_command(os.path.join(self.root, "tools", self.tool), *words)


class TidyTest(Tree):
    tool = "tidy"

    def setUp(self):
        super().setUp()
        # Complains about a source that holds the word "wrong", and keeps a list of what it was asked to look at.
        self.write("bin/clang-tidy", '#!/bin/sh\n[ "$1" = --version ] && { echo 14; exit; }\n'
                   'for word; do source=$word; done\necho "$source" >> calls\n'
                   'if grep -q wrong "$source"; then echo "$source: it is wrong"; exit 1; fi\n', executable=True)
        self.write(".clang-tidy", "Checks: all\n")
        self.write("src/A.cpp", '#include "deep/B.h"\n#include <vector>\n')
        self.write("src/deep/B.cpp", '#include "C.h"\n')
        self.write("src/deep/B.h", '#  include "deep/D.h"\n')
        self.write("src/deep/C.h", "")
        self.write("src/deep/D.h", "")

    def commands(self, *sources, flags="-Wall"):
        entries = [{"directory": self.root, "file": source,
                    "command": f"clang++ {flags} -I{self.root}/src -I/usr/include -o x.o -c {source}"} for source in sources]
        self.write("build/compile_commands.json", json.dumps(entries))

    def look(self, *folders):
        """Runs it, and gives the result and the sources that clang-tidy was asked to look at."""
        calls = os.path.join(self.root, "calls")
        if os.path.exists(calls):
            os.remove(calls)
        path = os.path.join(self.root, "bin") + os.pathsep + os.environ["PATH"]
        result = self.run_command("env", f"PATH={path}", os.path.join(self.root, "tools/tidy"), "build", *(folders or ["src"]))
        if not os.path.exists(calls):
            return result, []
        with open(calls, encoding="utf-8") as file:
            return result, sorted(os.path.relpath(line, self.root) for line in file.read().splitlines())

    def test_clean_sources_pass_and_each_is_looked_at(self):
        self.commands("src/A.cpp", "src/deep/B.cpp")
        result, seen = self.look()
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(seen, ["src/A.cpp", "src/deep/B.cpp"])

    def test_what_was_clean_is_looked_at_again_only_when_something_changed(self):
        self.commands("src/A.cpp", "src/deep/B.cpp")
        self.look()
        changes = {
            "nothing": (lambda: None, []),
            "its text": (lambda: self.write("src/A.cpp", '#include "deep/B.h"\n'), ["src/A.cpp"]),
            "a header": (lambda: self.write("src/deep/C.h", "int c;\n"), ["src/deep/B.cpp"]),
            "a header of a header": (lambda: self.write("src/deep/D.h", "int d;\n"), ["src/A.cpp"]),
            "a header that is found elsewhere now": (lambda: self.write("src/deep/deep/D.h", ""), ["src/A.cpp"]),
            "the checks": (lambda: self.write(".clang-tidy", "Checks: few\n"), ["src/A.cpp", "src/deep/B.cpp"]),
            "the call": (lambda: self.commands("src/A.cpp", "src/deep/B.cpp", flags="-Wextra"),
                         ["src/A.cpp", "src/deep/B.cpp"]),
        }
        for name, (change, expected) in changes.items():
            with self.subTest(change=name):
                change()
                result, seen = self.look()
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
                self.assertEqual(seen, expected)
                self.assertIn(f"2 files, {len(expected)} of them new or changed", result.stdout)

    def test_a_finding_fails_and_is_shown_again_until_it_is_mended(self):
        self.commands("src/A.cpp", "src/deep/B.cpp")
        self.write("src/deep/B.cpp", "wrong\n")
        for _ in range(2):
            result, seen = self.look()
            self.assertEqual(result.returncode, 1)
            self.assertIn("src/deep/B.cpp: it is wrong", result.stdout)
            self.assertIn("src/deep/B.cpp", seen)
        self.write("src/deep/B.cpp", "right\n")
        self.assertEqual(self.look()[0].returncode, 0)

    def test_a_source_that_no_target_compiles_fails(self):
        self.commands("src/A.cpp")
        result, _ = self.look()
        self.assertEqual(result.returncode, 1)
        self.assertIn("src/deep/B.cpp:1: no target of build compiles this file", result.stdout)

    def test_nothing_to_check_is_an_error(self):
        self.commands("src/A.cpp")
        self.assertEqual(self.look("tools")[0].returncode, 2)

    def test_a_build_directory_that_is_not_configured_is_an_error(self):
        result, _ = self.look()
        self.assertEqual(result.returncode, 2)
        self.assertIn("configure it first", result.stderr)


class FuzzTest(Tree):
    tool = "fuzz"

    def setUp(self):
        super().setUp()
        for name in ("reader", "writer", "parser"):
            self.target(name, f'echo "{name} $1" >> "$0.calls"\necho "Done 7 runs"\n')
            self.write(f"fuzz/corpus/{name}/first", "x")
        self.write("build/fuzz-targets.txt", "reader\nwriter\nparser\n")

    def target(self, name, script):
        self.write(f"build/fuzz/{name}", f"#!/bin/sh\n{script}", executable=True)

    def test_every_target_replays_its_corpus_and_then_searches(self):
        result = self.run_tool("build", "3")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        for name in ("reader", "writer", "parser"):
            with open(os.path.join(self.root, f"build/fuzz/{name}.calls"), encoding="utf-8") as file:
                self.assertEqual(file.read().splitlines(), [f"{name} -runs=0", f"{name} -max_total_time=3"])
            self.assertIn(f"fuzz: {name}: 1 inputs replayed; Done 7 runs", result.stdout)

    def test_a_target_that_breaks_fails_whichever_it_is(self):
        for name in ("reader", "writer", "parser"):
            for argument in ("-runs=0", "-max_total_time=3"):
                with self.subTest(name=name, argument=argument):
                    self.setUp()
                    self.target(name, f'if [ "$1" = {argument} ]; then echo it crashed; exit 77; fi\n')
                    result = self.run_tool("build", "3")
                    self.assertNotEqual(result.returncode, 0)
                    self.assertIn("it crashed", result.stdout)
                    self.assertIn(f"{name} broke", result.stderr)

    def test_a_target_without_a_corpus_is_an_error(self):
        os.remove(os.path.join(self.root, "fuzz/corpus/writer/first"))
        result = self.run_tool("build", "3")
        self.assertEqual(result.returncode, 1)
        self.assertIn("writer has no corpus", result.stderr)

    def test_a_target_that_is_not_built_is_an_error(self):
        os.remove(os.path.join(self.root, "build/fuzz/writer"))
        self.assertIn("writer is not built", self.run_tool("build", "3").stderr)

    def test_no_target_at_all_is_an_error(self):
        self.write("build/fuzz-targets.txt", "")
        result = self.run_tool("build", "3")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no fuzz target", result.stderr)


class LintTest(Tree):
    tool = "lint"
    called = ("bodies",)

    def setUp(self):
        super().setUp()
        self.write("src/A.cpp", "int a;\n" * 600)
        self.write("src/A.qml", "Item {}\n" * 300)
        self.assertEqual(self.run_command("git", "init", "-q").returncode, 0)

    def paths(self, text):
        self.write("docs/page.md", text)
        self.assertEqual(self.run_command("git", "add", ".").returncode, 0)
        return self.run_tool("paths")

    def test_files_of_the_greatest_size_pass(self):
        self.assertEqual(self.run_tool("sizes").returncode, 0)

    def test_a_file_too_long_fails(self):
        for path, lines in {"src/A.cpp": 601, "src/deep/A.h": 601, "src/A.qml": 301}.items():
            with self.subTest(path=path):
                self.write(path, "line\n" * lines)
                result = self.run_tool("sizes")
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"{path}:{lines}: over", result.stdout)
                os.remove(os.path.join(self.root, path))

    def test_a_function_too_long_fails_wherever_it_is(self):
        for folder in ("src", "tests"):
            with self.subTest(folder=folder):
                self.write(f"{folder}/B.cpp", "int f() {\n" + "\n" * 60 + "}\n")
                result = self.run_tool("sizes")
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"{folder}/B.cpp:1: f has 62 lines", result.stdout)
                os.remove(os.path.join(self.root, folder, "B.cpp"))

    def test_a_folder_of_tests_without_what_it_tests_fails(self):
        for folder in ("src/room/deep", "tests/room/deep", "tests/data/sub", "tests/integration", "tests/support", "tests/tools"):
            os.makedirs(os.path.join(self.root, folder))
        self.assertEqual(self.run_tool("folders").returncode, 0)
        for folder in ("tests/attic", "tests/room/other", "tests/room/data"):
            with self.subTest(folder=folder):
                os.makedirs(os.path.join(self.root, folder))
                result = self.run_tool("folders")
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"{folder}: there is no src/{folder[6:]}", result.stdout)
                os.rmdir(os.path.join(self.root, folder))

    def test_paths_of_every_system_and_relative_ones_pass_and_so_does_the_tool_itself(self):
        result = self.paths("#!/usr/bin/env python3\n/etc/localtime, /var/lib, ../tmp/a, $HOME/opt/a, ${place}/opt/a, a/home/b\n"
                            "https://host/root/a, tests/tmp/a, */tmp/*, a home/opt/tmp, /tmp, ~/opt/a, {root}/srv/a\n"
                            "/home/user/Music, file:///Users/listener/Music, --data-dir /tmp/try, (/tmp/try)\n")
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_a_path_of_one_machine_fails(self):
        for folder in ("home", "root", "work", "tmp", "Users", "opt", "mnt", "media", "srv", "private", "workspace"):
            for text in (f"/{folder}/anna/x", f"see '/{folder}/.x'", f"a=/{folder}/1", f"file:///{folder}/x", f"-I/{folder}/x"):
                with self.subTest(text=text):
                    result = self.paths(f"first line\n{text}\n")
                    self.assertEqual(result.returncode, 1)
                    self.assertIn("docs/page.md:2:", result.stdout)
        for text in (f"/{'home'}/users", f"/{'tmp'}/try2", f"/{'tmp'}/try and /{'tmp'}/other"):
            with self.subTest(text=text):
                self.assertEqual(self.paths(text).returncode, 1)

    def test_a_path_in_a_file_that_git_does_not_know_yet_fails(self):
        self.write("docs/new.md", f"/{'work'}/x")
        self.assertIn("docs/new.md:1:", self.run_tool("paths").stdout)

    def test_an_unknown_check_is_wrong_usage(self):
        self.assertEqual(self.run_tool("beauty").returncode, 2)


if __name__ == "__main__":
    unittest.main()
