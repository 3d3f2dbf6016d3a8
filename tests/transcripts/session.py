"""One start of the program in a folder: scripted input and the output. Never
exceeds its time limit."""

import os
import re
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from kit.engine_process import KEPT, EngineProcess, OutputEnded, TooLate  # noqa: E402


class SessionFault(Exception):
    """The session did not go as its script says."""


class Session:
    """The program and the bytes that it printed."""

    def __init__(self, command, folder, time_limit):
        self.deadline = time.monotonic() + time_limit
        self.program = EngineProcess(command, folder, errors=KEPT)
        self.text = b""

    @property
    def errors(self):
        return self.program.errors

    def _left(self):
        return max(0.0, self.deadline - time.monotonic())

    def send(self, data):
        try:
            self.program.send_bytes(data, self._left())
        except (OSError, TooLate) as error:
            raise SessionFault(f"the program no longer reads its input ({error})") from error

    def close_input(self):
        self.program.close_input()

    def close_output(self):
        self.program.close_output()

    def expect(self, pattern):
        """Waits for a line that matches, after the last one that did."""
        compiled = re.compile(pattern.encode("utf-8", "surrogateescape"))
        try:
            while (line := self.program.read_line(self.deadline)) is not None:
                self._keep([line])
                end = b"\r\n" if line.data.endswith(b"\r\n") else b"\n"
                if line.data.endswith(end) and compiled.search(line.data.removesuffix(end)):
                    return
        except OutputEnded:
            raise SessionFault(
                f"the program ended before a line like {pattern!r} came") from None
        raise SessionFault(f"no line like {pattern!r} came in time")

    def finish(self):
        """Waits for the end; the exit status."""
        try:
            self._take(self._left())
            return self.program.wait(self._left() + 1)
        except TooLate:
            raise SessionFault("the program did not end in time") from None

    def close(self):
        """Ends the program, whatever it does, and collects the rest of its output."""
        self.program.close()
        self._take(None)

    def _take(self, limit):
        try:
            self._keep(self.program.read_rest(limit))
        except TooLate as late:
            self._keep(late.lines)
            raise

    def _keep(self, lines):
        self.text += b"".join(line.data for line in lines)
