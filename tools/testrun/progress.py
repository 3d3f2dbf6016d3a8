"""Tells a person how far a run is: one line that is written anew on a terminal,
plain lines from time to time anywhere else. Times are for display only; nothing
is decided by them."""

import shutil
import sys
import time

REFRESH_TERMINAL = 0.2  # seconds between two versions of the line
REFRESH_PLAIN = 15.0

# Until so much of a stage is done its own speed says little.
ENOUGH_DONE = 0.1
UNKNOWN_COST = 0.05  # seconds, of a test that never ran here


def minutes(seconds):
    if seconds < 90:
        return f"{max(5, round(seconds / 5) * 5):.0f} s"
    return f"{round(seconds / 60):.0f} min"


class Tests:
    """How far the tests of a stage are, and what is left by the figures known."""

    def __init__(self, names, costs, jobs):
        self.left = {name: costs.get(name, UNKNOWN_COST) for name in names}
        self.total = len(self.left)
        self.cost = sum(self.left.values())
        self.jobs = jobs
        self.started = time.monotonic()
        self.done, self.failed = 0, 0

    def end(self, name, failed):
        self.left.pop(name, None)
        self.done += 1
        self.failed += failed

    def seconds_left(self):
        left = sum(self.left.values())
        done = self.cost - left
        if done <= ENOUGH_DONE * self.cost:
            return left / self.jobs
        return (time.monotonic() - self.started) * left / done


class LaterStages:
    """What the stages that have not begun will take: as long as in the run before,
    times the pace of this run, because either of the two may share its processors."""

    def __init__(self, before):
        self.before = before  # seconds by stage name
        self.now = {}         # the same of this run

    def end(self, stage, seconds):
        self.now[stage] = seconds

    def pace(self):
        """How many times as long as the run before this one takes."""
        both = self.now.keys() & self.before.keys()
        before = sum(self.before[stage] for stage in both)
        return sum(self.now[stage] for stage in both) / before if before else 1

    def seconds(self, stages):
        """None if one of them never ran here."""
        if any(stage not in self.before for stage in stages):
            return None
        return self.pace() * sum(self.before[stage] for stage in stages)


class Screen:
    """Where the lines go."""

    def __init__(self, out=None):
        self.out = out or sys.stdout
        self.terminal = self.out.isatty()
        self.shown = 0  # length of the line that can be written anew
        self.last = float("-inf")

    def say(self, text=""):
        """A line that stays."""
        self.clear()
        print(text, file=self.out, flush=True)

    def clear(self):
        if self.shown:
            print("\r" + " " * self.shown + "\r", end="", file=self.out, flush=True)
            self.shown = 0

    def is_due(self):
        pause = REFRESH_TERMINAL if self.terminal else REFRESH_PLAIN
        return time.monotonic() - self.last >= pause

    def update(self, text):
        """The line that tells how far the run is; not each is shown."""
        if not self.is_due():
            return
        self.last = time.monotonic()
        if not self.terminal:
            print(text, file=self.out, flush=True)
            return
        width = shutil.get_terminal_size().columns - 1
        self.clear()
        print(text[:width], end="", file=self.out, flush=True)
        self.shown = len(text[:width])
