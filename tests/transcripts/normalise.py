"""Replaces what differs between runs (times and speeds) by "#" before comparing, and
unifies line ends. Counts, scores and moves stay."""

import re

RULES = [
    (r"\r\n", "\n"),
    # Perft.
    (r"^Time = \d+\.\d\ds$", "Time = #s"),
    (r"^kNodes/sec = (?!0\.00$)\d+\.\d\d$", "kNodes/sec = #"),
    # UCI reports.
    (r"^(info (?:.* )?)time \d+", r"\1time #"),
    (r"^(info (?:.* )?)nps \d+", r"\1nps #"),
    # XBoard reports: depth, score, centiseconds, nodes.
    (r"^([ \d]\d +-?\d+) +\d+( +\d+ (?=[a-hKQRBNO(]))", r"\1 #\2"),
    # Reports of a test suite: depth, time, score, line, (nodes/speed).
    (r"^([ \d]\d) \d+:\d+ ([+-]\d+\.\d\d )", r"\1 # \2"),
    (r"^([ \d]\d # [+-]\d+\.\d\d .* \(\d+)/\d+\)$", r"\1/#)"),
]
COMPILED = [(re.compile(pattern, re.MULTILINE), replacement) for pattern, replacement in RULES]

# Printed on the console only.
CONSOLE_ONLY = "config.txt not found, using default values.\n"


def without_repeats(text, pattern):
    """The text with only the first of the lines in which the pattern is found."""
    kept, seen = [], False
    for line in text.split("\n"):
        matches = pattern.search(line) is not None
        if not (matches and seen):
            kept.append(line)
        seen = seen or matches
    return "\n".join(kept)


def normalise(text, extra=(), once=()):
    for pattern, replacement in [*COMPILED, *extra]:
        text = pattern.sub(replacement, text)
    for pattern in once:
        text = without_repeats(text, pattern)
    return text
