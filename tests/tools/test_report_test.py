#!/usr/bin/env python3
"""Runs tools/test-report on reports in the form in which ctest writes them."""

import os
import subprocess
import sys
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "test-report")

PASSED = '<testcase name="room.Unit.Works" status="run"><system-out>[       OK ] Unit.Works</system-out></testcase>'
FAILED = '<testcase name="room.Unit.Breaks" status="fail"><failure message=""/><system-out/></testcase>'
SKIPPED = """<testcase name="room.Unit.Skips" status="notrun"><skipped message="SKIP_REGULAR_EXPRESSION_MATCHED"/>
<system-out>[ RUN      ] Unit.Skips
/somewhere/UnitTest.cpp:4: Skipped
no player on this machine,
install one
[  SKIPPED ] Unit.Skips (0 ms)
</system-out></testcase>"""
SKIPPED_QUIETLY = """<testcase name="room.Unit.Quiet" status="notrun"><skipped message="SKIP_REGULAR_EXPRESSION_MATCHED"/>
<system-out>/somewhere/UnitTest.cpp:5: Skipped

[  SKIPPED ] Unit.Quiet (0 ms)
</system-out></testcase>"""
DISABLED = '<testcase name="room.Unit.Off" status="disabled"><system-out>Disabled</system-out></testcase>'
NOT_STARTED = """<testcase name="missing" status="notrun"><skipped message="Unable to find executable"/>
<system-out>Unable to find executable: nowhere</system-out></testcase>"""


def report(*cases, text=None):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "tests.xml")
        with open(path, "w", encoding="utf-8") as file:
            file.write(text if text is not None else f"<testsuite>{''.join(cases)}</testsuite>")
        result = subprocess.run([sys.executable, TOOL, path], capture_output=True, text=True, check=False)
    return result.returncode, result.stdout.splitlines()


class TestReportTest(unittest.TestCase):
    def test_all_passed(self):
        self.assertEqual(report(PASSED, PASSED), (0, ["2 passed, 0 failed, 0 skipped"]))

    def test_a_failed_test_is_named_and_fails_the_report(self):
        self.assertEqual(report(PASSED, FAILED), (1, ["failed: room.Unit.Breaks", "1 passed, 1 failed, 0 skipped"]))

    def test_a_skipped_test_is_named_with_its_reason(self):
        self.assertEqual(report(PASSED, SKIPPED), (0, [
            "skipped: room.Unit.Skips: no player on this machine, install one", "1 passed, 0 failed, 1 skipped"]))

    def test_a_skip_without_a_reason_says_so(self):
        self.assertEqual(report(PASSED, SKIPPED_QUIETLY)[1][0], "skipped: room.Unit.Quiet: no reason given")

    def test_a_disabled_test_counts_as_skipped(self):
        self.assertEqual(report(PASSED, DISABLED),
                         (0, ["skipped: room.Unit.Off: disabled", "1 passed, 0 failed, 1 skipped"]))

    def test_a_test_that_could_not_be_started_has_failed(self):
        self.assertEqual(report(PASSED, NOT_STARTED), (1, ["failed: missing", "1 passed, 1 failed, 0 skipped"]))

    def test_a_run_in_which_nothing_passed_is_no_success(self):
        self.assertEqual(report(), (1, ["0 passed, 0 failed, 0 skipped"]))
        self.assertEqual(report(SKIPPED)[0], 1)

    def test_a_broken_file_is_an_error(self):
        self.assertEqual(report(text="<testsuite>"), (2, []))


if __name__ == "__main__":
    unittest.main()
