"""Lets polyglot run Mirvo as a UCI engine over a test suite and compares the
moves with those of Mirvo's own "-analyze" run at the same depth.

    check_polyglot_agrees.py PROGRAM SUITE DEPTH

Every position gets an engine process of its own, so both sides start cold.
Positions with several best moves, or with an en-passant square (UCI positions
drop it, suite positions keep it), are left out. Ends with status 77 where
there is no polyglot.
"""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
SECONDS = 100  # for one position; far more than the depth takes
RESULT = re.compile(r"^Pos (\d+) (\S+) - (Correct|Wrong)\(", re.MULTILINE)
PEER_RESULT = re.compile(r"^ *1: .* (OK|--) +\d+ score=[^]]*\] =(\S+)", re.MULTILINE)


def destination_and_piece(move):
    """What suites compare: "Nbxd2+" and "Nd2" are the same answer."""
    if move.startswith("O-O"):
        return move.rstrip("+#")
    piece = move[0] if move[0] in "KQRBN" else "P"
    return piece + re.findall(r"[a-h][1-8]", move)[-1]


def own_answers(program, suite, depth, folder):
    command = [program, "-quiet", "-depth", str(depth), "-analyze", str(suite)]
    text = subprocess.run(
        command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
        timeout=600, check=True).stdout
    return {int(number): (move, verdict == "Correct")
            for number, move, verdict in RESULT.findall(text)}


def peer_answer(polyglot, program, line, depth):
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "one.epd").write_text(line + "\n")
        command = [polyglot, "epd-test", "-noini", "-ec", program, "-epd", "one.epd",
                   "-min-depth", str(depth), "-max-depth", str(depth),
                   "-max-time", str(SECONDS), "-depth-delta", "1000"]
        text = subprocess.run(
            command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
            timeout=3 * SECONDS, env={**os.environ, "HOME": folder}).stdout
    found = PEER_RESULT.search(text)
    if not found:
        raise RuntimeError(f"no result from polyglot for {line}:\n{text}")
    return found.group(2), found.group(1) == "OK"


def is_compared(line):
    best = re.search(r" bm ([^;]*);", line).group(1).split()
    return len(best) == 1 and line.split()[3] == "-"


def main(program, suite, depth):
    polyglot = shutil.which("polyglot", path=os.environ.get("PATH", "") + ":/usr/games")
    if not polyglot:
        print("SKIP: polyglot is not installed")
        return SKIPPED
    program = os.path.abspath(program)
    suite = pathlib.Path(suite).resolve()
    lines = suite.read_text().splitlines()
    with tempfile.TemporaryDirectory() as folder:
        answers = own_answers(program, suite, depth, folder)
    if len(answers) != len(lines):
        print(f"{len(answers)} results for {len(lines)} positions")
        return 1
    numbers = [n for n, line in enumerate(lines, 1) if is_compared(line)]
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        peers = list(pool.map(
            lambda n: peer_answer(polyglot, program, lines[n - 1], depth), numbers))
    failures = 0
    for number, (move, correct) in zip(numbers, peers):
        own, own_correct = answers[number]
        same = destination_and_piece(own) == destination_and_piece(move)
        if same and own_correct == correct:
            continue
        failures += 1
        print(f"position {number}: -analyze {own} ({own_correct}), polyglot {move} ({correct})")
    print(f"{len(numbers)} of {len(lines)} positions compared, {failures} different")
    return 1 if failures or 2 * len(numbers) < len(lines) else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2], int(sys.argv[3])))
