"""A UCI engine that breaks one of its promises about time, which answer_times.py
must notice.

Usage: faulty_times.py FAULT   ("stop", "ready", "clock", "hit", "idle", "end",
"none")
"""

import re
import sys
import time

LATE = 0.2  # seconds


def say(line):
    print(line, flush=True)


def answer(allotted, late):
    say(f"Allowing {allotted} ms for move (1, {allotted}, 0)")
    time.sleep(allotted / 1000 + (LATE if late else 0))
    say("bestmove e2e4 ")


def main():
    fault, allotted = sys.argv[1], 0
    for line in sys.stdin:
        clock = re.match(r"go (?:ponder )?wtime (\d+)", line)
        allotted = int(clock[1]) if clock else allotted
        if line.startswith("uci\n"):
            say("uciok")
        elif line.startswith("isready"):
            time.sleep(LATE if fault == "ready" else 0)
            say("readyok")
        elif line.startswith("stop"):
            time.sleep(LATE if fault == "stop" else 0)
            say("bestmove e2e4 ")
        elif line.startswith("ponderhit"):
            answer(allotted, fault == "hit")
        elif line.startswith("go wtime"):
            answer(allotted, fault == "clock")
    while fault != "end":
        if fault != "idle":
            time.sleep(0.5)


if __name__ == "__main__":
    main()
