"""One start of the program in a folder: scripted input and the output. Never
exceeds its time limit."""

import os
import queue
import re
import select
import subprocess
import threading
import time


class SessionFault(Exception):
    """The session did not go as its script says."""


class Session:
    """The program as a child with pipes. Reads both pipes concurrently, so the program
    cannot block on a full one."""

    def __init__(self, command, folder, time_limit):
        self.deadline = time.monotonic() + time_limit
        self.process = subprocess.Popen(command, cwd=folder, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.chunks = queue.Queue()
        self.text = b""
        self.errors = b""
        self.matched = 0  # output before this offset was met by an "expect"
        self.ended = False
        self.stop_reading, self.stop_writer = os.pipe()
        self.readers = [threading.Thread(target=self._read_output, daemon=True),
                        threading.Thread(target=self._read_errors, daemon=True)]
        for reader in self.readers:
            reader.start()

    def _read_output(self):
        stream = self.process.stdout.fileno()
        while self.stop_reading not in select.select([stream, self.stop_reading], [], [])[0]:
            chunk = os.read(stream, 65536)
            if not chunk:
                break
            self.chunks.put(chunk)
        self.process.stdout.close()
        self.chunks.put(None)

    def _read_errors(self):
        self.errors = self.process.stderr.read()

    def _left(self):
        return max(0.0, self.deadline - time.monotonic())

    def _take_chunk(self):
        """Waits for output; false when there will be no more."""
        if self.ended:
            return False
        chunk = self.chunks.get(timeout=self._left())
        if chunk is None:
            self.ended = True
            return False
        self.text += chunk
        return True

    def send(self, data):
        try:
            self.process.stdin.write(data)
            self.process.stdin.flush()
        except OSError as error:
            raise SessionFault(f"the program no longer reads its input ({error})") from error

    def close_input(self):
        self.process.stdin.close()

    def close_output(self):
        """Stops reading the program's output, like an interface that has ended."""
        os.write(self.stop_writer, b"x")
        self.readers[0].join()

    def expect(self, pattern):
        """Waits for a line that matches, after the last one that did."""
        compiled = re.compile(pattern.encode("utf-8", "surrogateescape"))
        while True:
            while (end := self.text.find(b"\n", self.matched)) >= 0:
                line = self.text[self.matched:end].removesuffix(b"\r")
                self.matched = end + 1
                if compiled.search(line):
                    return
            try:
                if not self._take_chunk():
                    raise SessionFault(f"the program ended before a line like {pattern!r} came")
            except queue.Empty:
                raise SessionFault(f"no line like {pattern!r} came in time") from None

    def finish(self):
        """Waits for the end; the exit status."""
        try:
            while self._take_chunk():
                pass
            return self.process.wait(timeout=self._left() + 1)
        except (queue.Empty, subprocess.TimeoutExpired):
            raise SessionFault("the program did not end in time") from None

    def close(self):
        """Kills the program if necessary and collects the rest of its output."""
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        for reader in self.readers:
            reader.join(timeout=2)
        while not self.chunks.empty():
            self.text += self.chunks.get() or b""
        for stream in (self.process.stdin, self.process.stderr):
            try:
                stream.close()
            except OSError:
                pass
        os.close(self.stop_reading)
        os.close(self.stop_writer)
