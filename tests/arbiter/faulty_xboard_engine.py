"""A real engine behind a filter that spoils one kind of line from its sixth
occurrence on, which the arbiter of XBoard games must notice.

Usage: faulty_xboard_engine.py ENGINE FAULT   ("none" for none)
"""

import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from kit.engine_process import EngineProcess  # noqa: E402

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
    # The input is this process's own.
    with EngineProcess([engine, "-quiet"], input=None) as process:
        for line in process.all_lines():
            text = line.text
            if re.search(pattern, text):
                left -= 1
                if left < 0 and replacement is None:
                    continue
                if left < 0:
                    text = re.sub(pattern, replacement, text)
            print(text, flush=True)
        return process.wait()


if __name__ == "__main__":
    sys.exit(main())
