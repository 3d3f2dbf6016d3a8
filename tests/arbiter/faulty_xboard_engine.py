"""A real engine behind a filter that spoils one kind of line from its sixth
occurrence on, which the arbiter of XBoard games must notice.

Usage: faulty_xboard_engine.py ENGINE FAULT   ("none" for none)
"""

import re
import subprocess
import sys

# Fault -> (line it spoils, replacement; None drops the line).
SPOILED = {
    "none": (r"$.", None),
    "position": (r"^(\S+/\S+/\S+ )w (.*)$", r"\1b \2"),
    "silence": (r"^\S+/\S+/\S+ [wb] \S+ -$", None),
    "move": (r"^move .*$", "move e1e8"),
    "reply": (r"^PONDERING .*$", "PONDERING e1e8"),
    "hit": (r"^PONDER HIT.*$", "PONDER NOT HIT. STOPPING"),
    "double": (r"^(move .*)$", r"\1\n\1"),
    "unwanted": (r"^(move .*)$", r"\1\nPONDERING a7a6"),
    "count": (r"^Ponder hits = (\d+)", r"Ponder hits = 9\1"),
}


def main():
    engine, fault = sys.argv[1:]
    pattern, replacement = SPOILED[fault]
    left = 5
    with subprocess.Popen([engine, "-quiet"], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True) as process:
        for line in process.stdout:
            line = line.rstrip("\n")
            if re.search(pattern, line):
                left -= 1
                if left < 0 and replacement is None:
                    continue
                if left < 0:
                    line = re.sub(pattern, replacement, line)
            print(line, flush=True)
    return process.returncode


if __name__ == "__main__":
    sys.exit(main())
