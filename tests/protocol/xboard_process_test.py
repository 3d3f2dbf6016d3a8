"""Drives the real program as XBoard does, signals included.

    xboard_process_test.py ./mirvo [--slow] [test name ...]

"--slow" is for builds that check themselves while they run: ten times the
limits.
"""

import os
import signal
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "arbiter"))
from uci_engine import EngineFault, UciEngine  # noqa: E402

MIRVO = ""
PATIENCE = 1


class XBoardProcess(unittest.TestCase):

    def setUp(self):
        self.command = MIRVO

    def start(self, protocol="xboard", first_word="feature"):
        self.engine = UciEngine("mirvo", self.command)
        self.addCleanup(self.engine.close)
        self.send(protocol)
        self.wait(first_word)

    def send(self, *lines):
        for line in lines:
            self.engine.send(line)

    def wait(self, first_word):
        return self.engine.wait_for(first_word, 10 * PATIENCE)[1]

    def signal(self, number):
        self.engine.signal(number)

    def ponder(self):
        """Gets the engine to ponder."""
        self.start()
        self.send("new", "time 100", "otim 100", "e2e4")
        self.wait("PONDERING")

    def think(self):
        """Gets the engine to search for minutes on its own time."""
        self.start()
        self.send("new", "time 360000", "otim 360000", "e2e4")
        self.wait("Allowing")

    def ended(self, limit):
        return self.engine.wait(limit * PATIENCE)

    def path(self, name):
        return os.path.join(self.engine.folder.name, name)

    def test_interrupts_are_ignored(self):
        self.ponder()
        for _ in range(20):
            self.signal(signal.SIGINT)
        self.send("time 100", "otim 100", "d2d4")
        self.wait("move")
        self.signal(signal.SIGINT)
        self.send("force", "new")
        self.signal(signal.SIGINT)
        self.send("e2e4")
        self.wait("move")
        self.engine.quit()

    def test_interrupt_ends_a_process_under_uci(self):
        self.start("uci", "uciok")
        self.signal(signal.SIGINT)
        self.assertEqual(self.ended(5), -signal.SIGINT)

    def test_interrupt_counts_again_after_a_switch_to_uci(self):
        self.start()
        self.send("uci")
        self.wait("uciok")
        self.signal(signal.SIGINT)
        self.assertEqual(self.ended(5), -signal.SIGINT)

    def test_terminate_ends_an_idle_engine_with_status_0(self):
        self.start()
        time.sleep(0.1)
        self.signal(signal.SIGTERM)
        self.assertEqual(self.ended(1.5), 0)

    def test_terminate_ends_a_thinking_engine_with_status_0(self):
        self.think()
        self.signal(signal.SIGTERM)
        self.assertEqual(self.ended(1.5), 0)

    def test_terminate_ends_a_pondering_engine_with_status_0(self):
        self.ponder()
        self.signal(signal.SIGTERM)
        self.assertEqual(self.ended(1.5), 0)

    def test_terminate_under_uci_is_the_systems(self):
        self.start("uci", "uciok")
        self.signal(signal.SIGTERM)
        self.assertEqual(self.ended(5), -signal.SIGTERM)

    def idle_in_a_game(self):
        self.start()
        self.send("new", "easy", "time 100", "e2e4")
        self.wait("move")

    def test_lines_before_a_terminate_are_handled(self):
        """They are in the pipe before the engine can read them."""
        self.command = f"sh -c 'echo LoggingMode=1 > config.txt; exec {MIRVO}'"
        for bring in (self.ponder, self.think, self.idle_in_a_game):
            with self.subTest(bring.__name__):
                bring()
                self.signal(signal.SIGSTOP)
                self.send("result 1-0 {White mates}", "force", "quit")
                self.signal(signal.SIGTERM)
                self.signal(signal.SIGCONT)
                self.assertEqual(self.ended(3), 0)
                with open(self.path("game000000.pgn"), encoding="ascii") as file:
                    self.assertIn('[Result "1-0"]', file.read())

    def test_end_of_input_abandons_pondering_silently(self):
        self.ponder()
        self.engine.close_input()
        deadline = time.monotonic() + 1
        words = []
        try:
            while (got := self.engine.read(deadline)) is not None:
                words.append(got[1].split()[:1])
        except EngineFault as fault:
            self.fail(str(fault))  # it stays alive while its parent does
        self.assertNotIn(["move"], words)
        self.assertNotIn(["PONDER"], words)

    def test_end_of_input_lets_a_timed_search_answer(self):
        self.start()
        self.send("new", "easy", "time 1000", "otim 1000", "e2e4")
        self.wait("Allowing")
        self.engine.close_input()
        self.wait("move")

    def test_force_is_taken_at_once_while_it_thinks(self):
        self.think()
        self.send("force")
        start = time.monotonic()
        self.wait("move")
        self.assertLess(time.monotonic() - start, 0.5 * PATIENCE)


if __name__ == "__main__":
    MIRVO = os.path.abspath(sys.argv.pop(1))
    if "--slow" in sys.argv:
        sys.argv.remove("--slow")
        PATIENCE = 10
    unittest.main()
