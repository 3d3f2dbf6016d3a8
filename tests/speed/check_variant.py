"""Checks that another build of the program prints exactly the same as this one:
searches of the signature positions (moves, scores, nodes, usage of the caches),
their evaluation reports, perft. Times and speeds are left out.

Usage: check_variant.py SIGNATURE_FILE PROGRAM OTHER_PROGRAM
"""

import pathlib
import re
import subprocess
import sys
import tempfile

PERFT_POSITION = ["r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R", "w", "KQkq"]

# What differs between runs: elapsed time, thousands of nodes per second, progress
# lines.
VARYING = [
    (re.compile(r"^Pondering:.*\n", re.MULTILINE), ""),
    (re.compile(r"^( ?\d+) [\d:.]+ ", re.MULTILINE), r"\1 # "),
    (re.compile(r"\((\d+)/\d+\)$", re.MULTILINE), r"(\1/#)"),
    (re.compile(r"% - \d+\)"), "% - #)"),
    (re.compile(r"Time = .*|kNodes/sec = .*"), "#"),
]


def read_positions(path):
    """The first three FEN fields of each signature position."""
    lines = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
    return [line.split(" | ")[1] for line in lines if "|" in line and not line.startswith("#")]


def run(program, arguments, folder):
    result = subprocess.run([program, *arguments], cwd=folder, stdin=subprocess.DEVNULL,
                            capture_output=True, text=True, timeout=200, check=True)
    text = result.stdout
    for pattern, replacement in VARYING:
        text = pattern.sub(replacement, text)
    return text.splitlines()


def main():
    positions = read_positions(sys.argv[1])
    programs = [str(pathlib.Path(name).resolve()) for name in sys.argv[2:4]]
    jobs = [["-depth", "6", "-analyze", "positions.epd"], ["-perft", "4", *PERFT_POSITION]]
    jobs += [["-eval", *position.split()] for position in positions]
    differing = 0
    with tempfile.TemporaryDirectory() as folder:
        suite = "".join(f'{position} - bm; id "{i}";\n' for i, position in enumerate(positions))
        (pathlib.Path(folder) / "positions.epd").write_text(suite, encoding="utf-8")
        for job in jobs:
            texts = [run(program, job, folder) for program in programs]
            for ours, theirs in zip(*texts):
                if ours != theirs:
                    print(f"{' '.join(job)}\n- {ours}\n+ {theirs}")
                    break
            differing += texts[0] != texts[1]
    print(f"{len(jobs)} runs compared, {differing} differ")
    return 1 if differing or not positions else 0


if __name__ == "__main__":
    sys.exit(main())
