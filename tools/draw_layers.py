"""Draws the layers of the engine, docs/layers.svg, from the CMake targets.

Usage: draw_layers.py [--check]

A box is a layer (`mirvo_layer` in a CMakeLists.txt) with its folder; an arrow points
to a layer that it uses. A layer that is also used through another one has no arrow.
With --check nothing is written: the status is 1 if the picture is out of date.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs" / "layers.svg"
LAYER = re.compile(r"mirvo_layer\((\w+)(?:\s+USES\s+([\w\s]+?))?\s+SOURCES", re.MULTILINE)

WIDTH, HEIGHT = 130, 46  # of a box, in pixels
GAP_X, GAP_Y = 40, 42


def read_layers():
    """{layer: (folder, names of the layers it uses)}."""
    layers = {}
    for file in sorted(ROOT.rglob("CMakeLists.txt")):
        folder = file.parent.relative_to(ROOT)
        if folder.parts and folder.parts[0] in ("build", "tests"):
            continue
        for name, uses in LAYER.findall(file.read_text(encoding="utf-8")):
            layers[name] = (folder.as_posix() + "/", uses.split())
    return layers


def direct_uses(layers):
    """{layer: layers it uses, without those that another of them uses}."""
    return {name: [use for use in uses if not any(use in layers[other][1] for other in uses)]
            for name, (_, uses) in layers.items()}


def levels(layers):
    """{layer: number of layers below it on the longest way down}."""
    def level(name):
        return 1 + max((level(use) for use in layers[name][1]), default=-1)
    return {name: level(name) for name in layers}


def positions(layers):
    """({layer: (x, y) of its box's upper left corner}, width, height)."""
    level_of = levels(layers)
    highest = max(level_of.values())
    rows = [sorted(name for name in layers if level_of[name] == row)
            for row in range(highest, -1, -1)]
    width = max(len(row) for row in rows) * (WIDTH + GAP_X) + GAP_X
    places = {}
    for number, row in enumerate(rows):
        left = (width - len(row) * WIDTH - (len(row) - 1) * GAP_X) // 2
        for place, name in enumerate(row):
            places[name] = (left + place * (WIDTH + GAP_X), GAP_X // 2 + number * (HEIGHT + GAP_Y))
    return places, width, len(rows) * (HEIGHT + GAP_Y)


def draw(layers):
    """The picture as the text of an SVG file."""
    places, width, height = positions(layers)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
        f'viewBox="0 0 {width} {height}" font-family="sans-serif" font-size="13">',
        '<title>The layers of the engine: an arrow points to a layer that is used</title>',
        '<defs><marker id="tip" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="7" '
        'markerHeight="7" orient="auto"><path d="M0 0L8 4L0 8z" fill="#555"/></marker></defs>',
        f'<rect width="{width}" height="{height}" fill="white"/>']
    for name, uses in direct_uses(layers).items():
        x, y = places[name]
        for use in uses:
            to_x, to_y = places[use]
            lines.append(f'<line x1="{x + WIDTH // 2}" y1="{y + HEIGHT}" x2="{to_x + WIDTH // 2}" '
                         f'y2="{to_y}" stroke="#555" marker-end="url(#tip)"/>')
    for name, (folder, _) in layers.items():
        x, y = places[name]
        middle = x + WIDTH // 2
        lines += [
            f'<rect x="{x}" y="{y}" width="{WIDTH}" height="{HEIGHT}" rx="6" fill="#eef3f8" '
            'stroke="#345"/>',
            f'<text x="{middle}" y="{y + 19}" text-anchor="middle" font-weight="bold">{name}</text>',
            f'<text x="{middle}" y="{y + 36}" text-anchor="middle" fill="#345">{folder}</text>']
    return "\n".join([*lines, "</svg>", ""])


def main():
    text = draw(read_layers())
    if sys.argv[1:] != ["--check"]:
        PICTURE.write_text(text, encoding="utf-8")
        return 0
    if PICTURE.exists() and PICTURE.read_text(encoding="utf-8") == text:
        return 0
    print("docs/layers.svg is out of date: run tools/draw_layers.py")
    return 1


if __name__ == "__main__":
    sys.exit(main())
