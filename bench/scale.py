"""Measures how the search scales with its transposition table: processor time per
depth, effective branching factor, nodes per second, start-up time and memory, for
tables of 1 MB to 1,024 MB. Raw numbers go to a CSV file, a table to standard output.

Usage: scale.py MIRVO RAW_CSV [--plot SVG] [--depth D] [--core C] [--sizes MB...]
"""

import argparse
import csv
import math
import os
import pathlib
import tempfile

from engine import Engine, geometric_mean

SIZES = [1, 4, 16, 64, 256, 1024]  # MB
FEN = "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10"
FIELDS = ["table", "depth", "nodes", "seconds", "startup", "memory"]


def measure(mirvo, size, options, folder):
    """Rows of one table size. Start-up is the time until "uciok"; memory is the peak
    resident size in MB."""
    engine = Engine([mirvo], options.core, folder)
    engine.start_uci()
    startup = engine.seconds()
    engine.send("setoption name Use Opening Book value false")
    engine.send(f"setoption name TT Hash Size value {size}")
    rows = []
    for depth in range(1, options.depth + 1):
        nodes, seconds = engine.search_depth(FEN, depth)
        rows.append({"table": size, "depth": depth, "nodes": nodes, "seconds": round(seconds, 4),
                     "startup": round(startup, 4)})
    memory = round(engine.quit())
    return [{**row, "memory": memory} for row in rows]


def branching(rows):
    """Geometric mean of the growth of nodes per ply, from depth 3 on."""
    nodes = [row["nodes"] for row in rows if row["depth"] >= 3]
    return geometric_mean(b / a for a, b in zip(nodes, nodes[1:]))


def table(rows):
    lines = ["| table, MB | deepest, s | branching factor | million nodes per second | start-up, s "
             "| memory, MB |", "|---|---|---|---|---|---|"]
    for size in sorted({row["table"] for row in rows}):
        own = [row for row in rows if row["table"] == size]
        last = own[-1]
        lines.append(f"| {size} | {last['seconds']:.2f} | {branching(own):.2f} | "
                     f"{last['nodes'] / last['seconds'] / 1e6:.2f} | {last['startup']:.3f} | "
                     f"{last['memory']} |")
    return lines


def plot(rows):
    """An SVG of seconds (logarithmic) by depth, one line for each table size."""
    width, height, margin = 640, 400, 50
    deepest = max(row["depth"] for row in rows)
    logs = [math.log10(max(row["seconds"], 1e-4)) for row in rows]
    low, high = math.floor(min(logs)), math.ceil(max(logs))

    def place(depth, log):
        x = margin + (depth - 1) / max(deepest - 1, 1) * (width - 3 * margin)
        y = height - margin - (log - low) / max(high - low, 1) * (height - 2 * margin)
        return f"{x:.1f},{y:.1f}"

    def text(place_of, label, colour="black"):
        x, y = place_of.split(",")
        return f'<text x="{x}" y="{y}" fill="{colour}">{label}</text>'

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
             'font-family="sans-serif" font-size="12">',
             f'<rect width="{width}" height="{height}" fill="white"/>',
             text("20,20", "processor seconds by depth, for tables of 1 MB and more")]
    parts += [text(f"5,{place(1, log).split(',')[1]}", f"{10.0 ** log:g} s")
              for log in range(low, high + 1)]
    parts += [text(f"{place(depth, low).split(',')[0]},{height - 20}", depth)
              for depth in range(1, deepest + 1)]
    sizes = sorted({row["table"] for row in rows})
    for i, size in enumerate(sizes):
        colour = f"hsl({i * 300 // len(sizes)},70%,45%)"
        points = " ".join(place(row["depth"], log) for row, log in zip(rows, logs)
                          if row["table"] == size)
        parts.append(f'<polyline fill="none" stroke="{colour}" points="{points}"/>')
        parts.append(text(f"{width - 80},{margin + 16 * i}", f"{size} MB", colour))
    return "\n".join([*parts, "</svg>"]) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("mirvo")
    parser.add_argument("raw")
    parser.add_argument("--plot", help="SVG file to write")
    parser.add_argument("--depth", type=int, default=12)
    parser.add_argument("--core", type=int, default=0)
    parser.add_argument("--sizes", type=int, nargs="+", default=SIZES)
    options = parser.parse_args()
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        for size in options.sizes:
            rows += measure(os.path.abspath(options.mirvo), size, options, folder)
    with open(options.raw, "w", encoding="utf-8", newline="") as file:
        writer = csv.DictWriter(file, FIELDS, lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)
    if options.plot:
        pathlib.Path(options.plot).write_text(plot(rows), encoding="utf-8")
    print(*table(rows), sep="\n")


if __name__ == "__main__":
    main()
