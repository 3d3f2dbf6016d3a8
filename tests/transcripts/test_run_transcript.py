"""Tests of the transcript runner: right sessions pass, each kind of difference
is noticed, and nothing outlives its time limit.

Usage: test_run_transcript.py   (unittest; run by CTest as transcript.runner)
"""

import contextlib
import io
import pathlib
import sys
import tempfile
import time
import unittest

import run_transcript
from case_file import CaseError, read_case
from normalise import normalise

# A stand-in for the engine: prints its arguments, echoes lines, obeys a few. It
# writes past Python's buffers, like the engine past the C library's: text left
# in one when a pipe is closed would be written once more at the end, and give
# the program another exit status.
PROGRAM = r'''#!%s
import os, pathlib, sys, time
log = open("mirvo_0.2.7_d_log.txt", "wb", buffering=0)
def show(text):
    os.write(sys.stdout.fileno(), text.encode())
def say(text):
    show(text)
    log.write(text.encode())
say("args" + "".join(" " + word for word in sys.argv[1:]) + "\n")
for line in sys.stdin:
    word = line.strip()
    if word == "quit":
        sys.exit(0)
    elif word == "fail":
        sys.exit(3)
    elif word == "hang":
        time.sleep(1000)
    elif word == "console":
        show("not logged\n")
    elif word == "complain":
        sys.stderr.write("a complaint\n")
    elif word == "save":
        pathlib.Path("saved.txt").write_text("saved\n")
    elif word == "half":
        say("half a line")
    elif word == "cat":
        say(pathlib.Path("given.txt").read_text())
    elif word == "time":
        say("info depth 3 seldepth 5 time 17 score cp -4 nodes 99 nps 5823 pv e2e4 \n")
    else:
        say(word + " \n" if word.startswith("blank") else word + "\n")
say("end of input\n")
''' % sys.executable


class RunnerTest(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.program = self.folder / "program"
        self.program.write_text(PROGRAM)
        self.program.chmod(0o755)

    def run_case(self, text, *options):
        """Status and printed text of one case."""
        case = self.folder / "some.case"
        case.write_text(text)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            status = run_transcript.main([*options, str(self.program), str(case)])
        return status, printed.getvalue()

    def passes(self, text, *options):
        status, printed = self.run_case(text, *options)
        self.assertEqual((status, printed), (0, ""))

    def fails(self, text, reason, *options):
        status, printed = self.run_case(text, *options)
        self.assertEqual(status, 1)
        self.assertIn(reason, printed)

    def test_passes_a_session_that_is_as_expected(self):
        self.passes('args one "two three"\nsend hello\nexpect ^hel+o$\nsend quit\n'
                    "output\n|args one two three\n|hello\n")

    def test_passes_patterns_and_gaps(self):
        self.passes("send a1\nsend b\nsend c\nsend d\nsend quit\noutput\n...\n~a[0-9]\n...\n|d\n")

    def test_a_pattern_stands_for_one_line(self):
        self.fails("send a\nsend b\nsend quit\noutput\n|args\n~a.*\n", "+b")

    def test_notices_other_output(self):
        self.fails("send hello\nsend quit\noutput\n|args\n|hallo\n", "-hallo\n+hello")

    def test_notices_missing_and_surplus_lines(self):
        self.fails("send quit\noutput\n|args\n|more\n", "-more")
        self.fails("send more\nsend quit\noutput\n|args\n", "+more")

    def test_notices_blanks_at_the_end_of_a_line(self):
        self.passes("send blank\nsend quit\noutput\n|args\n|blank \\\n")
        self.fails("send blank\nsend quit\noutput\n|args\n|blank\n", "+blank ")

    def test_notices_a_missing_line_end(self):
        self.passes("send half\nsend quit\noutput\n|args\n|half a line\n\\ no newline\n")
        self.fails("send half\nsend quit\noutput\n|args\n|half a line\n", "no newline")
        self.fails("send quit\noutput\n|args\n\\ no newline\n", "no newline")

    def test_notices_another_exit_status(self):
        self.fails("send fail\noutput\n|args\n", "exit status 3 instead of 0")
        self.passes("send fail\nstatus 3\noutput\n|args\n")

    def test_ends_a_program_that_hangs(self):
        start = time.monotonic()
        self.fails("time-limit 0.5\nsend hang\noutput\n|args\n", "did not end in time")
        self.assertLess(time.monotonic() - start, 100)

    def test_ends_a_wait_for_a_line_that_does_not_come(self):
        self.fails("time-limit 0.5\nexpect ^never$\nsend quit\noutput\n|args\n",
                   "no line like '^never$' came in time")

    def test_notices_an_end_before_the_awaited_line(self):
        self.fails("send quit\nexpect ^never$\noutput\n|args\n", "ended before a line like")

    def test_each_wait_goes_behind_the_last(self):
        self.fails("time-limit 0.5\nsend x\nexpect ^x$\nexpect ^x$\nsend quit\noutput\n|args\n|x\n",
                   "no line like")

    def test_ends_the_input(self):
        self.passes("send a\nclose\noutput\n|args\n|a\n|end of input\n")

    def test_stops_reading_the_output(self):
        # The stand-in dies of the closed pipe before it gets to its log.
        self.passes("send a\nexpect ^a$\nclose-output\nsend late\n"
                    "status 1\noutput\n|args\n|a\n", "--prefix", sys.executable)

    def test_sends_bytes(self):
        self.passes("send-bytes ab\\x63\\ndef\nclose\noutput\n|args\n|abc\n|def\n|end of input\n")

    def test_compares_the_log(self):
        self.fails("send console\nsend quit\noutput\n|args\n|not logged\n", "-not logged")
        self.passes("send console\nsend quit\noutput\n|args\n|not logged\nlog\n|args\n")
        self.passes("send console\nsend quit\noutput\n|args\n|not logged\nlog any\n")
        self.fails("send quit\noutput\n|args\nlog none\n", "the log file exists")

    def test_makes_and_checks_files(self):
        self.passes("file given.txt\n|one\n|two\nsend cat\nsend quit\noutput\n|args\n|one\n|two\n")
        self.passes("bytes given.txt \\x41\\n\nsend cat\nsend quit\noutput\n|args\n|A\n")
        self.passes("send save\nsend quit\noutput\n|args\nexpect-file saved.txt\n|saved\n"
                    "expect-bytes saved.txt 73617665640a\nno-file other.txt\n")
        self.fails("send save\nsend quit\noutput\n|args\nno-file saved.txt\n", "saved.txt exists")
        self.fails("send quit\noutput\n|args\nexpect-file saved.txt\n|saved\n",
                   "there is no saved.txt")

    def test_runs_again_in_the_same_folder(self):
        self.passes("run\nsend save\nsend quit\noutput\n|args\n"
                    "run\nargs again\nsend quit\noutput\n|args again\n"
                    "expect-file saved.txt\n|saved\n")

    def test_normalises(self):
        self.passes("send time\nsend quit\noutput\n|args\n"
                    "|info depth 3 seldepth 5 time # score cp -4 nodes 99 nps # pv e2e4 \\\n")
        self.passes("normalise ^v\\d+ => v#\nsend v12\nsend quit\noutput\n|args\n|v#\n")

    def test_leaves_out_repeated_lines_where_the_case_says_so(self):
        session = "send v1\nsend w\nsend v2\nsend v3\nsend w\nsend quit\noutput\n|args\n"
        self.passes("once ^v\\d\n" + session + "|v1\n|w\n|w\n")
        self.fails("once ^v\\d\n" + session + "|v2\n|w\n|w\n", "+v1")
        self.fails(session + "|v1\n|w\n|w\n", "+v2")

    def test_reports_standard_error(self):
        self.fails("send complain\nsend quit\noutput\n|args\n", "a complaint")
        self.passes("send complain\nsend quit\noutput\n|args\n", "--prefix", sys.executable)

    def test_skips_cases_of_another_platform(self):
        status, printed = self.run_case("platform posix\noutput\n", "--platform", "windows")
        self.assertEqual(status, 77)
        self.assertIn("SKIP: some.case is about posix systems", printed)

    def test_update_puts_in_what_came(self):
        status, _ = self.run_case("send blank\nsend half\nsend quit\noutput\n|old\n# end\n",
                                  "--update")
        self.assertEqual(status, 1)
        text = (self.folder / "some.case").read_text()
        self.assertEqual(text, "send blank\nsend half\nsend quit\noutput\n"
                               "|args\n|blank \\\n|half a line\n\\ no newline\n# end\n")
        self.passes(text)

    def test_update_keeps_patterns_that_match(self):
        text = "send a\nsend quit\noutput\n...\n~[a-z]\n"
        self.passes(text, "--update")
        self.assertEqual((self.folder / "some.case").read_text(), text)


class CaseFileTest(unittest.TestCase):

    def read(self, text):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "some.case"
            path.write_text(text)
            return read_case(path)

    def test_refuses_what_it_does_not_understand(self):
        for text in ("sendd x\noutput\n", "output\nsome text\n ", "send x\n",
                     "send x\n|line\noutput\n", "log maybe\noutput\n", "expect\noutput\n",
                     "normalise x\noutput\n", "once\noutput\n", "close now\noutput\n", "Output\n"):
            with self.assertRaises(CaseError, msg=text):
                self.read(text)

    def test_keeps_backslashes_at_the_end_of_a_line(self):
        case = self.read("output\n|a\\\\\n|b \\\n|c\n")
        self.assertEqual(case.runs[0].output.text(), "a\\\nb \nc\n")


class NormaliseTest(unittest.TestCase):

    def test_replaces_times_and_speeds_only(self):
        for text, expected in [
                ("Time = 0.12s\n", "Time = #s\n"),
                ("kNodes/sec = 20.00\n", "kNodes/sec = #\n"),
                ("kNodes/sec = 0.00\n", "kNodes/sec = 0.00\n"),
                ("1           20\r\n", "1           20\n"),
                (" 5     12      0     3249 e4 e5 \n", " 5     12 #     3249 e4 e5 \n"),
                (" 5 0:1 +0.12 1. e4  (3249/120)\n", " 5 # +0.12 1. e4  (3249/#)\n"),
                ("12 2:5 -0.12 1... O-O  (3249/0)\n", "12 # -0.12 1... O-O  (3249/#)\n")]:
            self.assertEqual(normalise(text), expected)


if __name__ == "__main__":
    unittest.main()
