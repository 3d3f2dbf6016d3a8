"""Folders and files that cannot be written or read: the program prints only what it
must and plays on."""

import os
import shlex
import shutil
import subprocess

import fault_kit
from fault_kit import LOG

NOTICE = "config.txt not found, using default values."


class WorkingDirectory(fault_kit.FaultTest):

    def test_without_the_right_to_write_it_answers_and_reads_its_settings(self):
        self.start_as_nobody("echo DepthSearch=7 LoggingMode=1 > config.txt", mode="555")
        self.speak_uci()
        self.assertIn("    DepthSearch=7", self.printed())
        self.expect_a_game_move()
        self.quit()
        self.assertFalse(os.path.exists(self.path(LOG)))

    def test_without_the_right_to_look_into_it_the_defaults_hold(self):
        self.start_as_nobody("echo DepthSearch=7 > config.txt; : > book.bk; chmod 0 *.*", "555")
        self.speak_uci()
        self.assertTrue(any(line.endswith(NOTICE) for line in self.printed()))
        self.assertIn("    DepthSearch=40", self.printed())
        self.expect_a_game_move()
        self.quit()

    def test_a_game_that_cannot_be_saved_is_no_reason_to_stop(self):
        self.start_as_nobody("echo LoggingMode=1 > config.txt", mode="555")
        self.send("xboard", "new", "easy", "time 100", "e2e4")
        self.wait("move")
        self.send("result 1-0 {White mates}", "new", "easy", "time 100", "d2d4")
        self.wait("move")
        self.quit()
        self.assertNotIn("game000000.pgn", os.listdir(self.engine.folder.name))

    def test_a_working_directory_that_was_removed_is_none_to_write_to(self):
        self.start("mkdir gone; cd gone; rmdir ../gone")
        self.speak_uci()
        self.expect_a_game_move()
        self.quit()


    def test_a_second_start_in_the_folder_empties_the_log_of_the_first(self):
        self.start()
        self.speak_uci()
        self.assertIn("uciok", self.read(LOG))
        subprocess.run([fault_kit.mirvo, "-quiet", "-perft", "1"], cwd=self.engine.folder.name,
                       stdin=subprocess.DEVNULL, capture_output=True, check=True)
        self.assertNotIn("uciok", self.read(LOG))
        self.expect_a_game_move()
        self.quit()
        self.assertIn("bestmove", self.read(LOG))


class FullDisk(fault_kit.FaultTest):

    def play_a_session(self):
        self.speak_uci()
        self.expect_a_game_move()
        self.send("eval")
        self.wait("Full")
        self.quit()

    def test_a_session_goes_on_while_nothing_can_be_logged(self):
        self.start(f"ln -s /dev/full {LOG}")
        self.play_a_session()

    def test_a_log_at_its_limit_keeps_what_it_has(self):
        # Whether the shell counts in 512 or 1,024 bytes, the banner fits and
        # the lines of a search do not.
        self.start("ulimit -f 1")
        self.play_a_session()
        self.assertTrue(self.read(LOG).startswith("Welcome to Mirvo"))
        self.assertIn(os.path.getsize(self.path(LOG)), (512, 1024))

    def test_a_log_on_a_file_system_that_fills_up_keeps_what_it_has(self):
        if os.geteuid() != 0 or shutil.which("unshare") is None:
            self.skipTest("mounting needs an administrator and unshare")
        mount = f"mkdir log && mount -t tmpfs -o size=4k none log && ln -s log/log {LOG}"
        with fault_kit.temporary_folder() as folder:
            if subprocess.run(["unshare", "-m", "sh", "-c", mount], cwd=folder, check=False,
                              stderr=subprocess.DEVNULL).returncode != 0:
                self.skipTest("this system lets nobody mount")
        # The file system disappears with the process, so report its size first.
        script = f"{mount}; $0; status=$?; wc -c < log/log > size; exit $status"
        self.start(command=f"unshare -m sh -c {shlex.quote(script)} $mirvo")
        for _ in range(8):
            self.speak_uci()
        self.play_a_session()
        self.assertEqual(int(self.read("size")), 4096)

    def test_a_saved_game_that_does_not_fit_is_no_reason_to_stop(self):
        self.start("echo LoggingMode=1 > config.txt; ulimit -f 0")
        self.send("xboard", "new", "easy", "time 100", "e2e4")
        self.wait("move")
        self.send("result 1-0 {White mates}", "new", "easy", "time 100", "d2d4")
        self.wait("move")
        self.quit()
        # No empty file is left that would use up a number.
        self.assertNotIn("game000000.pgn", os.listdir(self.engine.folder.name))

    def test_a_book_that_does_not_fit_ends_the_tool_in_order(self):
        pgn = "[Event \"\"]\\n[Result \"1-0\"]\\n\\n1. e4 e5 2. Nf3 1-0\\n"
        for out in ("/dev/full", "folder", "missing/book.bk"):
            with self.subTest(out):
                self.start(f"mkdir folder; printf '{pgn}' > games.pgn",
                           f"$mirvo -createbook games.pgn 10 1 {out}")
                self.assertEqual(self.ended(), 0)


class Settings(fault_kit.FaultTest):

    def test_a_read_only_file_is_read_and_left_alone(self):
        text = "DepthSearch=7\n"
        self.start_as_nobody("echo DepthSearch=7 > config.txt; chmod 444 config.txt")
        self.speak_uci()
        self.assertIn("    DepthSearch=7", self.printed())
        self.send("setoption name Ponder value false")
        self.expect_a_game_move()
        self.quit()
        self.assertEqual(self.read("config.txt"), text)

    def test_an_unreadable_file_counts_as_missing(self):
        self.start_as_nobody("echo DepthSearch=7 > config.txt; chmod 0 config.txt")
        self.speak_uci()
        self.assertTrue(any(line.endswith(NOTICE) for line in self.printed()))
        self.assertIn("    DepthSearch=40", self.printed())
        self.quit()

    def test_a_folder_or_a_loop_in_its_place_counts_as_missing(self):
        for spoil in ("mkdir config.txt", "ln -s config.txt config.txt", "ln -s none config.txt"):
            with self.subTest(spoil):
                self.start(spoil)
                self.speak_uci()
                self.assertTrue(any(line.endswith(NOTICE) for line in self.printed()))
                self.expect_a_game_move()
                self.quit()


class Book(fault_kit.FaultTest):

    def expect_play_without_a_book(self):
        """From the first move on the engine names the reply that it expects,
        which it does outside its book only, and nothing is said of the book."""
        self.speak_uci()
        self.send("position startpos")
        self.assertRegex(self.answer(), r"^bestmove \S+ ponder \S+$")
        self.assertFalse([line for line in self.printed() if "ook " in line and "option" not in line])
        self.quit()

    def test_a_missing_book_is_passed_over(self):
        self.start()
        self.expect_play_without_a_book()

    def test_a_book_in_a_missing_folder_is_passed_over(self):
        self.start("echo Book=none/book.bk > config.txt")
        self.expect_play_without_a_book()

    def test_a_folder_a_loop_and_an_empty_file_are_no_books(self):
        for spoil in ("mkdir book.bk", "ln -s book.bk book.bk", ": > book.bk",
                      "printf 0123456789 > book.bk", "ln -s /dev/null book.bk"):
            with self.subTest(spoil):
                self.start(spoil)
                self.speak_uci()
                self.expect_a_game_move()
                self.quit()

    def test_an_unreadable_book_is_passed_over(self):
        self.start_as_nobody("printf '%016d' 0 > book.bk; chmod 0 book.bk")
        self.expect_play_without_a_book()


if __name__ == "__main__":
    fault_kit.main()
