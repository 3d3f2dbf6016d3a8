"""Helpers for the fault tests: the real program, started in a new folder that a few
lines of shell may spoil first, and figures of its process.

Every test file here is called as

    NAME_test.py ./mirvo [--slow] [test name ...]

"--slow" is for builds that check themselves while they run: ten times the
limits.
"""

import os
import shlex
import shutil
import sys
import tempfile
import time
import unittest

TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path[:0] = [TESTS, os.path.join(TESTS, "arbiter")]
import rules  # noqa: E402
from uci_engine import UciEngine  # noqa: E402

LOG = "mirvo_0.2.7_d_log.txt"
NOBODY = 65534

MIDDLE_GAME = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1"

mirvo = ""
patience = 1


def main():
    """Reads the command line and runs the tests of the calling file."""
    global mirvo, patience
    mirvo = os.path.abspath(sys.argv.pop(1))
    if "--slow" in sys.argv:
        sys.argv.remove("--slow")
        patience = 10
    unittest.main(module="__main__", verbosity=2)


def is_slow():
    return patience > 1


class FaultTest(unittest.TestCase):

    def start(self, spoil="", command=""):
        """Starts the program where `spoil` was run; `command` is a shell's text
        that stands in for the bare program, "$mirvo" in it."""
        command = f"mirvo={shlex.quote(mirvo)}; {spoil}\nexec {command or '$mirvo'}"
        self.engine = UciEngine("mirvo", shlex.join(["sh", "-c", command]))
        self.addCleanup(self.engine.close)
        return self.engine

    def start_as_nobody(self, spoil="", mode="755"):
        """The same as an unprivileged user, since root may open any file. The folder
        gets its mode last."""
        if os.geteuid() == 0:
            if shutil.which("setpriv") is None:
                self.skipTest("setpriv is not installed")
            drop = f"setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups "
            spoil = f"cp $mirvo mirvo; chmod 755 mirvo; {spoil}\nchmod {mode} ."
            return self.start(spoil, drop + "./mirvo")
        self.addCleanup(self.make_writable)
        return self.start(f"{spoil}\nchmod {mode} .")

    def make_writable(self):
        os.chmod(self.engine.folder.name, 0o755)

    def send(self, *lines):
        for line in lines:
            self.engine.send(line)

    def wait(self, first_word, limit=60):
        return self.engine.wait_for(first_word, limit * patience)[1]

    def speak_uci(self):
        self.send("uci")
        self.wait("uciok")
        self.send("isready")
        self.wait("readyok")

    def answer(self, go="go depth 4", limit=60):
        self.send(go)
        return self.wait("bestmove", limit)

    def expect_a_game_move(self):
        """The program still finds a legal first move."""
        self.send("position startpos")
        self.expect_legal(self.answer(), rules.Position())

    def expect_legal(self, answer, position):
        """The "bestmove" line names a legal move, which is returned."""
        move = rules.find_move(position, answer.split()[1])
        self.assertIsNotNone(move, answer)
        return move

    def ended(self, limit=60):
        """Exit status of a process that must end by itself."""
        return self.engine.wait(limit * patience)

    def quit(self):
        self.send("quit")
        self.assertEqual(self.ended(), 0)

    def printed(self):
        return [line[2:] for line in self.engine.transcript if line.startswith("> ")]

    def path(self, name):
        return os.path.join(self.engine.folder.name, name)

    def read(self, name):
        with open(self.path(name), encoding="latin-1") as file:
            return file.read()


def stat_fields(pid):
    with open(f"/proc/{pid}/stat", encoding="ascii") as file:
        return file.read().rsplit(")", 1)[1].split()


def is_alive(pid):
    try:
        return stat_fields(pid)[0] != "Z"
    except OSError:
        return False


def wait_until(condition, limit):
    """Whether the condition becomes true within so many seconds."""
    deadline = time.monotonic() + limit * patience
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.02)
    return True


def temporary_folder():
    return tempfile.TemporaryDirectory(prefix="mirvo-faults-")
