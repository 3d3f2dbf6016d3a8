"""Tests of check_instructions.py with made-up figures: nothing is counted."""

import contextlib
import io
import pathlib
import tempfile
import unittest

import check_instructions

STORED = {"perft": 400.0, "search": 4000.0}


def run(measured, stored=None, compiler="12.2.0", stored_compiler="12.2.0", store=False,
        valgrind=True):
    """(exit status, printed text, stored figures afterwards)."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "stored.txt"
        check_instructions.write_stored(path, stored_compiler, STORED if stored is None else stored)
        arguments = ["workload", str(path), "--compiler", compiler] + ["--store"] * store
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            status = check_instructions.main(arguments, lambda _, name: measured[name],
                                             lambda _: "valgrind" if valgrind else None)
        return status, printed.getvalue(), check_instructions.read_stored(path)


class Guard(unittest.TestCase):
    def test_equal_figures_pass_and_are_printed(self):
        status, printed, _ = run(STORED)
        self.assertEqual(status, 0)
        self.assertIn("perft: 400.0 instructions per node, stored 400.0 (+0.0%)", printed)
        self.assertIn("search: 4000.0 instructions per node", printed)

    def test_growth_within_three_percent_passes(self):
        self.assertEqual(run({"perft": 411.9, "search": 4119.0})[0], 0)

    def test_growth_of_either_figure_beyond_three_percent_fails(self):
        for name, value in (("perft", 412.1), ("search", 4121.0)):
            status, printed, _ = run({**STORED, name: value})
            self.assertEqual(status, 1, name)
            self.assertIn(f"{name}: grown by more than 3%", printed)
            self.assertIn("--store", printed)

    def test_improvement_beyond_three_percent_asks_to_store_it(self):
        status, printed, _ = run({"perft": 387.0, "search": 4000.0})
        self.assertEqual(status, 0)
        self.assertIn("perft: fallen by more than 3%", printed)
        self.assertNotIn("search: fallen", printed)

    def test_a_missing_stored_figure_fails(self):
        status, printed, _ = run(STORED, stored={"perft": 400.0})
        self.assertEqual(status, 1)
        self.assertIn("search: 4000.0 instructions per node, no stored figure", printed)

    def test_another_compiler_prints_and_skips(self):
        status, printed, _ = run({"perft": 800.0, "search": 8000.0}, compiler="13.1.0")
        self.assertEqual(status, check_instructions.SKIPPED)
        self.assertIn("perft: 800.0 instructions per node", printed)
        self.assertIn("built by g++ 13.1.0, the stored figures by g++ 12.2.0", printed)

    def test_without_valgrind_it_skips(self):
        status, printed, _ = run(STORED, valgrind=False)
        self.assertEqual(status, check_instructions.SKIPPED)
        self.assertIn("valgrind is not installed", printed)

    def test_storing_replaces_figures_and_compiler(self):
        grown = {"perft": 800.0, "search": 8000.5}
        status, printed, stored = run(grown, compiler="13.1.0", store=True)
        self.assertEqual(status, 0)
        self.assertEqual(stored, ("13.1.0", grown))
        self.assertIn("search 8000.5", printed)

    def test_ordinary_runs_leave_the_stored_file_alone(self):
        self.assertEqual(run({"perft": 300.0, "search": 9000.0})[2], ("12.2.0", STORED))


if __name__ == "__main__":
    unittest.main()
