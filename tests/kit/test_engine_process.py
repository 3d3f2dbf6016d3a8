"""Tests of the kit that starts engines, with small programs that misbehave in
every way an engine may."""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from unittest import mock

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from kit import engine_process  # noqa: E402
from kit.engine_process import (DROPPED, JOINED, KEPT, EngineProcess, OutputEnded,  # noqa: E402
                                TooLate)

LIMIT = 60  # seconds for what takes no time
ECHO = "import sys\nfor line in sys.stdin: print('heard', line, end='', flush=True)"


def shell(text):
    return ["sh", "-c", text]


def python(text):
    return [sys.executable, "-c", text]


class EngineProcessTest(unittest.TestCase):
    def start(self, command, *folder, **how):
        engine = EngineProcess(command, *folder, **how)
        self.addCleanup(engine.close)
        return engine

    def texts(self, engine):
        return [line.text for line in engine.read_rest(LIMIT)]


class Talking(EngineProcessTest):
    def test_lines_go_in_and_come_out(self):
        engine = self.start(python(ECHO))
        engine.send("one", "two")
        line, skipped = engine.wait_for_line("heard two", LIMIT)
        self.assertEqual([skip.text for skip in skipped], ["heard one"])
        engine.send("three", "four")
        line, skipped = engine.wait_for_line(("neither", "heard"), LIMIT)
        self.assertEqual((line.text, skipped), ("heard three", []))
        engine.close_input()
        self.assertEqual(self.texts(engine), ["heard four"])
        self.assertEqual(engine.wait(LIMIT), 0)

    def test_arrivals_are_the_lines_own(self):
        engine = self.start(python(ECHO))
        before = time.monotonic()
        engine.send("one")
        while engine._lines.empty():
            time.sleep(0.01)
        after = time.monotonic()
        time.sleep(0.05)
        self.assertTrue(before <= engine.read_line().arrival <= after)

    def test_arrivals_tell_lines_apart(self):
        lines = self.start(shell("seq 1000")).read_rest(LIMIT)
        self.assertEqual(len({line.arrival for line in lines}), 1000)

    def test_each_line_is_shown_as_it_arrives(self):
        shown = []
        with mock.patch.object(EngineProcess, "arrived", lambda _, line: shown.append(line.text)):
            engine = self.start(shell("echo one; echo two; printf three"))
            self.assertEqual(self.texts(engine), ["one", "two", "three"])
        self.assertEqual(shown, ["one", "two", "three"])

    def test_bytes_and_line_ends_are_kept(self):
        engine = self.start(shell(r"printf 'a\r\n\n\377b\nend'"))
        lines = engine.read_rest(LIMIT)
        self.assertEqual([line.data for line in lines], [b"a\r\n", b"\n", b"\xffb\n", b"end"])
        self.assertEqual([line.text for line in lines], ["a", "", "\ufffdb", "end"])

    def test_all_lines_up_to_the_end(self):
        engine = self.start(shell("seq 3"))
        self.assertEqual([line.text for line in engine.all_lines()], ["1", "2", "3"])

    def test_nothing_is_lost_of_much_output(self):
        engine = self.start(shell("seq 300000; printf end"))
        self.assertEqual(engine.wait(LIMIT), 0)  # though nobody has read yet
        self.assertEqual(self.texts(engine), [*map(str, range(1, 300001)), "end"])

    def test_full_pipes_in_both_directions(self):
        engine = self.start(["cat"])
        lines = [str(number) * 10 for number in range(100000)]
        engine.send(*lines)
        engine.close_input()
        self.assertEqual(self.texts(engine), lines)

    def test_a_program_that_does_not_read(self):
        engine = self.start(["sleep", "1000"])
        with self.assertRaises(TooLate):
            engine.send_bytes(bytes(1000000), limit=0.1)

    def test_a_program_that_is_gone(self):
        engine = self.start(["true"])
        engine.wait(LIMIT)
        with self.assertRaises(OSError):
            engine.send("anybody?")


class Waiting(EngineProcessTest):
    def test_a_line_that_does_not_come(self):
        engine = self.start(shell("echo one; exec sleep 1000"))
        with self.assertRaisesRegex(TooLate, "no two within 0.5 s") as caught:
            engine.wait_for_line("two", 0.5)
        self.assertEqual([line.text for line in caught.exception.lines], ["one"])
        self.assertIsNone(engine.read_line(time.monotonic()))

    def test_a_line_that_cannot_come_any_more(self):
        engine = self.start(["echo", "one"])
        with self.assertRaises(OutputEnded) as caught:
            engine.wait_for_line("two", LIMIT)
        self.assertEqual([line.text for line in caught.exception.lines], ["one"])
        with self.assertRaises(OutputEnded):  # and not for ever the second time
            engine.read_line()
        self.assertEqual(engine.read_rest(), [])

    def test_output_without_an_end(self):
        engine = self.start(shell("echo one; exec sleep 1000"))
        with self.assertRaises(TooLate) as caught:
            engine.read_rest(0.5)
        self.assertEqual([line.text for line in caught.exception.lines], ["one"])

    def test_a_program_that_does_not_end(self):
        engine = self.start(["sleep", "1000"])
        self.assertIsNone(engine.poll())
        with self.assertRaises(TooLate):
            engine.wait(0.1)

    def test_statuses(self):
        for text, status in (("exit 7", 7), ("kill -TERM $$", -signal.SIGTERM)):
            self.assertEqual(self.start(shell(text)).wait(LIMIT), status)
        engine = self.start(["sleep", "1000"])
        engine.signal(signal.SIGINT)
        self.assertEqual(engine.wait(LIMIT), -signal.SIGINT)
        self.assertEqual(engine.poll(), -signal.SIGINT)
        engine.signal(signal.SIGINT)  # nobody is hit who has the number by now


class Ending(EngineProcessTest):
    def test_nothing_is_left_of_a_program_that_does_not_want_to_end(self):
        with EngineProcess(shell("trap '' TERM INT HUP; echo ready; while :; do :; done")) as engine:
            engine.wait_for_line("ready", LIMIT)
        self.assertFalse(os.path.exists(f"/proc/{engine.pid}"))
        self.assertEqual(engine.poll(), -signal.SIGKILL)
        self.assertFalse(engine.reader.is_alive())
        engine.close()

    def test_what_was_printed_outlives_the_program(self):
        engine = self.start(shell("seq 3; printf unfinished; exec sleep 1000"))
        while engine._unfinished != b"unfinished":
            time.sleep(0.01)
        engine.close()
        self.assertEqual(self.texts(engine), ["1", "2", "3", "unfinished"])

    def test_a_child_of_the_program_that_keeps_the_pipes(self):
        with mock.patch.object(engine_process, "CLOSE_LIMIT", 0.1):
            engine = self.start(shell("sleep 1000 & echo $!"), errors=KEPT)
            child = int(engine.read_line().text)
            self.assertEqual(engine.wait(LIMIT), 0)
            engine.close()
        os.kill(child, signal.SIGKILL)

    def test_no_file_stays_open(self):
        before = os.listdir("/proc/self/fd")
        for how in ({}, {"errors": KEPT}, {"input": subprocess.DEVNULL}, {"errors": JOINED}):
            with EngineProcess(shell("echo one; echo two >&2"), **how) as engine:
                engine.wait(LIMIT)
        self.assertEqual(os.listdir("/proc/self/fd"), before)

    def test_output_that_nobody_reads_any_more(self):
        engine = self.start(["yes"])
        engine.wait_for_line("y", LIMIT)
        engine.close_output()
        self.assertEqual(engine.wait(LIMIT), -signal.SIGPIPE)


class Starting(EngineProcessTest):
    def test_standard_error_goes_where_it_is_wanted(self):
        text = "echo out; echo err >&2"
        for errors, lines, kept in ((DROPPED, ["out"], b""), (JOINED, ["out", "err"], b""),
                                    (KEPT, ["out"], b"err\n")):
            engine = self.start(shell(text), errors=errors)
            self.assertEqual(self.texts(engine), lines)
            engine.close()
            self.assertEqual(engine.errors, kept)

    def test_folder_and_environment(self):
        with tempfile.TemporaryDirectory() as folder:
            engine = self.start(shell("pwd; echo $FIGURE"), folder, environment={"FIGURE": "8"})
            self.assertEqual(self.texts(engine), [os.path.realpath(folder), "8"])

    def test_files_in_place_of_pipes(self):
        with tempfile.TemporaryDirectory() as folder:
            said, heard = pathlib.Path(folder, "said"), pathlib.Path(folder, "heard")
            said.write_text("one\ntwo\n", encoding="ascii")
            with open(said, "rb") as source, open(heard, "wb") as target:
                engine = self.start(["cat"], input=source, output=target)
            self.assertEqual(engine.wait(LIMIT), 0)
            self.assertEqual(heard.read_text(encoding="ascii"), "one\ntwo\n")
            self.assertEqual(engine.read_rest(), [])

    def test_one_core(self):
        core = max(os.sched_getaffinity(0))
        engine = self.start(python("import os; print(os.getpid(), *os.sched_getaffinity(0))"),
                            core=core)
        self.assertEqual(self.texts(engine), [f"{engine.pid} {core}"])

    def test_a_program_that_does_not_exist(self):
        before = os.listdir("/proc/self/fd")
        with self.assertRaises(FileNotFoundError):
            EngineProcess(["/no/such/engine"])
        self.assertEqual(os.listdir("/proc/self/fd"), before)


class ProcessorTime(EngineProcessTest):
    SPIN = python("import time\nwhile time.process_time() < 0.3: pass\nprint(1, flush=True)\ninput()")

    def test_of_a_program_that_runs_and_that_has_ended(self):
        engine = self.start(self.SPIN)
        engine.wait_for_line("1", LIMIT)
        used = engine.processor_seconds()
        self.assertGreaterEqual(used, 0.3)
        engine.send("")
        engine.wait(LIMIT)
        # The system counts the whole life in another way, a few ticks apart.
        self.assertGreater(engine.processor_seconds(), used - 0.05)
        self.assertGreater(engine.usage.ru_maxrss, 1000)  # kilobytes

    def test_of_a_program_that_sleeps(self):
        engine = self.start(shell("echo ready; exec sleep 1000"))
        engine.wait_for_line("ready", LIMIT)
        self.assertLess(engine.processor_seconds(), 0.2)


if __name__ == "__main__":
    unittest.main()
