"""Tests of tools/mutations.py: what is changed, and what is left alone.

Usage: test_mutations.py   (unittest; run by CTest as tools.mutations)
"""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

from mutations import mutations_of


def changed(line):
    """The lines that a statement in a function can become."""
    text = "void F() {\n" + line + "\n}\n"
    return {m.new_line.strip() for m in mutations_of(text) if m.line == 2}


class Mutations(unittest.TestCase):
    def expect(self, line, *expected):
        found = changed(line)
        for text in expected:
            self.assertIn(text, found)

    def test_comparisons_move_by_one_or_turn(self):
        self.expect("if (a < b) F();", "if (a <= b) F();", "if (a > b) F();")
        self.expect("if (a == b) F();", "if (a != b) F();")

    def test_signs_and_constants(self):
        self.expect("x = a + 7;", "x = a - 7;", "x = a + 8;", "x = a + 6;")
        self.expect("x = -a;", "x = a;")
        self.expect("x = 0x10ULL;", "x = 0x11ULL;", "x = 0x20ULL;")
        self.expect("x = 1.25F;", "x = 1.26F;")

    def test_conditions(self):
        self.expect("if (a && F(b)) G();", "if (a || F(b)) G();", "if (!(a && F(b))) G();")
        self.expect("while (!a) G();", "while (a) G();", "while (!(!a)) G();")

    def test_statements_are_dropped_with_their_condition(self):
        self.expect("if (a) return b;", ";")
        self.expect("table.count += 2;", ";")
        self.expect("++n;", ";", "--n;")

    def test_arguments_indices_and_colours_are_swapped(self):
        self.expect("F(a, b);", "F(b, a);")
        self.expect("x = t[a][b];", "x = t[b][a];")
        self.expect("x = own[white];", "x = own[black];", "x = enemy[white];")

    def test_an_operator_at_the_end_of_a_line(self):
        self.expect("x = a +", "x = a -")
        self.expect("if (a &&", "if (a ||")

    def test_declarations_and_ends_of_functions_stay(self):
        self.assertEqual(changed("int x;"), set())
        self.assertNotIn(";", changed("int x = a;"))
        self.assertNotIn(";", changed("return a;"))
        self.assertEqual(changed("int values[12];"), set())

    def test_what_is_no_code_stays(self):
        for line in ("// a + 1", 'Print("a + 1 < b");', "assert(a < 1);", "static_assert(a < 1);",
                     "#include <a>", "template <int n>"):
            self.assertLessEqual(changed(line), {";"}, line)

    def test_template_brackets_are_no_comparisons(self):
        self.assertEqual(changed("auto x = F<a>(b);"), set())

    def test_digits_of_names_and_separated_numbers_stay(self):
        self.assertEqual(changed("x2 = int32 + 1'000;"), {";", "x2 = int32 - 1'000;"})


if __name__ == "__main__":
    unittest.main()
