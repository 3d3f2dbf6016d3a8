"""A window to play in, driven as a person does it: by mouse and keyboard, on a
screen of its own that nobody sees. What the window tells the engine is read from
polyglot's log; what it shows, from the clipboard.

Nothing here waits a fixed time: an action is repeated until its effect is seen.
"""

import os
import pathlib
import re
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "arbiter"))

import client
from rules import Position, find_move

NEEDED = ["Xvfb", "xboard", "polyglot", "xdotool", "xclip"]

# XBoard's options that fix where the squares are, whatever the user of this
# machine likes.
LOOK = ["-size", "49", "-overrideLineGap", "1", "-fixedSize", "true", "-x", "0", "-y", "0",
        "-engineOutputW", "500", "-engineOutputH", "300", "-soundProgram", "true",
        "-animateMoving", "false", "-autoInstall", ""]
SQUARE = 50  # pixels, the line beside a square included
EDGE = 2  # pixels between the board and the window's left and lower edges
# Without a window manager other windows open in the corner, so the board moves
# out of their way.
LEFT = 520


class WindowFault(Exception):
    """The window or the engine did not do what a person expects."""


class Screen:
    """An X server without a screen, under a number that is free. It ends with
    this process, however that ends."""

    def __init__(self, size="960x520"):
        reader, writer = os.pipe()
        self.server = subprocess.Popen(
            ["setpriv", "--pdeathsig", "TERM", "Xvfb", "-displayfd", str(writer), "-screen", "0", size + "x24", "-nolisten", "tcp"],
            pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise WindowFault("Xvfb does not start")
        self.name = ":" + number

    def close(self):
        self.server.terminate()
        self.server.wait()


class Window:
    """A start of mirvo-window or play.sh (`command`) with the data folder
    `folder`/data, on a screen."""

    def __init__(self, screen, command, folder, limit=60, look=()):
        self.log = pathlib.Path(folder) / "polyglot.log"
        self.deadline = time.monotonic() + limit
        self.environment = dict(os.environ, DISPLAY=screen.name, PATH=client.SEARCH_PATH,
                                LC_ALL="C", XDG_DATA_HOME=os.path.join(folder, "data"))
        adapter = f'polyglot -noini -ec "%fcp" -ed "%fd" -log true -lf "{self.log}"'
        own = [] if "--" in command else ["--"]
        self.output = open(os.path.join(folder, "window.txt"), "w+", encoding="utf-8")
        self.process = subprocess.Popen(
            [*command, *own, *LOOK, *look, "-adapterCommand", adapter], cwd=folder,
            env=self.environment, stdin=subprocess.DEVNULL, stdout=self.output,
            stderr=subprocess.STDOUT, start_new_session=True)
        self.flipped = False
        self.wait_for(r"GUI->Adapter: ping", "the engine starts")
        self.number = self.wait_until(self._find, "a window opens")
        self._xdotool("windowmove", "--sync", self.number, str(LEFT), "0")

    # What a person does.

    def key(self, combination):
        self._xdotool("windowfocus", "--sync", self.number, "key", combination)

    def move(self, text):
        """Drags a piece, as in "e2e4"."""
        self._xdotool("mousemove", *self.point(text[:2]), "mousedown", "1",
                      "mousemove", *self.point(text[2:4]), "mouseup", "1")

    def press(self, button, x, y):
        self._xdotool("mousemove", str(x), str(y), "click", str(button))

    def point(self, square):
        """The middle of a square, or of the place beside the board named "off"."""
        if square == "of":
            return str(LEFT + self.width - 5), str(self.height - 200)
        file, rank = "abcdefgh".index(square[0]), int(square[1]) - 1
        if self.flipped:
            file, rank = 7 - file, 7 - rank
        return (str(LEFT + EDGE + SQUARE * file + SQUARE // 2),
                str(self.height - EDGE - SQUARE * rank - SQUARE // 2))

    # What comes of it.

    def sent(self, behind=0):
        """Lines that the engine got, those of the log behind an offset."""
        return re.findall(r"Adapter->Engine: (.*)", self.log_text()[behind:])

    def log_text(self):
        return client.read(self.log) if self.log.exists() else ""

    def mark(self):
        """The log's present end, for what is to come behind it."""
        return len(self.log_text())

    def wait_for(self, pattern, what, behind=0):
        return self.wait_until(lambda: re.search(pattern, self.log_text()[behind:]), what)

    def wait_until(self, condition, what, limit=None):
        """What the condition gives as soon as that is something."""
        deadline = min(self.deadline, time.monotonic() + (limit or 1e9))
        while not (found := condition()):
            if limit and time.monotonic() > deadline:
                return None
            if time.monotonic() > deadline or self.process.poll() is not None:
                raise WindowFault(f"not seen: {what}\n{self.printed()}\n"
                                  f"{self.log_text()[-3000:]}")
            time.sleep(0.02)
        return found

    def do(self, action, pattern, what, behind=None):
        """Repeats an action until the log shows its effect behind the present
        end; that end."""
        mark = self.mark() if behind is None else behind
        while True:
            action()
            if self.wait_until(lambda: re.search(pattern, self.log_text()[mark:]), what, 5):
                return mark
            if time.monotonic() > self.deadline:
                raise WindowFault(f"no effect: {what}\n{self.log_text()[-3000:]}")

    def board(self):
        """Placement and side to move that the window shows."""
        # Emptied first; what does that stays behind as the clipboard's owner.
        subprocess.run(["xclip", "-selection", "clipboard", "-i", "/dev/null"], check=True,
                       env=self.environment, timeout=20, stdout=subprocess.DEVNULL)

        def copied():
            self.key("ctrl+shift+c")
            return self.wait_until(self._clipboard, "a position in the clipboard", 5)
        return self.wait_until(copied, "a position in the clipboard").split()[:2]

    def engines_board(self):
        """Placement and side to move that the engine was told last."""
        told = [line for line in self.sent() if line.startswith("position ")][-1]
        start, _, moves = told.removeprefix("position ").partition(" moves ")
        position = Position(start.removeprefix("fen ")) if start != "startpos" else Position()
        for text in moves.split():
            position = position.play(find_move(position, text))
        return position.fen().split()[:2]

    def printed(self):
        self.output.flush()
        return client.read(self.output.name)

    def close(self):
        """Closes the window as its menu does; true if everything ended by itself."""
        try:
            self.wait_until(lambda: self.key("ctrl+q") or self.process.poll() is not None,
                            "the window closes", 10)
        except (WindowFault, subprocess.SubprocessError):
            pass
        ended = self.process.poll() is not None
        if not ended:
            self.process.kill()
        self.process.wait()
        self.output.close()
        return ended

    def _find(self):
        for number in self._run("xdotool", "search", "--onlyvisible", "--class", "xboard").split():
            shape = dict(re.findall(r"^(\w+)=(\d+)$", self._run(
                "xdotool", "getwindowgeometry", "--shell", number), re.MULTILINE))
            if int(shape.get("WIDTH", 0)) >= 8 * SQUARE:
                self.width, self.height = int(shape["WIDTH"]), int(shape["HEIGHT"])
                return number
        return None

    def _clipboard(self):
        text = self._run("xclip", "-selection", "clipboard", "-o")
        return text if "/" in text else None

    def _xdotool(self, *words):
        self._run("xdotool", *words)

    def _run(self, *command):
        return subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, timeout=20,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=False).stdout
