"""Prints a gcovr summary as a table with one row per folder.

Usage: coverage_table.py SUMMARY_JSON
"""

import json
import sys


def totals_per_folder(files):
    """Folder -> [lines, lines reached, branches, branches reached]."""
    totals = {}
    for file in files:
        row = totals.setdefault(file["filename"].split("/")[0], [0, 0, 0, 0])
        for i, key in enumerate(["line_total", "line_covered", "branch_total", "branch_covered"]):
            row[i] += file[key]
    return totals


def percent(covered, total):
    """Rounded down, so that 100.0 means all."""
    return f"{covered * 1000 // total / 10:.1f} %" if total else "-"


def table(totals):
    rows = ["| folder | lines | reached | branches | taken |", "|---|--:|--:|--:|--:|"]
    everything = [sum(column) for column in zip(*totals.values())]
    for name, row in [*sorted(totals.items()), ("all", everything)]:
        lines, reached, branches, taken = row
        rows.append(f"| {name} | {lines} | {percent(reached, lines)} | {branches} | "
                    f"{percent(taken, branches)} |")
    return "\n".join(rows)


def main():
    with open(sys.argv[1], encoding="utf-8") as summary:
        print(table(totals_per_folder(json.load(summary)["files"])))


if __name__ == "__main__":
    main()
