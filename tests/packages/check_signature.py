"""Checks that an engine searches the stored number of nodes in each signature
position, as any interface can: over UCI, to the signature's depth, each position
by a new process, because a search learns from those before it. It is for packages
that were unpacked, whatever runs what they hold.

Usage: check_signature.py SIGNATURE_FILE COMMAND...
The engine is started in a folder of its own, whose settings switch the book off and
ask for the usual tables, since a package may bring others.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import threading

DEPTH = 7
LIMIT = 120  # seconds for a position, under an emulator on a busy machine
SETTINGS = "UseOpeningBook=0\nPawnHashSize=30\nEvalHashSize=100\nTTHashSize=100\n"
NODES = re.compile(r"^info .*\bnodes (\d+)")


def read_signature(path):
    """[(name, first three FEN fields, nodes)] and the total."""
    positions, total = [], 0
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if line.startswith("total "):
            total = int(line.split()[1])
        elif line and not line.startswith("#"):
            name, position, nodes = line.split(" | ")
            positions.append((name, position, int(nodes)))
    return positions, total


def count_nodes(command, folder, position):
    """Nodes of the last report before the answer; None when something is odd."""
    process = subprocess.Popen(command, cwd=folder, text=True, errors="replace",
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    limit = threading.Timer(LIMIT, process.kill)
    limit.start()
    try:
        process.stdin.write(f"uci\nposition fen {position} - 0 1\ngo depth {DEPTH}\n")
        process.stdin.flush()
        nodes = None
        for line in process.stdout:
            found = NODES.search(line)
            nodes = int(found[1]) if found else nodes
            if line.startswith("bestmove"):
                break
        process.communicate("quit\n")
        return nodes if process.returncode == 0 else None
    except BrokenPipeError:
        return None
    finally:
        limit.cancel()


def check(signature_file, command):
    """Number of positions whose nodes are others; says which."""
    positions, total = read_signature(signature_file)
    faults, found = 0, 0
    with tempfile.TemporaryDirectory(prefix="mirvo-signature-") as folder:
        (pathlib.Path(folder) / "config.txt").write_text(SETTINGS, encoding="ascii")
        for name, position, nodes in positions:
            counted = count_nodes(command, folder, position)
            found += counted or 0
            if counted != nodes:
                print(f"{name}: {counted} nodes, stored {nodes}")
                faults += 1
    print(f"signature {found}, stored {total}")
    return faults + (found != total)


if __name__ == "__main__":
    sys.exit(1 if check(sys.argv[1], sys.argv[2:]) else 0)
