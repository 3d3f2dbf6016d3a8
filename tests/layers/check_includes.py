"""Checks that every include points downwards and stays in the tree, that there is no
include cycle, and that system headers are where they belong.

Usage: check_includes.py SOURCE_ROOT   (or --self-test)
"""

import fnmatch
import pathlib
import re
import sys

import layer_table

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def check_project_include(path, layer, target, exists):
    """Complaint about one #include "target" of `path`, or None."""
    if not exists(target):
        return f"{path}: no such file from the source root: {target}"
    other = layer_table.layer_of(target)
    if other is None:
        return f"{path}: {target} belongs to no layer"
    if not layer_table.may_include(layer, other):
        return f"{path}: layer {layer} includes {target} of layer {other}"
    return None


def check_system_include(path, target):
    """Complaint about one #include <target> of `path`, or None."""
    if target in layer_table.UNWANTED_HEADERS:
        return f"{path}: <{target}> is not used in the engine"
    owners = [owner for owner, headers in layer_table.PLATFORM_HEADERS.items()
              if any(fnmatch.fnmatch(target, h) for h in headers)]
    if owners and not any(fnmatch.fnmatch(path, owner) for owner in owners):
        return f"{path}: <{target}> belongs in {' or '.join(owners)} only"
    return None


def check_file(path, text, exists):
    """All complaints about one engine source."""
    layer = layer_table.layer_of(path)
    if layer is None:
        return [f"{path}: belongs to no layer"]
    complaints = []
    for bracket, target in INCLUDE.findall(text):
        if bracket == '"':
            complaints.append(check_project_include(path, layer, target, exists))
        else:
            complaints.append(check_system_include(path, target))
    if re.search(r"^\s*using\s+namespace\b", text, re.MULTILINE):
        complaints.append(f"{path}: using namespace")
    if path.endswith(".h") and not re.search(r"^#pragma once$", text, re.MULTILINE):
        complaints.append(f"{path}: no #pragma once")
    return [complaint for complaint in complaints if complaint]


def unit_of(path):
    """A header and the source of the same name are one unit."""
    return path.rpartition(".")[0]


def include_graph(texts):
    """{unit: units it includes}, from {path: text}."""
    graph = {unit_of(path): set() for path in texts}
    for path, text in texts.items():
        targets = {unit_of(target) for bracket, target in INCLUDE.findall(text) if bracket == '"'}
        graph[unit_of(path)] |= targets & graph.keys() - {unit_of(path)}
    return graph


def reachable(graph, start):
    """Units that `start` includes, directly or through others."""
    seen, waiting = set(), [start]
    while waiting:
        for unit in graph[waiting.pop()] - seen:
            seen.add(unit)
            waiting.append(unit)
    return seen


def include_cycles(texts):
    """Groups of units that include each other, directly or through others."""
    graph = include_graph(texts)
    below = {unit: reachable(graph, unit) for unit in graph}
    groups = {frozenset(other for other in below[unit] if unit in below[other]) for unit in graph}
    return sorted(sorted(group) for group in groups if group)


def check_cycles(texts, known):
    """Complaints about groups that are no part of a known one."""
    return [f"{', '.join(group)}: include each other" for group in include_cycles(texts)
            if not any(set(group) <= set(exception) for exception in known)]


def check_tree(root):
    root = pathlib.Path(root)
    complaints = []
    paths = layer_table.sources(root, {".h", ".cpp"})
    texts = {path: (root / path).read_text(encoding="utf-8") for path in paths}
    for path, text in texts.items():
        complaints += check_file(path, text, lambda target: (root / target).is_file())
    return paths, complaints + check_cycles(texts, layer_table.KNOWN_CYCLES)


# What the check must and must not complain about: path, text, complaints.
SELF_TEST = [
    ("search/root.cpp", '#include "eval/evaluate.h"\n#include <cstdint>\n', 0),
    ("eval/pawns.cpp", '#include "search/root.h"\n', 1),
    ("eval/pawns.cpp", '#include "search/hash/hash_table.h"\n', 0),
    ("board/board.cpp", '#include "shell/config/config.h"\n', 1),
    ("board/board.cpp", '#include "shell/base/output.h"\n', 0),
    ("search/report.cpp", '#include "shell/base/protocol_mode.h"\n', 0),
    ("search/report.cpp", '#include "protocol/uci.h"\n', 1),
    ("protocol/uci.cpp", '#include "epd/epd_runner.h"\n', 1),
    ("epd/epd_runner.cpp", '#include "protocol/uci.h"\n', 1),
    ("shell/main.cpp", '#include "missing.h"\n', 1),
    ("shell/base/clock_posix.cpp", "#include <unistd.h>\n", 0),
    ("shell/base/clock.cpp", "#include <unistd.h>\n", 1),
    ("protocol/input_posix.cpp", "#include <windows.h>\n", 1),
    ("board/board.cpp", "#include <iostream>\n", 1),
    ("board/board.h", "#include <cstdint>\n", 1),
    ("board/board.h", "#pragma once\nusing namespace mirvo;\n", 1),
    ("elsewhere/board.cpp", "", 1),
]


# What the check of cycles must find: {path: text}, known cycles, complaints.
CYCLE_SELF_TEST = [
    ({"a/x.h": "", "a/x.cpp": '#include "a/x.h"\n#include "a/y.h"\n', "a/y.h": ""}, [], 0),
    ({"a/x.h": "", "a/x.cpp": '#include "a/y.h"\n', "a/y.h": "",
      "a/y.cpp": '#include "a/x.h"\n'}, [], 1),
    ({"a/x.h": '#include "a/y.h"\n', "a/y.h": '#include "a/z.h"\n',
      "a/z.h": '#include "a/x.h"\n', "a/w.h": '#include "a/x.h"\n'}, [], 1),
    ({"a/x.h": '#include "a/y.h"\n', "a/y.h": '#include "a/x.h"\n'}, [{"a/x", "a/y"}], 0),
    ({"a/x.h": '#include "a/y.h"\n', "a/y.h": '#include "a/z.h"\n',
      "a/z.h": '#include "a/x.h"\n'}, [{"a/x", "a/y"}], 1),
]


def self_test():
    failures = 0
    for texts, known, expected in CYCLE_SELF_TEST:
        found = check_cycles(texts, known)
        if len(found) != expected:
            failures += 1
            print(f"{texts}: expected {expected} cycles, got {found}")
    for path, text, expected in SELF_TEST:
        found = check_file(path, text, lambda target: target != "missing.h")
        if len(found) != expected:
            failures += 1
            print(f"{path} with {text!r}: expected {expected} complaints, got {found}")
    return failures


def main():
    if sys.argv[1:] == ["--self-test"]:
        return 1 if self_test() else 0
    paths, complaints = check_tree(sys.argv[1])
    for complaint in complaints:
        print(complaint)
    print(f"{len(paths)} files, {len(complaints)} complaints")
    return 1 if complaints or not paths else 0


if __name__ == "__main__":
    sys.exit(main())
