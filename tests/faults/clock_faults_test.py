"""The system's clock passes the ends of its 32-bit milliseconds while the program
searches, in a time namespace, which only root can create."""

import shutil
import subprocess
import sys
import time
import unittest

import fault_kit
import rules

WRAPS = {"from its highest value to 0": 1 << 32, "to negative numbers": 1 << 31}

READ_CLOCK = [sys.executable, "-c", "import time; print(time.monotonic())"]


def inside(offset):
    """Command that starts a program with its clock so many seconds ahead."""
    return ["unshare", "-T", "--monotonic", str(offset), "--fork", "--kill-child"]


def can_move_the_clock():
    if shutil.which("unshare") is None:
        return False
    done = subprocess.run(inside(1000000) + READ_CLOCK, capture_output=True, check=False)
    return done.returncode == 0 and float(done.stdout) > 1000000


class Wrap(fault_kit.FaultTest):

    def search_across(self, milliseconds, lead):
        """Lets a move begin `lead` seconds before the clock reaches so many
        milliseconds and end behind it; False when the start took longer."""
        # Whole seconds: the wrap comes up to a second later than asked for.
        offset = int(milliseconds / 1000 - time.monotonic() - lead)
        wrap = milliseconds / 1000 - offset
        self.start(command=" ".join(inside(offset)) + " $mirvo")
        self.speak_uci()
        self.send("position fen " + fault_kit.MIDDLE_GAME)
        begun = time.monotonic()
        if begun >= wrap:
            return False
        clock = round((lead + 1.3) * 1000) * 25
        answer = self.answer(f"go wtime {clock} btime {clock}", 60)
        ended = time.monotonic()
        self.assertGreater(ended, wrap)
        self.assertGreater(ended - begun, lead + 1.2)
        self.expect_legal(answer, rules.Position(fault_kit.MIDDLE_GAME))
        self.quit()
        return True

    @unittest.skipUnless(can_move_the_clock(), "needs unshare and an administrator's rights")
    def test_a_move_across_the_wrap_takes_its_time(self):
        for name, milliseconds in WRAPS.items():
            with self.subTest(name):
                self.assertTrue(any(self.search_across(milliseconds, lead)
                                    for lead in (0.5, 2, 8)))


if __name__ == "__main__":
    fault_kit.main()
