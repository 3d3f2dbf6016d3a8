"""Hash sizes of any kind, and failed allocations: tables get smaller, the program
plays on."""

import resource
import sys
import unittest

import fault_kit
import rules

MEGABYTE = 1 << 20

# Name of the option, key of the settings file, label in the report.
TABLES = [("Pawn Hash Size", "PawnHashSize", "PawnHashSize"),
          ("Eval Hash Size", "EvalHashSize", "HashSize"),
          ("TT Hash Size", "TTHashSize", "TTHashSize")]

# Sanitizers keep shadow memory for every byte of a table, so under them only sizes
# that give small tables are used.
SIZES = [0, 1, 4096]
if "--slow" not in sys.argv:
    SIZES += [-5, 4095, 100000, 2147483647, -2147483648]


def resident_megabytes(pid):
    with open(f"/proc/{pid}/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * resource.getpagesize() / MEGABYTE


class HashSizes(fault_kit.FaultTest):

    def expect_a_small_process(self):
        """A table of any size prefaults a bounded part of its memory and uses the
        rest on access; sanitizers need memory themselves."""
        if not fault_kit.is_slow():
            self.assertLess(resident_megabytes(self.engine.pid), 300)

    def test_of_the_settings_file_are_reported_as_given_and_played_with(self):
        for size in SIZES:
            with self.subTest(size):
                keys = " ".join(f"{key}={size}" for _, key, _ in TABLES)
                self.start(f"echo {keys} > config.txt")
                self.speak_uci()
                for _, _, label in TABLES:
                    self.assertIn(f"    {label}={size}", self.printed())
                self.expect_a_game_move()
                self.expect_a_small_process()
                self.quit()

    def test_of_the_options_are_played_with_one_after_the_other(self):
        self.start()
        self.speak_uci()
        for option, _, _ in TABLES:
            for size in SIZES:
                with self.subTest(f"{option} {size}"):
                    self.send(f"setoption name {option} value {size}")
                    self.expect_a_game_move()
        self.expect_a_small_process()
        self.quit()


@unittest.skipIf("--slow" in sys.argv,
                 "a build with sanitizers needs terabytes of address space")
class AddressSpace(fault_kit.FaultTest):

    def play(self):
        self.speak_uci()
        self.expect_a_game_move()
        for option, _, _ in TABLES:
            self.send(f"setoption name {option} value 4000")
        self.expect_a_game_move()
        self.send("position fen " + fault_kit.MIDDLE_GAME)
        self.expect_legal(self.answer("go depth 5"), rules.Position(fault_kit.MIDDLE_GAME))
        self.quit()

    def test_limited_from_the_start_makes_tables_smaller(self):
        for megabytes in (10, 16, 24, 40, 64, 100, 160, 256, 320):
            with self.subTest(megabytes):
                self.start(f"ulimit -v {megabytes * 1024}")
                self.play()

    def test_exhausted_at_run_time_makes_tables_smaller(self):
        self.start()
        self.speak_uci()
        resource.prlimit(self.engine.pid, resource.RLIMIT_AS, (MEGABYTE, MEGABYTE))
        self.play()

    def test_without_room_for_the_book_none_is_used(self):
        self.start("ulimit -v 40000; printf '%016d%016d' 0 1 > book.bk")
        self.play()

    def test_tools_without_room_end_in_order(self):
        for words in ("-bookstats book.bk", "-listmoves book.bk 8/8/8/8/8/8/8/8 w -",
                      "-createbook games.pgn 10 1 out.bk", "-mergebooks book.bk book.bk out.bk",
                      "-analyze suite.epd", "-perft 3", "-eval 4k3/8/8/8/8/8/8/4K3 w -"):
            with self.subTest(words):
                self.start("ulimit -v 40000; printf '%016d%016d' 0 1 > book.bk; "
                           "echo '1. e4 e5 1-0' > games.pgn; "
                           "echo '6k1/5ppp/8/8/8/8/8/R3K3 w - - bm Ra8;' > suite.epd",
                           "$mirvo -depth 3 " + words)
                self.assertEqual(self.ended(), 0)

    def test_a_game_under_xboard_starts_and_is_saved_without_room(self):
        self.start("echo LoggingMode=1 > config.txt")
        self.send("xboard")
        self.wait("feature")
        resource.prlimit(self.engine.pid, resource.RLIMIT_AS, (MEGABYTE, MEGABYTE))
        self.send("new", "easy", "time 100", "e2e4")
        self.wait("move")
        self.send("result 1-0 {White mates}")
        self.quit()
        self.assertIn('[Result "1-0"]', self.read("game000000.pgn"))


if __name__ == "__main__":
    fault_kit.main()
