"""Tests of the measuring itself: a kept promise passes, a broken one is named.

Run by CTest as soak.notices_broken_promises.
"""

import contextlib
import io
import pathlib
import sys
import unittest
import unittest.mock

import answer_times

FAULTY = pathlib.Path(__file__).with_name("faulty_times.py")

# Fault -> the line that must say so.
BROKEN = {
    "stop": "BROKEN stop to bestmove",
    "ready": "BROKEN isready to readyok",
    "clock": "BROKEN past the allotted time, ms",
    "hit": "BROKEN past the allotted time after a ponder hit",
    "idle": "BROKEN processor time",
    "end": "FAULT: the process ends",
}


def run(fault):
    """A short measuring with bounds that only the fault breaks."""
    text = io.StringIO()
    states = [(["uci"], "uciok")]
    with contextlib.redirect_stdout(text), unittest.mock.patch.object(
            answer_times, "IDLE_STATES", states):
        status = answer_times.main([
            f"{sys.executable} {FAULTY} {fault}", "--tries", "3", "--load", "0",
            "--judge", "own", "--answer", "150", "--overstep", "150", "--idle", "3",
            "--idle-time", "0.5"])
    return status, text.getvalue()


class AnswerTimes(unittest.TestCase):
    def test_kept_promises_pass(self):
        status, text = run("none")
        self.assertEqual(status, 0, text)
        self.assertEqual(text.count("kept"), 5, text)

    def test_every_broken_promise_is_named(self):
        for fault, line in BROKEN.items():
            with self.subTest(fault=fault):
                status, text = run(fault)
                self.assertEqual(status, 1, text)
                self.assertIn(line, text)
                self.assertEqual(text.count("BROKEN") + text.count("FAULT"), 1, text)

    def test_share_is_the_value_that_so_many_do_not_exceed(self):
        values = list(range(1, 201))
        self.assertEqual(answer_times.share(values, 0.99), 199)
        self.assertEqual(answer_times.share(values, 1), 200)
        self.assertEqual(answer_times.share([], 0.5), 0)


if __name__ == "__main__":
    unittest.main()
