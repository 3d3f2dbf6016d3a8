"""A UCI engine as a child process, as an interface sees it: lines go in, lines come
out with the time they arrived, and every wait has a limit."""

import pathlib
import shlex
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
from kit.engine_process import JOINED, EngineProcess, OutputEnded, TooLate  # noqa: E402


class EngineFault(Exception):
    """Something an engine must never do; the text says what."""


class UciEngine(EngineProcess):
    """Runs `command` in a folder of its own, which is removed by `close`. With
    `settings` the folder has them as its config.txt."""

    def __init__(self, name, command, settings=None):
        self.name = name
        self.folder = tempfile.TemporaryDirectory(prefix="mirvo-arbiter-")
        if settings is not None:
            (pathlib.Path(self.folder.name) / "config.txt").write_text(settings)
        self.transcript = []
        super().__init__(shlex.split(command), self.folder.name, errors=JOINED)

    def send(self, *lines):
        self.transcript += ["< " + line for line in lines]
        try:
            super().send(*lines)
        except (OSError, TooLate) as error:
            raise EngineFault(f"{self.name} no longer reads its input ({error})") from error

    def read(self, deadline):
        """The next line as (arrival time, text); None when the deadline passes."""
        try:
            line = self.read_line(deadline)
        except OutputEnded:
            raise EngineFault(f"{self.name} ended with status {self.wait(5)}") from None
        if line is None:
            return None
        self.transcript.append("> " + line.text)
        return line.arrival, line.text

    def wait_for(self, first_word, limit):
        """Skips lines up to one that begins with the word; (arrival, line,
        lines skipped). More than `limit` seconds of waiting is a fault."""
        deadline = time.monotonic() + limit
        skipped = []
        while True:
            got = self.read(deadline)
            if got is None:
                raise EngineFault(f"{self.name} hangs: no {first_word} within {limit:.1f} s")
            if got[1].split()[:1] == [first_word]:
                return got[0], got[1], skipped
            skipped.append(got[1])

    def start(self, options):
        """Identification, options and the first readiness."""
        self.send("uci")
        self.wait_for("uciok", 10)
        for option in options:
            name, _, value = option.partition("=")
            self.send(f"setoption name {name} value {value}")
        self.send("ucinewgame")
        self.ready()

    def ready(self):
        """Waits for readyok. A bestmove nobody asked for is a fault."""
        self.send("isready")
        _, _, skipped = self.wait_for("readyok", 10)
        if any(line.startswith("bestmove") for line in skipped):
            raise EngineFault(f"{self.name} sent a bestmove that nobody asked for")

    def quit(self):
        """Ends the engine; it must go by itself with status 0."""
        self.send("quit")
        try:
            status = self.wait(15)
        except TooLate as error:
            raise EngineFault(f"{self.name} does not end on quit") from error
        if status != 0:
            raise EngineFault(f"{self.name} ended with status {status}")

    def close(self):
        super().close()
        self.folder.cleanup()
