"""A terminal with one Windows program in it. Wine turns it into the program's
console.

    terminal.py COMMAND...

runs a command whose output and status are passed on.
"""

import os
import pty
import re
import select
import signal
import sys
import termios
import time

# Cursor movements to the right replace blanks.
BLANKS = re.compile(r"\x1b\[(\d*)C")
CONTROLS = re.compile(r"\x1b\[[?\d;]*[A-Za-z]|\r")


def plain(data):
    text = BLANKS.sub(lambda move: " " * int(move.group(1) or 1), data.decode(errors="replace"))
    return CONTROLS.sub("", text)


class Terminal:

    def __init__(self, command, folder="."):
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.environ["TERM"] = "xterm"
            os.execvp(command[0], command)
        self.shown = b""
        self.status = None

    def wait_for_keys(self, limit=30):
        """Whether the program gets single keys within so many seconds, as from a
        console. Until then the terminal collects lines itself."""
        deadline = time.monotonic() + limit
        while termios.tcgetattr(self.terminal)[3] & termios.ICANON:
            if time.monotonic() > deadline:
                return False
            time.sleep(0.01)
        return True

    def type(self, text):
        os.write(self.terminal, text.encode())

    def _more(self, deadline):
        """Reads what is shown next; false when the program or the time ends."""
        left = deadline - time.monotonic()
        if left <= 0 or not select.select([self.terminal], [], [], left)[0]:
            return False
        try:
            data = os.read(self.terminal, 65536)
        except OSError:  # the program of the terminal has ended
            data = b""
        self.shown += data
        return bool(data)

    def wait_for(self, text, limit=30):
        """Whether the text is shown within so many seconds."""
        deadline = time.monotonic() + limit
        while text not in plain(self.shown):
            if not self._more(deadline):
                return False
        return True

    def finish(self, limit=60):
        """Waits for the program's end; its status, or None after killing it."""
        deadline = time.monotonic() + limit
        while self._more(deadline):
            pass
        while self.status is None and time.monotonic() < deadline:
            done, status = os.waitpid(self.process, os.WNOHANG)
            if done:
                self.status = os.waitstatus_to_exitcode(status)
            time.sleep(0.01)
        if self.status is None:
            os.kill(self.process, signal.SIGKILL)
            os.waitpid(self.process, 0)
        os.close(self.terminal)
        return self.status


def main(command):
    terminal = Terminal(command)
    status = terminal.finish()
    print(plain(terminal.shown))
    return 1 if status is None else status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
