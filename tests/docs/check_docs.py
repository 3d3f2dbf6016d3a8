"""Checks the documentation: the files and headings that it names exist, functions are
where it says, and its sample sessions match what the program prints.

Usage: check_docs.py SOURCE_ROOT names | samples PROGRAM
"""

import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

# A path in backticks that begins with one of our folders.
PATH = re.compile(r"`((?:bench|board|book|cmake|data|docs|epd|eval|fuzz|packaging|protocol|search|shell"
                  r"|tests|tools|web)/[\w./-]*)`")
LINK = re.compile(r"\]\((([^)#:]*)(?:#([^)]*))?)\)")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)
CODE = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
HOP = re.compile(r"\| `([\w/]+\.(?:cpp|h))` \| `(\w+)` \|")
CALL_IN_FILE = re.compile(r"`(\w+)` in `([\w/]+\.(?:cpp|h))`")
SAMPLE = re.compile(r"^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)

# Made in the build folder.
GENERATED = ["data/book.bk"]

# What differs between runs and machines.
VARYING = [
    (re.compile(r"Time = [\d.]+s"), "Time = #s"),
    (re.compile(r"kNodes/sec = [\d.]+"), "kNodes/sec = #"),
    (re.compile(r" time \d+ "), " time # "),
    (re.compile(r" nps \d+ "), " nps # "),
]


def documents(root):
    return [root / "README.md", root / "CONTRIBUTING.md", *sorted((root / "docs").glob("*.md"))]


def names_something(root, name):
    """A folder, a file, a file without its ending, or something built."""
    return name in GENERATED or (root / name).exists() or any(root.glob(name + ".*"))


def anchor(heading):
    """A heading as the end of a link, as the sites that show Markdown write it."""
    return re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def is_alive(document, name, heading):
    """Whether a link leads to a file and, if it is written so, to one of its headings."""
    target = document.parent / name if name else document
    if not target.exists():
        return False
    if not heading:
        return True
    text = CODE.sub("", target.read_text(encoding="utf-8"))
    return heading in map(anchor, HEADING.findall(text))


def check_names(root):
    complaints = []
    for document in documents(root):
        text = document.read_text(encoding="utf-8")
        where = document.relative_to(root)
        complaints += [f"{where}: no such file: {name}" for name in PATH.findall(text)
                       if not names_something(root, name)]
        complaints += [f"{where}: dead link: {link}" for link, name, heading in LINK.findall(text)
                       if not is_alive(document, name, heading)]
        pairs = HOP.findall(text) + [(file, call) for call, file in CALL_IN_FILE.findall(text)]
        for file, function in pairs:
            source = root / file
            if not source.exists() or function not in source.read_text(encoding="utf-8"):
                complaints.append(f"{where}: {function} is not in {file}")
    return complaints


def normalise(text):
    for pattern, replacement in VARYING:
        text = pattern.sub(replacement, text)
    return [line.rstrip() for line in text.strip("\n").split("\n")]


def matches(expected, printed):
    """Whether the lines agree; a line "..." stands for any number of lines."""
    if not expected:
        return not printed
    if expected[0] == "...":
        return any(matches(expected[1:], printed[i:]) for i in range(len(printed) + 1))
    return bool(printed) and printed[0] == expected[0] and matches(expected[1:], printed[1:])


def run_sample(root, program, command):
    """The output of the program for a "$ mirvo ..." line."""
    words = shlex.split(command)
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "data").symlink_to(root / "data")
        result = subprocess.run([program, *words[1:]], cwd=folder, stdin=subprocess.DEVNULL,
                                capture_output=True, text=True, timeout=120, check=False)
    return result.stdout


def check_samples(root, program):
    complaints, checked = [], 0
    for document in documents(root):
        for block in SAMPLE.findall(document.read_text(encoding="utf-8")):
            first, _, expected = block.partition("\n")
            if not first.startswith("$ mirvo"):
                continue
            checked += 1
            printed = run_sample(root, program, first[2:])
            if not matches(normalise(expected), normalise(printed)):
                complaints.append(f"{document.name}: {first} prints\n{printed}")
    print(f"{checked} samples checked")
    return complaints if checked else ["no sample found"]


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    if sys.argv[2] == "names":
        complaints = check_names(root)
    else:
        complaints = check_samples(root, pathlib.Path(sys.argv[3]).resolve())
    print(*complaints, sep="\n")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
