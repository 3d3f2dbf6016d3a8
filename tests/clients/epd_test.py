"""Lets polyglot run a UCI engine over an EPD file of forced mates.

Usage: epd_test.py ENGINE EPD_FILE   Fails unless every position is solved.
"""

import re
import sys
import tempfile

import client


def main():
    engine, suite = sys.argv[1:]
    client.need("polyglot")
    positions = sum(1 for line in client.read(suite).splitlines() if line.strip())
    with tempfile.TemporaryDirectory(prefix="mirvo-epd-") as folder:
        printed = client.run(
            ["polyglot", "epd-test", "-noini", "-ec", engine, "-ed", folder, "-epd", suite,
             "-max-depth", "7", "-max-time", "10", "-min-depth", "2", "-min-time", "0.1"],
            folder, 120)
    print(printed)
    score = re.search(r"^score=(\d+)/(\d+)", printed, re.MULTILINE)
    if score is None or score.groups() != (str(positions), str(positions)):
        client.fail(f"expected score={positions}/{positions}")


if __name__ == "__main__":
    main()
