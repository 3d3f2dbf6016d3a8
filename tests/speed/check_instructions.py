"""Counts the instructions per node of perft and of a search, under callgrind,
and compares them with the stored figures.

Usage: check_instructions.py WORKLOAD STORED_FILE --compiler VERSION [--store]

Exit status 1 if a figure has grown by more than 3 %, 77 (skipped) if there is
nothing to compare: no valgrind, or another compiler than the stored one. --store
writes this build's figures instead; use it in the commit that changes them on
purpose. A figure that has fallen by more than 3 % is no failure, but the script
asks for it to be stored, since growth counts from the stored figure.

Only RunPerft and Think are counted, not the start of the program. The counts are
the same on every processor, except for memory copies, whose code the C library
chooses: about one instruction in 700 of a search.
"""

import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TOLERANCE = 0.03
SKIPPED = 77

# Name: arguments of the workload, the function inside which it counts.
WORKLOADS = {
    "perft": (["perft", "4"], "mirvo::RunPerft(*"),
    "search": (["search", "open_sicilian", "open_kings", "castling_both_ways", "rook_ending",
                "pawn_ending"], "mirvo::Think(*"),
}

HEADER = """\
# Instructions per node of the release build, for any x86-64 processor. Written
# by tests/speed/check_instructions.py --store; see docs/performance.md.
"""


def read_stored(path):
    """(compiler version, {name: instructions per node}) of the stored file."""
    compiler, figures = None, {}
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if line.startswith("#") or not line.strip():
            continue
        name, value = line.split()
        if name == "compiler":
            compiler = value
        else:
            figures[name] = float(value)
    return compiler, figures


def write_stored(path, compiler, figures):
    lines = [f"compiler {compiler}"] + [f"{name} {value:.1f}" for name, value in figures.items()]
    pathlib.Path(path).write_text(HEADER + "\n".join(lines) + "\n", encoding="utf-8")


def count(workload, name):
    """Instructions per node of one workload."""
    arguments, function = WORKLOADS[name]
    with tempfile.TemporaryDirectory() as folder:
        profile = pathlib.Path(folder) / "profile"
        result = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--toggle-collect={function}",
             f"--callgrind-out-file={profile}", workload, *arguments],
            cwd=folder, capture_output=True, text=True, check=False)
        if result.returncode != 0:
            sys.exit(f"{name}: the workload failed: {result.stdout}{result.stderr}")
        nodes = int(re.search(r"^nodes (\d+)$", result.stdout, re.MULTILINE).group(1))
        text = profile.read_text(encoding="utf-8")
        return int(re.search(r"^(?:totals|summary): (\d+)", text, re.MULTILINE).group(1)) / nodes


def judge(stored, measured):
    """(lines to print, whether a figure has grown too much)."""
    lines, failed = [], False
    for name, value in measured.items():
        if name not in stored:
            lines.append(f"{name}: {value:.1f} instructions per node, no stored figure")
            failed = True
            continue
        change = value / stored[name] - 1
        lines.append(f"{name}: {value:.1f} instructions per node, stored {stored[name]:.1f} "
                     f"({change:+.1%})")
        if change > TOLERANCE:
            failed = True
            lines.append(f"{name}: grown by more than {TOLERANCE:.0%}; if that is meant, run this "
                         "script with --store and say why in the commit")
        elif change < -TOLERANCE:
            lines.append(f"{name}: fallen by more than {TOLERANCE:.0%}; please store it (--store)")
    return lines, failed


def main(arguments, measure=count, find=shutil.which):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("workload")
    parser.add_argument("stored_file")
    parser.add_argument("--compiler", required=True, help="version that built the workload")
    parser.add_argument("--store", action="store_true", help="store the figures of this build")
    options = parser.parse_args(arguments)
    if not find("valgrind"):
        print("SKIP: valgrind is not installed")
        return SKIPPED
    compiler, stored = (None, {}) if options.store else read_stored(options.stored_file)
    measured = {name: measure(options.workload, name) for name in WORKLOADS}
    if options.store:
        write_stored(options.stored_file, options.compiler, measured)
        print(pathlib.Path(options.stored_file).read_text(encoding="utf-8"), end="")
        return 0
    if compiler != options.compiler:
        for name, value in measured.items():
            print(f"{name}: {value:.1f} instructions per node")
        print(f"SKIP: not compared, built by g++ {options.compiler}, the stored figures by g++ {compiler}")
        return SKIPPED
    lines, failed = judge(stored, measured)
    print(*lines, sep="\n")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
