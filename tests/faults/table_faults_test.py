"""Tables of any size, used and unused: no search exceeds its time because of their
memory, no command waits for it, and it is taken only as it is used.

Times are the process's processor time, and its clock counts that too ("--clock"
names the library that does this), so a busy machine changes nothing. A virtual
machine that gets memory from its host may be slow once, so each case has a few
tries.

"--slow" leaves the times out: sanitizers slow the program down, and the library
does not work with them.
"""

import contextlib
import os
import resource
import sys
import time
import unittest

import fault_kit

MEGABYTE = 1 << 20
TABLES = ("TT", "Eval", "Pawn")
TRIES = 3

# Sizes of the tables, in this order; those not named keep their defaults.
SIZES = [(1, 1, 1), (), (512, 256), (2048, 512), (4095,)]
LARGEST_SIZES = [(-1, -1, -1), (4095,), (-5,)]

# Milliseconds of processor time that a search may take beyond its own, and that
# an answer may take.
OVERSTEP = 10
PROMPT = 100

# Of the process after a search to depth 4, in megabytes.
MOST_MEMORY = 300

clock_library = ""


@contextlib.contextmanager
def processor_clock():
    """Programs started within use their processor time as the clock."""
    os.environ["LD_PRELOAD"] = clock_library
    try:
        yield
    finally:
        del os.environ["LD_PRELOAD"]


def resident_megabytes(pid):
    with open(f"/proc/{pid}/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * resource.getpagesize() / MEGABYTE


class TableTest(fault_kit.FaultTest):

    def start_counted(self, settings=""):
        """Starts the program with a clock that counts its processor time."""
        with processor_clock():
            self.start(f"echo {settings} > config.txt" if settings else "")

    def stop_now(self):
        self.engine.kill()

    def used(self):
        """Milliseconds of processor time so far."""
        return 1000 * self.engine.processor_seconds()

    def set_sizes(self, sizes):
        self.send(*(f"setoption name {table} Hash Size value {size}"
                    for table, size in zip(TABLES, sizes)))

    def expect_within(self, limit, measure):
        """The least of some tries is within the limit."""
        figures = []
        while len(figures) < TRIES and (not figures or figures[-1] > limit):
            figures.append(measure())
        self.assertLessEqual(figures[-1], limit, figures)


@unittest.skipIf("--slow" in sys.argv, "times of a build with sanitizers tell nothing")
class Times(TableTest):

    def overstep(self, sizes, new_game):
        """Overstep of the first search of a process, with all commands sent at once."""
        self.start_counted()
        self.send("uci")
        self.set_sizes(sizes)
        self.send(*(["ucinewgame"] if new_game else []),
                  "isready", "position startpos", "go wtime 1200 btime 1200")
        allotted = int(self.wait("Allowing").split()[1])
        start = self.used()
        self.wait("bestmove")
        # Out of the book a game's first search takes twice its time.
        overstep = self.used() - start - allotted * (2 if new_game else 1)
        self.stop_now()
        return overstep

    def test_the_first_search_keeps_its_time(self):
        for sizes in SIZES:
            for new_game in (False, True):
                with self.subTest(sizes=sizes, new_game=new_game):
                    self.expect_within(OVERSTEP, lambda: self.overstep(sizes, new_game))

    def xboard_overstep(self):
        """The same for a first "new ... go" under XBoard, start-up included."""
        self.start_counted("TTHashSize=1000")
        self.send("xboard", "new", "level 0 1 0.01", "time 100", "otim 100", "go")
        allotted = int(self.wait("Allowing").split()[1])
        self.wait("move")
        overstep = self.used() - allotted
        self.stop_now()
        return overstep

    def test_under_xboard_a_new_game_takes_nothing_of_it(self):
        startup = 20
        self.expect_within(30 + startup, self.xboard_overstep)

    def readiness(self, *commands):
        """Processor time from the commands to "readyok"."""
        start = self.used()
        self.send(*commands, "isready")
        self.wait("readyok")
        return self.used() - start

    def test_a_new_game_with_a_huge_table_waits_for_nothing(self):
        def measure():
            self.start_counted()
            self.speak_uci()
            ready = self.readiness("setoption name TT Hash Size value -5", "ucinewgame")
            self.assertLess(resident_megabytes(self.engine.pid), MOST_MEMORY)
            self.stop_now()
            return ready
        self.expect_within(PROMPT, measure)

    def test_tables_in_use_are_emptied_and_replaced_at_once(self):
        self.start_counted()
        self.speak_uci()
        self.set_sizes((1024,))
        for commands in (["ucinewgame"], ["setoption name TT Hash Size value 512"]):
            with self.subTest(commands):
                def measure(commands=commands):
                    self.send("position fen " + fault_kit.MIDDLE_GAME)
                    self.answer("go depth 7")
                    return self.readiness(*commands)
                self.expect_within(PROMPT, measure)
        self.quit()


class Memory(TableTest):

    def test_is_taken_by_use(self):
        for sizes in LARGEST_SIZES:
            for new_game in (False, True):
                with self.subTest(sizes=sizes, new_game=new_game):
                    self.start()
                    self.speak_uci()
                    self.set_sizes(sizes)
                    if new_game:
                        self.send("ucinewgame")
                    self.expect_a_game_move()
                    if not fault_kit.is_slow():
                        self.assertLess(resident_megabytes(self.engine.pid), MOST_MEMORY)
                    self.quit()


if __name__ == "__main__":
    place = sys.argv.index("--clock")
    clock_library = os.path.abspath(sys.argv[place + 1])
    del sys.argv[place:place + 2]
    fault_kit.main()
