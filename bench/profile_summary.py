"""Makes a table from callgrind_annotate's output for Ir, D1mr and DLmr.

Usage: profile_summary.py ANNOTATED_FILE NODES [ROWS]
"""

import pathlib
import re
import sys

PERCENTAGE = re.compile(r"\([\s\d.]*%\)")
ROW = re.compile(r"\s*([\d,.]+)\s+([\d,.]+)\s+([\d,.]+)\s+(\S.*)")
EVENTS = 3


def plain_name(text):
    """A function's name without file, namespace, types and template arguments."""
    name = text.split(":", 1)[1].split(" [")[0]
    name = name.replace("(anonymous namespace)::", "")
    while "<" in name and name != re.sub(r"<[^<>]*>", "", name):
        name = re.sub(r"<[^<>]*>", "", name)
    return name.split("(")[0].split(" ")[-1].replace("mirvo::", "").strip("'2") or text


def read_annotated(text):
    """(totals, {name: counts}); instances of a template are added up."""
    totals, functions = None, {}
    for line in text.splitlines():
        match = ROW.fullmatch(PERCENTAGE.sub("", line))
        if not match:
            continue
        counts = [0 if word == "." else int(word.replace(",", "")) for word in match.groups()[:EVENTS]]
        if match.group(4).startswith("PROGRAM TOTALS"):
            totals = counts
        elif ":" in match.group(4):
            known = functions.setdefault(plain_name(match.group(4)), [0] * EVENTS)
            known[:] = [a + b for a, b in zip(known, counts)]
    return totals, functions


def table(totals, functions, nodes, rows):
    """Lines of the table, the costliest functions first."""
    lines = ["| function | instructions per node | share | first-level misses in 1,000 nodes "
             "| last-level misses in 1,000 nodes |", "|---|---|---|---|---|"]
    ordered = sorted(functions.items(), key=lambda item: -item[1][0])[:rows]
    for name, counts in [*((f"`{name}`", counts) for name, counts in ordered), ("all", totals)]:
        lines.append(f"| {name} | {counts[0] / nodes:,.1f} | {counts[0] / totals[0]:.1%} | "
                     f"{counts[1] / nodes * 1000:,.0f} | {counts[2] / nodes * 1000:,.0f} |")
    return lines


def main():
    totals, functions = read_annotated(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    if totals is None:
        sys.exit("no totals in this file")
    rows = int(sys.argv[3]) if len(sys.argv) > 3 else 12
    print(*table(totals, functions, int(sys.argv[2]), rows), sep="\n")


if __name__ == "__main__":
    main()
