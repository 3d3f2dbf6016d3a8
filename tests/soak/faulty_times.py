"""A UCI engine that breaks one of its promises about time: what the measuring
must notice.

Usage: faulty_times.py FAULT   ("stop", "ready", "clock", "idle", "end", "none")
"""

import re
import sys
import time

LATE = 0.2  # seconds


def say(line):
    print(line, flush=True)


def main():
    fault = sys.argv[1]
    for line in sys.stdin:
        timed = re.match(r"go wtime (\d+) movestogo (\d+)", line)
        if line.startswith("uci\n"):
            say("uciok")
        elif line.startswith("isready"):
            time.sleep(LATE if fault == "ready" else 0)
            say("readyok")
        elif line.startswith("stop"):
            time.sleep(LATE if fault == "stop" else 0)
            say("bestmove e2e4 ")
        elif timed:
            allotted = int(timed[1]) // int(timed[2])
            say(f"Allowing {allotted} ms for move ({timed[2]}, {timed[1]}, 0)")
            time.sleep(allotted / 1000 + (LATE if fault == "clock" else 0))
            say("bestmove e2e4 ")
    while fault != "end":
        if fault != "idle":
            time.sleep(0.5)


if __name__ == "__main__":
    main()
