"""Commands that arrive through a Windows pipe while the Windows program searches,
and the end of that pipe. The sessions are the same as on other systems.

    polling_test.py "COMMAND OF THE ENGINE"
"""

import os
import sys
import time
import unittest

TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path.insert(0, os.path.join(TESTS, "protocol"))
import uci_process_test  # noqa: E402
import xboard_process_test  # noqa: E402

# Without the tests that inspect processes from outside or send signals.
SESSIONS = unittest.defaultTestLoader.loadTestsFromTestCase(uci_process_test.UciProcess)
ENDINGS = [uci_process_test.EndOfInput("test_a_search_that_ends_by_itself_answers"),
           uci_process_test.EndOfInput("test_an_endless_search_is_stopped_and_answers"),
           xboard_process_test.XBoardProcess("test_end_of_input_abandons_pondering_silently"),
           xboard_process_test.XBoardProcess("test_end_of_input_lets_a_timed_search_answer"),
           xboard_process_test.XBoardProcess("test_force_is_taken_at_once_while_it_thinks")]


def engine_process(folder):
    """The process number of the engine, found by its working directory; the process
    that the test started is the driver."""
    for name in os.listdir("/proc"):
        try:
            with open(f"/proc/{name}/cmdline", encoding="utf-8", errors="replace") as file:
                program = file.read().split("\0")[0]
            if program.endswith("mirvo.exe") and os.readlink(f"/proc/{name}/cwd") == folder:
                return int(name)
        except OSError:
            continue
    return None


class Idle(unittest.TestCase):

    def test_after_the_end_of_input_the_engine_waits_and_ends_with_its_parent(self):
        engine = uci_process_test.UciEngine("mirvo", uci_process_test.MIRVO)
        self.addCleanup(engine.close)
        engine.start([])
        engine.close_input()
        number = engine_process(engine.folder.name)
        self.assertIsNotNone(number)
        ticks = uci_process_test.processor_ticks(number)
        time.sleep(1.0)
        self.assertIsNone(engine.poll())
        used = (uci_process_test.processor_ticks(number) - ticks) / os.sysconf("SC_CLK_TCK")
        self.assertLess(used, 0.1)
        engine.kill()
        deadline = time.monotonic() + 10
        while uci_process_test.is_alive(number) and time.monotonic() < deadline:
            time.sleep(0.05)
        self.assertFalse(uci_process_test.is_alive(number))


class XBoard(unittest.TestCase):

    def setUp(self):
        self.engine = uci_process_test.UciEngine("mirvo", uci_process_test.MIRVO)
        self.addCleanup(self.engine.close)
        for line in ("xboard", "protover 2", "new", "hard", "time 500", "otim 500", "e2e4"):
            self.engine.send(line)
        self.engine.wait_for("PONDERING", 20)

    def test_a_move_reaches_the_engine_while_it_ponders(self):
        self.engine.send("time 100")
        self.engine.send("otim 100")
        self.engine.send("a2a3")
        self.engine.wait_for("move", 20)

    def test_quit_ends_pondering(self):
        self.engine.quit()


def main():
    uci_process_test.MIRVO = xboard_process_test.MIRVO = sys.argv[1]
    # With Wine's server running as well, answers may take longer.
    uci_process_test.MEDIAN_LIMIT = 0.2
    uci_process_test.WORST_LIMIT = 2.0
    xboard_process_test.PATIENCE = 4
    suite = unittest.TestSuite([SESSIONS, *ENDINGS])
    for case in (Idle, XBoard):
        suite.addTests(unittest.defaultTestLoader.loadTestsFromTestCase(case))
    return 0 if unittest.TextTestRunner(verbosity=2).run(suite).wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
