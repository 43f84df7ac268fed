#!/usr/bin/env python3
"""Runs tools/bodies on made-up files: it measures functions and classes as a reader sees them."""

import os
import subprocess
import sys
import tempfile
import unittest

BODIES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "bodies")


def measure(text, *options, name="A.cpp"):
    """The result for a file of that text; every function over 3 lines and every class over 4 is found."""
    with tempfile.TemporaryDirectory() as root:
        path = os.path.join(root, "src", name)
        os.makedirs(os.path.dirname(path))
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return subprocess.run([sys.executable, BODIES, *(options or ("--function", "3", "--class", "4")), "src"], cwd=root,
                              capture_output=True, text=True, check=False)


class BodiesTest(unittest.TestCase):
    def assert_clean(self, text):
        result = measure(text)
        self.assertEqual((result.returncode, result.stdout), (0, ""), result.stderr)

    def assert_finds(self, text, *expected):
        """Each expected finding is a line and what begins its text."""
        result = measure(text)
        lines = result.stdout.splitlines()
        self.assertEqual((result.returncode, len(lines)), (1, len(expected)), result.stdout + result.stderr)
        for found, (line, words) in zip(lines, expected):
            self.assertTrue(found.startswith(f"src/A.cpp:{line}: {words}"), found)

    def test_a_function_of_the_greatest_length_passes_and_a_longer_one_does_not(self):
        self.assert_clean("int f() {\n    return 1;\n}\n")
        self.assert_finds("\n\nint f() {\n    int a = 1;\n    return a;\n}\n", (3, "f has 4 lines, over 3"))

    def test_a_head_of_several_lines_counts(self):
        head = "template <class T, class = std::enable_if_t<true>>\nstd::vector<int> House::room(\n    int a) const noexcept {\n"
        self.assert_finds(head + "}\n", (1, "House::room has 4 lines"))

    def test_a_class_of_the_greatest_length_passes_and_a_longer_one_does_not(self):
        for head in ("class A", "struct A final : B<C>, D", "template <class T>\nclass A", 'class MARK("x") A', 'class MARK("x") A final',
                     "enum class A : int"):
            with self.subTest(head=head):
                self.assert_clean(head + " {\n1\n2\n3\n4\n};\n")
                self.assert_finds(head + " {\n1\n2\n3\n4\n5\n};\n", (1, "A has 5 lines, over 4"))

    def test_a_function_in_a_class_in_a_namespace(self):
        self.assert_finds("namespace a::b {\nnamespace {\nclass A {\n  public:\n    int f() const override {\n\n\n    }\n};\n}\n}\n",
                          (5, "f has 4 lines"), (3, "A has 5 lines"))

    def test_what_says_who_may_call_belongs_to_no_function(self):
        for word in ("public", "protected", "private"):
            self.assertEqual(measure(f"class A {{\n  {word}:\n    int f() {{\n\n    }}\n}};\n", "--function", "3", "src").stdout, "")

    def test_many_short_functions_are_no_long_one(self):
        self.assert_clean("int f() {\n}\n" * 50 + "int a = 1;\n" * 50 + "int g() { return 1; }\n" * 50)

    def test_a_constructor_with_members_in_braces(self):
        text = "A::A(int a)\n    : B{a}, c_(1), d_{{1}, {2}},\n      e_(f(g{})) {\n}\nint f() {\n}\n"
        self.assert_finds(text, (1, "A::A has 4 lines"))
        self.assert_finds("A::A()\n    : a_{1} {\n\n}\n", (1, "A::A has 4 lines"))
        self.assert_finds("A::~A() {\n\n\n}\n", (1, "A::~A has 4 lines"))

    def test_blocks_and_lambdas_are_part_of_their_function(self):
        self.assert_finds("int f() {\n  if (a) {\n    g([] { return 1; });\n  }\n  struct B {\n  };\n}\n", (1, "f has 7 lines"))

    def test_a_lambda_outside_of_functions(self):
        self.assert_finds("const auto f = [](int a) -> int {\n\n\n};\n", (1, "f has 4 lines"))

    def test_lists_of_values_are_no_functions(self):
        self.assert_clean("constexpr std::array x{\n1,\n2,\n3,\n4\n};\nint y[] = {\n{f(1)},\n{2},\n3\n};\n")

    def test_operators_and_functions_that_end_in_other_words(self):
        for head in ("bool operator==(const A& a) const", "A& operator=(A&& a) noexcept", "auto f() -> std::map<int, int>",
                     "void f() &", "f() try", "explicit operator bool() const", "int f() REQUIRES(mutex_)",
                     "struct A* f()"):
            with self.subTest(head=head):
                self.assert_clean(head + " {\n\n}\n")
                self.assertEqual(measure(head + " {\n\n\n}\n").returncode, 1)

    def test_braces_in_texts_comments_and_directives_open_nothing(self):
        for hidden in ('"{"', "'{'", '"\\"{"', "// {", "/* {\n{ */", 'R"x({\n")")x"', "u8R\"({)\"", 'LR"({"{)"', "1'000 + '{'", "#define A {",
                       "#define A \\\n  {", "L'{'", "0x1'F + u'{'"):
            with self.subTest(hidden=hidden):
                self.assert_clean(f"int a;\n{hidden}\n;\nint f() {{\n}}\n")
                self.assert_finds(f"int f() {{\n{hidden}\n\n\n}}\n", (1, "f has"))

    def test_a_test_is_named_whole(self):
        self.assert_finds("TEST(Thing, doesThis) {\n\n\n}\n", (1, "TEST(Thing, doesThis) has 4 lines"))

    def test_what_cannot_be_measured_is_a_finding(self):
        self.assert_finds("int f() {\n", (1, "can't be measured: the brace in line 1 is never closed"))
        self.assert_finds("int f() {\n}\n}\n", (1, "can't be measured: line 3 closes a brace"))

    def test_the_limits_of_the_project(self):
        self.assertEqual(measure("int f() {\n" + "\n" * 58 + "}\nclass A {\n" + "\n" * 150 + "};\n", "src").returncode, 0)
        result = measure("int f() {\n" + "\n" * 59 + "}\nclass A {\n" + "\n" * 151 + "};\n", "src")
        self.assertIn("f has 61 lines, over 60", result.stdout)
        self.assertIn("A has 151 lines, over 150", result.stdout)

    def test_only_sources_are_read_and_all_of_them(self):
        long = "int f() {\n\n\n}\n"
        self.assertEqual(measure(long, name="A.md").returncode, 0)
        self.assertEqual(measure(long, name="deep/A.h").returncode, 1)

    def test_a_path_that_is_not_there_is_wrong_usage(self):
        self.assertEqual(measure("", "nowhere").returncode, 2)


if __name__ == "__main__":
    unittest.main()
