"""A UCI engine as a child process, as an interface sees it: lines go in, lines come
out with the time they arrived, and every wait has a limit."""

import pathlib
import queue
import shlex
import signal
import subprocess
import tempfile
import threading
import time


# Background jobs of a shell and "nohup" ignore signals, and engines would inherit
# that; but tests send signals that must end them.
for _number in (signal.SIGINT, signal.SIGHUP):
    if signal.getsignal(_number) is signal.SIG_IGN:
        signal.signal(_number, signal.SIG_DFL)


class EngineFault(Exception):
    """Something an engine must never do; the text says what."""


class UciEngine:
    """Runs `command` in a folder of its own, which is removed by `close`. With
    `settings` the folder has them as its config.txt."""

    def __init__(self, name, command, settings=None):
        self.name = name
        self.folder = tempfile.TemporaryDirectory(prefix="mirvo-arbiter-")
        if settings is not None:
            (pathlib.Path(self.folder.name) / "config.txt").write_text(settings)
        self.process = subprocess.Popen(
            shlex.split(command), cwd=self.folder.name, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, bufsize=1,
            errors="replace")
        self.lines = queue.Queue()
        self.transcript = []
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.put((time.monotonic(), line.rstrip("\r\n")))
        self.lines.put((time.monotonic(), None))

    def send(self, line):
        self.transcript.append("< " + line)
        try:
            self.process.stdin.write(line + "\n")
            self.process.stdin.flush()
        except OSError as error:
            raise EngineFault(f"{self.name} no longer reads its input ({error})") from error

    def read(self, deadline):
        """The next line as (arrival time, text); None when the deadline passes."""
        try:
            arrival, line = self.lines.get(timeout=max(0.0, deadline - time.monotonic()))
        except queue.Empty:
            return None
        if line is None:
            self.process.wait(timeout=5)
            raise EngineFault(f"{self.name} ended with status {self.process.returncode}")
        self.transcript.append("> " + line)
        return arrival, line

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
            status = self.process.wait(timeout=15)
        except subprocess.TimeoutExpired as error:
            raise EngineFault(f"{self.name} does not end on quit") from error
        if status != 0:
            raise EngineFault(f"{self.name} ended with status {status}")

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.reader.join(timeout=5)
        self.process.stdin.close()
        self.process.stdout.close()
        self.folder.cleanup()
