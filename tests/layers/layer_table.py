"""The layers of the source tree: their files, and which layers each may use.

`FILES` maps path patterns to layers, first match wins; `USES` names the layers
whose headers a layer may include besides its own.
"""

import fnmatch
import pathlib

FILES = [
    ("shell/base/*", "base"),
    ("board/*", "board"),
    ("shell/config/*", "config"),
    ("search/hash/*", "hash"),
    ("book/*", "book"),
    ("eval/*", "eval"),
    ("search/*", "search"),
    ("epd/*", "epd"),
    ("protocol/*", "protocol"),
    ("shell/*", "shell"),
]

USES = {
    "base": [],
    "board": ["base"],
    "config": ["board", "base"],
    "hash": ["config", "board", "base"],
    "book": ["board", "base"],
    "eval": ["hash", "config", "board", "base"],
    "search": ["eval", "book", "hash", "config", "board", "base"],
    "epd": ["search", "eval", "book", "hash", "config", "board", "base"],
    "protocol": ["search", "eval", "book", "hash", "config", "board", "base"],
    "shell": ["protocol", "epd", "search", "eval", "book", "hash", "config", "board", "base"],
}

# Headers of the operating system are only for the files written for it.
PLATFORM_HEADERS = {
    "*_windows*.cpp": ["windows.h", "io.h", "conio.h", "fcntl.h", "process.h"],
    "*_posix*.cpp": ["unistd.h", "poll.h", "time.h", "signal.h", "fcntl.h", "sched.h", "errno.h",
                     "sys/*"],
    "*_web*.cpp": ["unistd.h"],
}
UNWANTED_HEADERS = ["iostream", "sstream", "fstream", "regex", "locale"]

# Units (a header and its source) that still include each other. New groups are not
# allowed.
KNOWN_CYCLES = []

FOLDERS = ["board", "book", "epd", "eval", "protocol", "search", "shell"]


def layer_of(path):
    """The layer that owns a path relative to the source root, or None."""
    for pattern, layer in FILES:
        if fnmatch.fnmatch(path, pattern):
            return layer
    return None


def may_include(layer, other):
    return other == layer or other in USES[layer]


def sources(root, suffixes):
    """Every engine source under `root` with one of the suffixes, sorted."""
    root = pathlib.Path(root)
    found = []
    for folder in FOLDERS:
        found += [p for p in (root / folder).rglob("*") if p.suffix in suffixes]
    return sorted(p.relative_to(root).as_posix() for p in found)
