"""Tests of the measuring scripts with made-up figures: how they read the engines'
lines, and their statistics. Nothing is timed.

Usage: test_bench_scripts.py BENCH_FOLDER   (unittest; run by CTest)
"""

import contextlib
import io
import sys
import unittest

sys.path.insert(0, sys.argv.pop(1))

import compare_builds  # noqa: E402
import compare_peers  # noqa: E402
import engine  # noqa: E402
import profile_summary  # noqa: E402
import scale  # noqa: E402


def printed(function, *arguments):
    """(what a function returns, what it prints)."""
    text = io.StringIO()
    with contextlib.redirect_stdout(text):
        result = function(*arguments)
    return result, text.getvalue()


class FakeEngine:
    """Answers a search with the lines it is given; each takes a second."""

    def __init__(self, lines):
        self.text, self.sent, self.clock = lines, [], 0.0

    def new_position(self, fen):
        self.sent.append(fen)

    def send(self, line):
        self.sent.append(line)

    def lines(self):
        for line in self.text:
            self.clock += 1.0
            yield line

    def seconds(self):
        return self.clock


class Lines(unittest.TestCase):
    def test_nodes_are_read_wherever_they_stand(self):
        self.assertEqual(engine.read_nodes("info depth 7 nodes 35549 nps 45055 pv c3d5"), 35549)
        self.assertEqual(engine.read_nodes("info nodes 65582 nps 407341"), 65582)

    def test_other_lines_have_no_nodes(self):
        for line in ("", "bestmove e2e4", "info depth 8", "info string nodes", "nodes 5"):
            self.assertIsNone(engine.read_nodes(line), line)

    def test_perft_answers_are_found_among_other_lines(self):
        lines = ["tellics set f5 1=1", "Raw nodes for depth 3: 97862", "Time : 0.00"]
        self.assertEqual(compare_peers.perft_answer(lines, lambda line: "Raw nodes" in line), 97862)
        self.assertEqual(compare_peers.perft_answer(["uciok", "", "8902"], str.isdecimal), 8902)

    def test_an_engine_without_answer_has_ended(self):
        with self.assertRaises(compare_peers.Ended):
            compare_peers.perft_answer(["Time : 0.00"], str.isdecimal)

    def test_signature_positions_are_whole_positions(self):
        positions = dict(engine.signature_positions())
        self.assertEqual(positions["initial"],
                         "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1")


class Searches(unittest.TestCase):
    def test_the_last_report_within_the_time_counts(self):
        fake = FakeEngine(["info nodes 100", "info nodes 300", "info depth 3", "info nodes 900",
                           "bestmove e2e4"])
        self.assertEqual(compare_peers.search_position(fake, "fen", 3), (300, 2.0))
        self.assertEqual(fake.sent, ["fen", "go infinite", "stop"])

    def test_a_search_without_move_has_ended(self):
        with self.assertRaises(compare_peers.Ended):
            compare_peers.search_position(FakeEngine(["info nodes 100"]), "fen", 3)


class Ratios(unittest.TestCase):
    FIGURES = {"mirvo": [(100, 1.0), (100, 2.0), (100, 4.0)],
               "peer": [(50, 1.0), (50, 1.0), (50, 1.0)]}

    def test_ratios_are_taken_within_rounds(self):
        self.assertEqual(compare_peers.ratios(self.FIGURES)["peer"], (2.0, 1.0))
        self.assertEqual(compare_peers.ratios(self.FIGURES)["mirvo"], (1.0, 1.0))

    def test_report_shows_best_and_median(self):
        text = printed(compare_peers.report, "title", "nodes", self.FIGURES)[1]
        self.assertIn("mirvo/peer best 2.00, median 1.00", text)
        self.assertNotIn("mirvo/mirvo", text)

    def test_an_engine_that_ends_early_is_left_out(self):
        def ends():
            raise compare_peers.Ended

        figures, text = printed(compare_peers.take_turns,
                                {"mirvo": lambda: (1, 1.0), "peer": ends}, 2)
        self.assertEqual(figures, {"mirvo": [(1, 1.0), (1, 1.0)]})
        self.assertEqual(text, "peer ended early and is left out\n")

    def test_an_engine_that_is_missing_is_left_out(self):
        found, text = printed(compare_peers.present, {"shell": "sh", "peer": "no-such-engine"})
        self.assertEqual(found, ["shell"])
        self.assertEqual(text, "peer is not installed and is left out\n")

    def test_builds_are_compared_by_the_geometric_mean(self):
        first = {"a": (10, [4.0]), "b": (10, [1.0]), "short": (10, [0.001])}
        other = {"a": (10, [1.0]), "b": (11, [1.0]), "short": (10, [0.1])}
        self.assertEqual(compare_builds.compare(first, other), (2.0, 2, 1))


class Profile(unittest.TestCase):
    TEXT = """\
Events shown: Ir D1mr DLmr
1,000 (100.0%) 20 (100.0%) 10 (100.0%)  PROGRAM TOTALS
Ir           D1mr         DLmr          file:function
600 (60.00%) 15 (75.00%)  .             ???:void mirvo::(anonymous namespace)::Play<1, 0>(mirvo::Board&) [/a/b]
300 (30.00%)  5 (25.00%)  9 (90.00%)    ???:void mirvo::(anonymous namespace)::Play<0, 0>(mirvo::Board&) [/a/b]
100 (10.00%)  0           1 (10.00%)    ???:mirvo::Picker::Next(unsigned int&) [/a/b]
"""

    def test_instances_of_a_template_are_added_up(self):
        totals, functions = profile_summary.read_annotated(self.TEXT)
        self.assertEqual(totals, [1000, 20, 10])
        self.assertEqual(functions, {"Play": [900, 20, 9], "Picker::Next": [100, 0, 1]})

    def test_figures_are_per_node(self):
        lines = profile_summary.table(*profile_summary.read_annotated(self.TEXT), 10, 1)
        self.assertEqual(lines[2:], ["| `Play` | 90.0 | 90.0% | 2,000 | 900 |",
                                     "| all | 100.0 | 100.0% | 2,000 | 1,000 |"])


class Scale(unittest.TestCase):
    ROWS = [{"table": size, "depth": depth, "nodes": 1000 * 2 ** depth, "seconds": 0.001 * 2 ** depth,
             "startup": 0.005, "memory": 100 + size} for size in (16, 1) for depth in (3, 4, 5)]

    def test_branching_factor_is_the_growth_of_nodes_by_ply(self):
        self.assertAlmostEqual(scale.branching(self.ROWS[:3]), 2.0)

    def test_tables_are_listed_by_size(self):
        self.assertEqual(scale.table(self.ROWS)[2:], ["| 1 | 0.03 | 2.00 | 1.00 | 0.005 | 101 |",
                                                      "| 16 | 0.03 | 2.00 | 1.00 | 0.005 | 116 |"])

    def test_the_plot_has_a_line_for_each_size(self):
        self.assertEqual(scale.plot(self.ROWS).count("<polyline"), 2)


if __name__ == "__main__":
    unittest.main()
