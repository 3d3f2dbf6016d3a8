"""Interfaces that close a stream, die or send signals: the program ends soon when
nobody is left to answer, and waits for that without using the processor."""

import os
import shlex
import signal
import subprocess
import sys
import time

import fault_kit
from fault_kit import LOG, is_alive, stat_fields, wait_until
from kit.engine_process import PIPE, EngineProcess

SOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
DOOMED = [sys.executable, os.path.join(SOURCES, "tests", "kit", "doomed_interface.py")]

# What brings the program where it is to be left alone: the beginning of the line
# to wait for, then the lines to send.
IDLE = ("readyok", "uci|isready")
SEARCHES = {
    "uci, on its own time": ("Allowing", "uci|go wtime 36000000 btime 36000000"),
    "uci, to a depth": ("info depth 2", "uci|go depth 40"),
    "uci, until told": ("info depth 2", "uci|go infinite"),
    "uci, pondering": ("info depth 2", "uci|go ponder wtime 36000000"),
    "xboard, on its own time": ("Allowing", "xboard|new|time 360000|otim 360000|e2e4"),
    "xboard, pondering": ("PONDERING", "xboard|new|time 10|otim 10|e2e4"),
}
MATE_FOUND = ("info depth 1", "uci|position fen 6k1/5ppp/8/8/8/8/8/R3K3 w - -|go infinite")


class KilledInterface(fault_kit.FaultTest):

    def leave_behind(self, words):
        """The number of an engine whose interface is killed with SIGKILL."""
        beginning, text = words
        folder = fault_kit.temporary_folder()
        self.addCleanup(folder.cleanup)
        interface = EngineProcess([*DOOMED, fault_kit.mirvo, beginning, *text.split("|")],
                                  folder.name)
        self.addCleanup(interface.close)
        engine = int(interface.read_line().text)
        self.assertTrue(is_alive(engine))
        interface.kill()
        return engine

    def expect_gone(self, engine):
        gone = wait_until(lambda: not is_alive(engine), 10)
        if not gone:
            os.kill(engine, signal.SIGKILL)
        self.assertTrue(gone)

    def test_an_idle_engine_follows_it(self):
        self.expect_gone(self.leave_behind(IDLE))

    def test_a_searching_engine_follows_it(self):
        for name, words in SEARCHES.items():
            with self.subTest(name):
                self.expect_gone(self.leave_behind(words))

    def test_an_engine_that_delays_its_best_move_follows_it(self):
        self.expect_gone(self.leave_behind(MATE_FOUND))


class ClosedPipes(fault_kit.FaultTest):
    """The process that started the engine lives on, for example a start script that
    waits for it."""

    def begin(self, words):
        """An engine in the state that the words describe, on bare pipes."""
        beginning, text = words
        folder = fault_kit.temporary_folder()
        self.addCleanup(folder.cleanup)
        engine = EngineProcess([fault_kit.mirvo], folder.name)
        self.addCleanup(engine.close)
        engine.send(*text.split("|"))
        engine.wait_for_line(beginning)
        return engine, os.path.join(folder.name, LOG)

    @staticmethod
    def read_log(log):
        with open(log, encoding="ascii") as file:
            return file.read()

    def test_both_closed_end_it_with_status_0(self):
        for name, words in {"idle": IDLE, "mate found": MATE_FOUND, **SEARCHES}.items():
            with self.subTest(name):
                engine, _ = self.begin(words)
                engine.close_output()
                engine.close_input()
                self.assertEqual(engine.wait(10 * fault_kit.patience), 0)

    def test_the_input_alone_closed_leaves_it_waiting_without_work(self):
        engine, _ = self.begin(IDLE)
        engine.close_input()
        before = engine.processor_seconds()
        time.sleep(0.5)
        self.assertIsNone(engine.poll())
        # A spinning engine would take half a second; the system counts in ticks of 10 ms.
        self.assertLess(engine.processor_seconds() - before, 0.06)

    def test_the_output_alone_closed_leaves_it_at_work(self):
        # SIGPIPE would end it at the first line printed.
        for name, words in {"idle": IDLE, **SEARCHES}.items():
            with self.subTest(name):
                engine, log = self.begin(words)
                engine.close_output()
                n_features = self.read_log(log).count("feature myname=")
                engine.send("isready", "force", "stop", "eval", "xboard")
                self.assertTrue(wait_until(
                    lambda: self.read_log(log).count("feature myname=") > n_features, 10))
                engine.send("quit")
                self.assertEqual(engine.wait(10 * fault_kit.patience), 0)

    def test_its_answer_to_a_closed_output_is_in_the_log(self):
        engine, log = self.begin(SEARCHES["uci, until told"])
        engine.close_output()
        engine.send("stop")

        self.assertTrue(wait_until(lambda: "bestmove" in self.read_log(log), 10))


class UnreadRuns(fault_kit.FaultTest):
    """A task ends when nobody reads its output any more; an engine does not, because
    it notices otherwise when its interface is gone."""

    GAMES = os.path.join(SOURCES, "data", "opening_lines.pgn")
    SUITE = os.path.join(SOURCES, "data", "mirvo-suite.epd")
    TASKS = [["-perft", "8"], ["-analyze", SUITE], ["-eval", "8/8/8/8/8/8/8/K6k", "w", "-"],
             ["-test", "8/8/8/8/8/8/8/K6k", "w", "-"], ["-createbook", GAMES, "20", "1", "b.bk"],
             ["-mergebooks", "a.bk", "b.bk", "c.bk"], ["-bookstats", "b.bk"],
             ["-listmoves", "b.bk", "8/8/8/8/8/8/8/K6k", "w", "-"], ["-quiet", "--p", "8"]]

    def begin(self, words, reader, **how):
        """Starts the program with these arguments and a pipe for its output."""
        folder = fault_kit.temporary_folder()
        self.addCleanup(folder.cleanup)
        program = EngineProcess([fault_kit.mirvo, *words], folder.name, output=reader, **how)
        self.addCleanup(program.close)
        return program, folder.name

    def begin_unread(self, words, **how):
        read_end, write_end = os.pipe()
        os.close(read_end)
        try:
            return self.begin(words, write_end, **how)
        finally:
            os.close(write_end)

    def test_every_task_ends_by_the_signal(self):
        for words in self.TASKS:
            with self.subTest(words[0]):
                program, _ = self.begin_unread(words)
                self.assertEqual(program.wait(60 * fault_kit.patience), -signal.SIGPIPE)

    def test_a_parent_that_ignores_the_signal_does_not_count(self):
        # This interpreter ignores it, and so would its children.
        for words in (["-perft", "8"], ["-analyze", self.SUITE]):
            with self.subTest(words[0]):
                program, _ = self.begin_unread(words, restore_signals=False)
                self.assertEqual(program.wait(60 * fault_kit.patience), -signal.SIGPIPE)

    def test_a_task_that_prints_nothing_for_hours_ends_too(self):
        program, _ = self.begin(["-perft", "9"], PIPE)
        program.wait_for_line("1|RNBQKBNR")
        time.sleep(0.2)  # the rest of the board
        program.close_output()
        self.assertEqual(program.wait(30 * fault_kit.patience), -signal.SIGPIPE)

    def test_a_reader_of_one_line_ends_a_count(self):
        line = f"{shlex.quote(fault_kit.mirvo)} -perft 8 | head -1"
        with fault_kit.temporary_folder() as folder:
            done = subprocess.run(["sh", "-c", line], cwd=folder, timeout=60 * fault_kit.patience,
                                  stdout=subprocess.PIPE, text=True, check=True)
        self.assertTrue(done.stdout.startswith("Welcome to Mirvo"))
        self.assertEqual(done.stdout.count("\n"), 1)

    def test_an_engine_that_nobody_ever_read_does_what_it_is_told(self):
        for words in ([], ["-quiet", "-depth", "3", "-usebook", "none"]):
            program, folder = self.begin_unread(words)
            program.send("uci", "isready", "quit")
            self.assertEqual(program.wait(60 * fault_kit.patience), 0)
            with open(os.path.join(folder, LOG), encoding="ascii") as log:
                self.assertIn("readyok", log.read())


class MissingStreams(fault_kit.FaultTest):
    """Started without one or more standard streams."""

    def test_without_output_the_log_has_every_message_once(self):
        self.start(command="$mirvo >&-")
        self.send("uci", "isready", "quit")
        self.assertEqual(self.ended(), 0)
        log = self.read(LOG)
        self.assertEqual(log.count("Welcome to Mirvo"), 1)
        self.assertEqual(log.count("readyok"), 1)

    def test_without_input_it_does_not_read_its_own_files(self):
        # If the log became its input, the engine would read "quit" from it.
        self.start("echo Book=quit > config.txt", "$mirvo <&-")
        self.wait("Ponder=1")
        pid = self.engine.pid
        self.assertEqual(os.readlink(f"/proc/{pid}/fd/0"), "/dev/null")
        self.assertIsNone(self.engine.poll())

    def test_without_any_stream_a_tool_runs_to_its_end(self):
        self.start(command="$mirvo -perft 3 <&- >&- 2>&-")
        self.assertEqual(self.ended(), 0)
        self.assertIn("3         8902\n", self.read(LOG))


class Signals(fault_kit.FaultTest):
    """Under XBoard an interrupt is ignored and a request to terminate lets earlier
    commands finish (xboard_process_test.py); otherwise the system's default actions
    apply, during a search too."""

    def test_interrupt_and_terminate_end_any_uci_session(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for line, reply in (("isready", "readyok"), ("go infinite", "info"),
                                ("go depth 40", "info")):
                with self.subTest(f"{number.name} after {line}"):
                    self.start()
                    self.speak_uci()
                    self.send(line)
                    self.wait(reply)
                    self.engine.signal(number)
                    self.assertEqual(self.ended(), -number)

    def test_before_a_protocol_is_known_they_end_it_too(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(number.name):
                self.start()
                self.wait("Ponder=1")
                self.engine.signal(number)
                self.assertEqual(self.ended(), -number)

    def test_a_broken_pipe_signal_is_ignored_in_every_state(self):
        self.start()
        self.speak_uci()
        self.engine.signal(signal.SIGPIPE)
        self.send("go infinite")
        self.wait("info")
        self.engine.signal(signal.SIGPIPE)
        self.send("stop")
        self.wait("bestmove")
        self.quit()

    def is_stopped(self):
        return stat_fields(self.engine.pid)[0] == "T"

    def test_a_stopped_process_goes_on_where_it_was(self):
        self.start()
        self.speak_uci()
        self.send("go infinite")
        self.wait("info")
        for _ in range(3):
            self.engine.signal(signal.SIGSTOP)
            self.assertTrue(wait_until(self.is_stopped, 10))
            self.engine.signal(signal.SIGCONT)
        self.send("stop")
        self.wait("bestmove")
        self.quit()


if __name__ == "__main__":
    fault_kit.main()
