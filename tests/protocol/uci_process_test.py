"""Drives the real program over pipes as an interface does: commands during a
search, delayed best moves, pondering, the end of input, random conversations.

    uci_process_test.py ./mirvo [--slow] [test name ...]

"--slow" is for builds that check themselves while they run: ten times the
limits.
"""

import os
import random
import subprocess
import sys
import tempfile
import time
import unittest

TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path[:0] = [TESTS, os.path.join(TESTS, "arbiter")]
from kit.engine_process import EngineProcess  # noqa: E402
from uci_engine import UciEngine  # noqa: E402

MIRVO = ""

# Answers come within 50 ms. A busy machine may delay single ones, so that is the
# limit for the median; the limit for the slowest is generous.
MEDIAN_LIMIT = 0.05
WORST_LIMIT = 0.5

MIDDLE_GAME = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1"
PAWN_ENDING = "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1"
MATE_IN_ONE = "6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1"  # Ra8
STALEMATED = "7k/5Q2/6K1/8/8/8/8/8 b - - 0 1"
MATED = "R5k1/5ppp/8/8/8/8/8/4K3 b - - 0 1"

POSITIONS = ["startpos", "fen " + MIDDLE_GAME, "fen " + PAWN_ENDING, "fen " + MATE_IN_ONE,
             "fen " + STALEMATED, "fen " + MATED, "startpos moves e2e4 e7e5 g1f3 b8c6 f1b5"]

DOOMED = [sys.executable, os.path.join(TESTS, "kit", "doomed_interface.py")]


def run(text, limit=20):
    """Runs the program on a whole input; its status and standard output."""
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run([MIRVO], cwd=folder, input=text.encode(), timeout=limit,
                              stdout=subprocess.PIPE, check=False)
    return done.returncode, done.stdout.decode(errors="replace").splitlines()


def best_moves(lines):
    return [line for line in lines if line.startswith("bestmove")]


class UciProcess(unittest.TestCase):

    def setUp(self):
        self.engine = UciEngine("mirvo", MIRVO)
        self.addCleanup(self.engine.close)
        self.engine.start([])

    def silent(self, word, seconds):
        """No line that begins with the word arrives for so long."""
        deadline = time.monotonic() + seconds
        while (got := self.engine.read(deadline)) is not None:
            self.assertNotEqual(got[1].split()[:1], [word], got[1])

    def time_answer(self, command, word):
        """Seconds from a command to the line that answers it."""
        sent = time.monotonic()
        self.engine.send(command)
        arrival, line, _ = self.engine.wait_for(word, 10)
        return arrival - sent, line

    def answer(self, command, limit=10):
        self.engine.send(command)
        return self.engine.wait_for("bestmove", limit)[1]

    def judge(self, name, times):
        times.sort()
        middle = times[len(times) // 2]
        print(f"{name}: median {middle * 1000:.1f} ms, worst {times[-1] * 1000:.1f} ms "
              f"of {len(times)}")
        self.assertLess(middle, MEDIAN_LIMIT)
        self.assertLess(times[-1], WORST_LIMIT)

    def test_stop_and_isready_are_answered_promptly_in_any_search(self):
        stops, readies = [], []
        for kind in ("infinite", "ponder", "infinite ponder", "wtime 9000000 btime 9000000"):
            for position in POSITIONS[:4]:
                self.engine.send("position " + position)
                self.engine.send("go " + kind)
                for delay in (0.0, 0.02, 0.05):
                    time.sleep(delay)
                    if kind.startswith("wtime") and "R3K3" in position:
                        continue  # ends by itself on the mate
                    readies.append(self.time_answer("isready", "readyok")[0])
                if kind.startswith("wtime") and "R3K3" in position:
                    self.engine.wait_for("bestmove", 10)
                    continue
                stops.append(self.time_answer("stop", "bestmove")[0])
                self.engine.send("ucinewgame")
                self.engine.ready()
        self.judge("isready", readies)
        self.judge("stop", stops)

    def test_infinite_delays_its_best_move_however_it_ends(self):
        for position in ("fen " + MATE_IN_ONE, "fen " + STALEMATED, "fen " + MATED):
            self.engine.send("position " + position)
            self.engine.send("go infinite")
            self.silent("bestmove", 0.3)
            self.assertTrue(self.answer("stop").startswith("bestmove"))
            self.engine.ready()

    def test_infinite_delays_the_best_move_of_a_reached_depth(self):
        self.engine.send("go infinite depth 2")
        self.silent("bestmove", 0.3)
        self.answer("stop")

    def test_ponder_delays_its_best_move_until_ponderhit(self):
        self.engine.send("position fen " + MATE_IN_ONE)
        self.engine.send("go ponder wtime 1000 btime 1000")
        self.silent("bestmove", 0.3)
        sent = time.monotonic()
        self.engine.send("ponderhit")
        arrival, line, skipped = self.engine.wait_for("bestmove", 10)
        self.assertLess(arrival - sent, WORST_LIMIT)
        self.assertEqual(line, "bestmove a1a8 ")
        wanted = ["PONDER HIT. CONTINUING", "Allowing 25 ms for move (0, 1000, 0)",
                  "Ponder hits = 1, misses = 0, percenthits = 100.0%"]
        self.assertEqual([text for text in skipped if text in wanted], wanted)

    def test_a_ponder_hit_turns_the_search_into_a_timed_one(self):
        self.engine.send("position fen " + MIDDLE_GAME)
        self.engine.send("go ponder wtime 8000 btime 8000 winc 0 binc 0")
        self.silent("bestmove", 0.5)
        sent = time.monotonic()
        self.engine.send("ponderhit")
        elapsed = self.engine.wait_for("bestmove", 10)[0] - sent
        # 8000 / 30 ms from the hit on, at most.
        self.assertLess(elapsed, 0.266 + WORST_LIMIT)

    def test_a_declined_ponder_search_leaves_nobody_waiting(self):
        for release in ("stop", "ponderhit"):
            self.engine.send("ucinewgame")
            self.engine.send("position fen k7/8/1K6/8/8/8/8/7R w - - 0 1")
            self.assertEqual(self.answer("go depth 4"), "bestmove h1h8 ")
            self.engine.send("position startpos moves e2e4")
            self.engine.send("go ponder wtime 1000 btime 1000")
            self.silent("bestmove", 0.2)
            line = self.answer(release)
            self.assertRegex(line, r"^bestmove [a-h][5-8][a-h][1-8]")
            self.engine.ready()

    def test_lines_sent_during_a_search_follow_it_in_order(self):
        self.engine.send("go depth 6")
        self.engine.send("position fen " + MATE_IN_ONE)
        self.engine.send("go infinite")
        self.engine.send("stop")
        self.engine.send("position fen " + STALEMATED)
        self.engine.send("go depth 3")
        answers = [self.engine.wait_for("bestmove", 20)[1] for _ in range(3)]
        self.assertEqual(answers[1:], ["bestmove a1a8 ", "bestmove 0000 "])
        self.engine.ready()

    def deferred_go(self, running, deferred, word, pause):
        """A "go" during a search that only a command ends, and a command after it:
        one answer each, and nothing is left running."""
        self.engine.send("ucinewgame")
        self.engine.send("position fen " + MIDDLE_GAME)
        self.engine.send("go " + running)
        time.sleep(pause)
        self.engine.send("go " + deferred)
        if pause:  # the word meets the second search, else perhaps the first
            self.engine.wait_for("bestmove", 10)
        self.engine.send("isready")
        self.engine.send(word)
        if deferred == "infinite" and word == "ponderhit":
            self.engine.send("stop")
        for _ in range(1 if pause else 2):
            self.engine.wait_for("bestmove", 10)
        self.engine.ready()  # fails on a third one

    def test_a_go_ends_a_search_that_only_a_command_ends(self):
        for running in ("infinite", "ponder wtime 900 btime 900"):
            for deferred in ("infinite", "ponder wtime 900 btime 900", "wtime 900 btime 900",
                         "depth 3"):
                for word in ("stop", "ponderhit"):
                    for pause in (0, 0.03):
                        with self.subTest(f"{running}, {deferred}, {word}, {pause}"):
                            self.deferred_go(running, deferred, word, pause)

    def test_one_stop_ends_every_search_that_waits(self):
        for kind in ("infinite", "ponder", "infinite", "depth 40", "wtime 9000000", "infinite"):
            self.engine.send("go " + kind)
        self.engine.send("stop")
        for _ in range(6):
            self.engine.wait_for("bestmove", 10)
        self.engine.ready()

    def test_a_go_releases_a_delayed_best_move(self):
        for running in ("infinite", "ponder"):
            self.engine.send("position fen " + MATE_IN_ONE)
            self.engine.send("go " + running)
            self.silent("bestmove", 0.1)
            self.engine.send("position startpos")
            self.assertEqual(self.answer("go depth 3"), "bestmove a1a8 ")
            self.engine.wait_for("bestmove", 10)
            self.engine.ready()

    def test_quit_behind_a_held_go_ends_with_status_0(self):
        for line in ("go infinite", "go ponder", "stop"):
            self.engine.send("go infinite")
            self.engine.send(line)
        self.engine.quit()

    def test_half_a_line_does_not_freeze_the_search(self):
        self.engine.send("position fen " + MIDDLE_GAME)
        self.engine.send("go wtime 12000 btime 12000")  # 400 ms
        self.engine.send_bytes(b"isre")
        self.engine.wait_for("bestmove", 5)
        self.engine.send("ady")
        self.engine.wait_for("readyok", 5)

    def test_quit_during_a_search_ends_with_status_0(self):
        self.engine.send("go infinite")
        time.sleep(0.05)
        self.engine.quit()

    def test_a_move_overhead_keeps_a_move_within_the_own_clock(self):
        for settings, go, most in (
                ("MoveOverhead=2900", "go wtime 3000 btime 90000 movestogo 1", 0.1),
                ("MoveOverhead=5000", "go wtime 4000 btime 90000 movestogo 1", 0.001)):
            engine = UciEngine("mirvo", MIRVO, "UseOpeningBook=0 " + settings)
            self.addCleanup(engine.close)
            engine.start([])
            engine.send("position fen " + MIDDLE_GAME)
            sent = time.monotonic()
            engine.send(go)
            elapsed = engine.wait_for("bestmove", 10)[0] - sent
            self.assertLess(elapsed, most + WORST_LIMIT)

    def test_a_move_overhead_keeps_a_hit_within_blacks_clock(self):
        engine = UciEngine("mirvo", MIRVO, "UseOpeningBook=0 MoveOverhead=2900")
        self.addCleanup(engine.close)
        engine.start([])
        engine.send("position startpos moves e2e4")
        engine.send("go ponder wtime 99000 btime 3000")
        engine.ready()
        sent = time.monotonic()
        engine.send("ponderhit")
        elapsed = engine.wait_for("bestmove", 10)[0] - sent
        self.assertLess(elapsed, 0.1 + WORST_LIMIT)

    def test_random_conversations_get_one_answer_a_go(self):
        choose = random.Random(2026)
        for _ in range(60):
            self.engine.send("position " + choose.choice(POSITIONS[:3]))
            kind = choose.choice(["depth 3", "wtime 400 btime 400", "infinite", "ponder wtime 400",
                                  "ponder wtime 900 winc 20", "infinite", "movestogo 5 wtime 200"])
            self.engine.send("go " + kind)
            commands = choose.choices(["isready", "uci", "debug off", ""], k=choose.randrange(4))
            released = not (kind == "infinite" or kind.startswith("ponder"))
            if kind.startswith("ponder"):
                commands.append(choose.choice(["ponderhit", "stop"]))
                released = True
            if not released:
                commands.append("stop")
            for command in commands:
                if choose.random() < 0.5:
                    time.sleep(choose.random() * 0.03)
                self.engine.send(command)
            self.engine.wait_for("bestmove", 10)
            # Fails on a second one.
            self.engine.ready()


class WholeInput(unittest.TestCase):

    def test_nothing_is_answered_before_a_protocol_is_known(self):
        status, lines = run("isready\ngo depth 1\nuci\nisready\nquit\n")
        self.assertEqual(status, 0)
        self.assertEqual(lines.count("readyok"), 1)
        self.assertEqual(best_moves(lines), [])

    def test_line_ends_and_a_byte_order_mark_do_not_matter(self):
        _, lines = run("\ufeffuci\r\nisready\r\nquit\r\n")
        self.assertEqual(lines.count("uciok"), 1)
        self.assertEqual(lines.count("readyok"), 1)

    def test_long_and_binary_lines_do_no_harm(self):
        text = "uci\n" + "x" * 100000 + "\nposition startpos moves" + " e2e4 e7e5" * 3000 + "\n"
        text += "position fen " + "q" * 5000 + "\n\x00\x01\x7f\nsetoption name\ngo depth 1\n"
        status, lines = run(text + "isready\nquit\n")
        self.assertEqual(status, 0)
        self.assertEqual(lines.count("readyok"), 1)


class EndOfInput(unittest.TestCase):

    def start(self):
        engine = UciEngine("mirvo", MIRVO)
        self.addCleanup(engine.close)
        engine.start([])
        return engine

    def test_a_search_that_ends_by_itself_answers(self):
        engine = self.start()
        engine.send("position fen " + MIDDLE_GAME)
        engine.send("go depth 6")
        engine.close_input()
        engine.wait_for("bestmove", 20)

    def test_an_endless_search_is_stopped_and_answers(self):
        for kind in ("infinite", "ponder"):
            engine = self.start()
            engine.send("go " + kind)
            time.sleep(0.05)
            engine.close_input()
            engine.wait_for("bestmove", 5)

    def test_every_go_that_waits_is_answered(self):
        engine = self.start()
        for kind in ("infinite", "ponder", "infinite", "depth 3"):
            engine.send("go " + kind)
        engine.close_input()
        for _ in range(4):
            engine.wait_for("bestmove", 10)

    def test_idle_the_process_stays_without_using_the_processor(self):
        engine = self.start()
        engine.close_input()
        before = engine.processor_seconds()
        time.sleep(1.0)
        self.assertIsNone(engine.poll())
        self.assertLess(engine.processor_seconds() - before, 0.05)

    def test_the_process_follows_an_interface_that_crashed(self):
        with tempfile.TemporaryDirectory() as folder:
            # The interface starts the engine, tells its number and is killed.
            parent = EngineProcess([*DOOMED, MIRVO], folder)
            self.addCleanup(parent.close)
            engine = int(parent.read_line().text)
            time.sleep(0.5)
            self.assertTrue(is_alive(engine))
            parent.kill()
            deadline = time.monotonic() + 5
            while is_alive(engine) and time.monotonic() < deadline:
                time.sleep(0.02)
            self.assertFalse(is_alive(engine))


def stat_fields(pid):
    with open(f"/proc/{pid}/stat", encoding="ascii") as file:
        return file.read().rsplit(")", 1)[1].split()


def processor_ticks(pid):
    fields = stat_fields(pid)
    return int(fields[11]) + int(fields[12])


def is_alive(pid):
    try:
        return stat_fields(pid)[0] != "Z"
    except OSError:
        return False


if __name__ == "__main__":
    MIRVO = os.path.abspath(sys.argv.pop(1))
    if "--slow" in sys.argv:
        sys.argv.remove("--slow")
        MEDIAN_LIMIT *= 10
        WORST_LIMIT *= 10
    unittest.main(verbosity=2)
