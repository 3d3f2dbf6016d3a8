"""Starts an engine and talks to it: lines go in, lines come out with the time
they arrived.

    with EngineProcess(["./mirvo"], folder) as engine:
        engine.send("uci")
        engine.wait_for_line("uciok", limit=10)
        engine.send("quit")
        status = engine.wait(limit=10)

Everything the program prints is read at once by a thread, so it never waits for
a full pipe and nothing is lost, an unfinished last line included. Nothing here
waits for ever: limits are in seconds, and `close` (the end of the "with") leaves
no process behind.
"""

import collections
import os
import queue
import select
import signal
import subprocess
import threading
import time

# What becomes of standard error: a part of the output, kept apart in `errors`,
# or dropped.
JOINED, KEPT, DROPPED = subprocess.STDOUT, subprocess.PIPE, subprocess.DEVNULL

# Input and output: a pipe to this process, or none at all.
PIPE, NOTHING = subprocess.PIPE, subprocess.DEVNULL

# A program that reads nothing for so long, with a full pipe, is hung.
SEND_LIMIT = 60
# For the rest of the output of a program that has ended: another process may
# hold its pipe open.
CLOSE_LIMIT = 5

# A shell's background job and "nohup" ignore signals, and so would every engine
# started from there: tests send some that must end it.
for _number in (signal.SIGINT, signal.SIGHUP):
    if signal.getsignal(_number) is signal.SIG_IGN:
        signal.signal(_number, signal.SIG_DFL)


class Line(collections.namedtuple("Line", "arrival data")):
    """A line of output as it came, its end included, and when (monotonic)."""

    @property
    def text(self):
        return self.data.decode("utf-8", "replace").rstrip("\r\n")


class Missed(Exception):
    """What was waited for has not come; the lines that came instead."""

    def __init__(self, text, lines=()):
        super().__init__(text)
        self.lines = lines


class TooLate(Missed):
    """It has not come in time."""


class OutputEnded(Missed):
    """It cannot come any more: there is no more output."""


class _Reader(threading.Thread):
    """Reads a stream as it comes and closes it at its end, or when told to."""

    def __init__(self, stream, take, end=lambda: None):
        super().__init__(daemon=True)
        self.stream, self.take, self.end = stream, take, end
        self.told, self.teller = os.pipe()
        self.start()

    def run(self):
        number = self.stream.fileno()
        while self.told not in select.select([number, self.told], [], [])[0]:
            chunk = os.read(number, 65536)
            if not chunk:
                break
            self.take(chunk)
        self.stream.close()
        self.end()

    def stop(self):
        """Ends the reading; may be called again."""
        if self.teller is not None:
            os.write(self.teller, b"x")
            self.join()
            os.close(self.told)
            os.close(self.teller)
            self.teller = None


class EngineProcess:
    """A program that runs, and the pipes to it.

    `command` is a list of words and `folder` its working directory;
    `environment` replaces this process's own. With `core` it runs on that
    processor core only. `input` and `output` are pipes, or a file in place of
    one. Further keywords are those of subprocess.Popen."""

    def __init__(self, command, folder=None, *, environment=None, core=None, input=PIPE,
                 output=PIPE, errors=DROPPED, **how):
        if core is not None:  # taskset becomes the program: the process is the same
            command = ["taskset", "-c", str(core), *command]
        self.process = subprocess.Popen(command, cwd=folder, env=environment, stdin=input,
                                        stdout=output, stderr=errors, bufsize=0, **how)
        self.usage = None  # what the system counted, once the program has ended
        self.errors = b""
        self._lines = queue.Queue()
        self._unfinished = b""
        self._ended = self.process.stdout is None
        self.reader = self._errors_reader = None
        if self.process.stdin:
            os.set_blocking(self.process.stdin.fileno(), False)
        if self.process.stdout:
            self.reader = _Reader(self.process.stdout, self._take_output, self._end_output)
        if self.process.stderr:
            self._errors_reader = _Reader(self.process.stderr, self._take_errors)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    # Input.

    def send(self, *lines):
        self.send_bytes("".join(line + "\n" for line in lines).encode())

    def send_bytes(self, data, limit=SEND_LIMIT):
        """OSError when the program no longer has its input open, TooLate when
        it does not read."""
        deadline = time.monotonic() + limit
        left = memoryview(data)
        stream = self.process.stdin.fileno()
        while left:
            if not select.select([], [stream], [], max(0.0, deadline - time.monotonic()))[1]:
                raise TooLate("the program does not read its input")
            left = left[os.write(stream, left):]

    def close_input(self):
        self.process.stdin.close()

    # Output.

    def read_line(self, deadline=None):
        """The next line; None when the deadline (monotonic) passes first.
        OutputEnded behind the last one."""
        if self._ended:
            raise OutputEnded("the program prints no more")
        try:
            line = self._lines.get(timeout=None if deadline is None
                                   else max(0.0, deadline - time.monotonic()))
        except queue.Empty:
            return None
        if line is None:
            self._ended = True
            raise OutputEnded("the program prints no more")
        return line

    def wait_for_line(self, beginnings, limit=None):
        """The first line that begins with the text, or with one of a tuple of
        texts, and the lines before it."""
        skipped = []
        for line in self._lines_until(limit, skipped):
            if line.text.startswith(beginnings):
                return line, skipped
            skipped.append(line)
        raise TooLate(f"no {beginnings} within {limit:g} s", skipped)

    def read_rest(self, limit=None):
        """All lines up to the end of the output."""
        lines = []
        try:
            for line in self._lines_until(limit, lines):
                lines.append(line)
        except OutputEnded:
            return lines
        raise TooLate(f"the output does not end within {limit:g} s", lines)

    def all_lines(self):
        """Each line as it comes, up to the end of the output."""
        try:
            yield from self._lines_until(None, ())
        except OutputEnded:
            return

    def close_output(self):
        """Stops reading what the program writes, like an interface that is gone."""
        self.reader.stop()

    def arrived(self, line):
        """Called with each line as it arrives, by the thread that reads: for
        those who want to look at the clock or at the program just then."""

    # The process.

    @property
    def pid(self):
        return self.process.pid

    def poll(self):
        """The exit status, or None while it runs."""
        if self.process.returncode is None:
            pid, status, usage = os.wait4(self.pid, os.WNOHANG)
            if pid:
                self.usage = usage
                # Told, so that nobody waits for this process a second time.
                self.process.returncode = os.waitstatus_to_exitcode(status)
        return self.process.returncode

    def wait(self, limit=None):
        """The exit status of a program that must end by itself; below 0 the
        signal that ended it."""
        if self.poll() is None:
            handle = os.pidfd_open(self.pid)
            try:
                if not select.select([handle], [], [], limit)[0]:
                    raise TooLate(f"the program does not end within {limit:g} s")
            finally:
                os.close(handle)
        return self.poll()

    def signal(self, number):
        if self.poll() is None:
            os.kill(self.pid, number)

    def kill(self):
        """Ends it at once; the exit status."""
        self.signal(signal.SIGKILL)
        return self.wait()

    def processor_seconds(self):
        """Processor time used so far, or in the whole life of an ended program."""
        if self.poll() is not None:
            return self.usage.ru_utime + self.usage.ru_stime
        # The number of the process's clock, as clock_getcpuclockid makes it.
        return time.clock_gettime((~self.pid << 3) | 2)

    def close(self):
        """Ends the program, whatever it does, and gives everything back. What it
        had printed may still be read. May be called again."""
        self.kill()
        for reader in (self.reader, self._errors_reader):
            if reader:
                reader.join(timeout=CLOSE_LIMIT)
                reader.stop()
        if self.process.stdin:
            self.process.stdin.close()

    def _lines_until(self, limit, before):
        """Lines as they come, for so many seconds."""
        deadline = None if limit is None else time.monotonic() + limit
        try:
            while (line := self.read_line(deadline)) is not None:
                yield line
        except OutputEnded as end:
            end.lines = before
            raise

    # What the reading threads do.

    def _take_output(self, chunk):
        *whole, self._unfinished = (self._unfinished + chunk).split(b"\n")
        for data in whole:
            self._take(data + b"\n")

    def _end_output(self):
        if self._unfinished:
            self._take(self._unfinished)
        self._lines.put(None)

    def _take(self, data):
        line = Line(time.monotonic(), data)
        self.arrived(line)
        self._lines.put(line)

    def _take_errors(self, chunk):
        self.errors += chunk
