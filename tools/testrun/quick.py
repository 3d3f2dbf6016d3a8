"""Which tests can notice what was changed since the last quick run that passed:
the unit tests of the folders that changed, and those that tell about the whole
program in a few seconds.

The folder of a file decides. tests/FOLDER belongs to FOLDER: its GoogleTest
programs and the tests named FOLDER.something. What takes long, plays games or
uses the clock is left to the whole run.
"""

import hashlib
import json
import pathlib
import re
import shutil
import subprocess

STATE = "build/quick-state.json"

# Folders of the engine, whose unit tests are GoogleTest programs.
LAYERS = ["shell", "board", "eval", "search", "protocol", "book", "epd"]

# Always built and run.
PROGRAMS = ["shell/mirvo", "opening_book"]
SIGNATURE = "tests/search/signature_test"
ALWAYS = re.compile(r"^(transcript\.(?!runner)|layers\.(includes_point|sources_are))")

# Programs that look at tables of several layers.
ALSO = {"board": ["tests/shell/startup_tables_test"], "eval": ["tests/shell/startup_tables_test"],
        "search": ["tests/shell/startup_tables_test"]}

# Tests by name for files that no layer owns; the first match counts.
BY_FILE = [
    (r"(README|CONTRIBUTING|CHANGELOG)\.md$|docs/", r"^docs\.(names|samples)"),
    (r"(run|play)\.sh$|tools/(packages|build_engine)\.sh$|packaging/|tests/docs/", r"^docs\."),
    (r"tools/|test\.sh$|\.ci/|tests/tools/", r"^(tools\.|docs\.names)"),
    (r"tests/transcripts/[^/]*\.py$", r"^transcript\.runner$"),
    (r"tests/layers/", r"^layers\."),
    (r"bench/|tests/speed/", r"^speed\."),
    (r"tests/(\w+)/", r"^\1\."),
    (r"data/", r"^book\."),
]

# Files that decide how everything is built, or that tests of all layers use.
EVERYTHING = re.compile(r"(.*/)?CMakeLists\.txt$|CMakePresets\.json$|cmake/|tests/support/")

UNWANTED_LABELS = {"slow", "game", "process", "speed", "clock"}
# Tests that take longer by their COST property are left to the whole run. What
# they took here tells more about what else the machine did.
LONGEST = 20.0  # seconds


def list_files(root):
    """Files of the project: as git says, where there is git and a clone."""
    if shutil.which("git"):
        listed = subprocess.run(["git", "-c", "safe.directory=*", "ls-files", "-coz",
                                 "--exclude-standard"], cwd=root, capture_output=True, check=False)
        if listed.returncode == 0:
            names = listed.stdout.decode("utf-8", "surrogateescape").split("\0")
            return [name for name in names if name and (root / name).is_file()]
    return [path.relative_to(root).as_posix() for path in root.rglob("*")
            if path.is_file() and path.relative_to(root).parts[0] not in ("build", ".git")]


def read_state(root):
    """What each file held in the last quick run that passed; None before it."""
    try:
        return json.loads((root / STATE).read_text(encoding="utf-8"))
    except (OSError, ValueError):
        return None


def present_state(root):
    return {name: hashlib.sha1((root / name).read_bytes()).hexdigest()
            for name in list_files(root)}


def write_state(root, state):
    (root / STATE).parent.mkdir(exist_ok=True)
    (root / STATE).write_text(json.dumps(state), encoding="utf-8")


def changed_files(old, new):
    return sorted(name for name in old.keys() | new.keys() if old.get(name) != new.get(name))


def layers_of(changed):
    """Layers whose unit tests are wanted; all of them for a first run (None)."""
    if changed is None or any(EVERYTHING.match(name) for name in changed):
        return list(LAYERS)
    found = {name.removeprefix("tests/").split("/")[0] for name in changed
             if not name.endswith(".md")}
    return [layer for layer in LAYERS if layer in found]


def name_pattern(changed, layers):
    """Tests wanted by name, as a regular expression."""
    parts = [ALWAYS.pattern] + [f"^{layer}\\." for layer in layers]
    names = changed or []
    for name in names:
        for file, test in BY_FILE:
            match = re.match(file, name)
            if match:
                parts.append(match.expand(test.replace(r"\.", r"\\.")))
                break
    if any(name.endswith(".h") for name in names):
        parts.append(r"^layers\.headers")
    if any(name.endswith((".h", ".cpp")) for name in names):
        parts.append(r"^layers\.cppcheck")
    return re.compile("|".join(f"(?:{part})" for part in parts))


def programs_of(layers, programs):
    """Those of the test programs (paths in the build folder) that are wanted."""
    wanted = {SIGNATURE}.union(*(ALSO.get(layer, []) for layer in layers))
    return [program for program in programs
            if program in wanted or any(program.startswith(f"tests/{layer}/") for layer in layers)]


def test_programs(build):
    """Programs below tests/ that the build folder's Ninja file knows."""
    listed = subprocess.run(["ninja", "-C", str(build), "-t", "targets", "all"],
                            capture_output=True, encoding="utf-8", check=False).stdout
    found = re.findall(r"^(tests/[\w./-]+): CXX_EXECUTABLE_LINKER", listed, re.MULTILINE)
    return sorted(set(found))


class Choice:
    """What a quick run builds and which tests it runs."""

    def __init__(self, changed, programs, build):
        layers = layers_of(changed)
        self.pattern = name_pattern(changed, layers)
        self.programs = programs_of(layers, programs)
        self.targets = [*PROGRAMS, *self.programs]
        self.folder = pathlib.Path(build)
        self.left_out = []

    def is_wanted(self, test):
        program = next((word for word in test.command if "/tests/" in word), "")
        return (any(program == str(self.folder / name) for name in self.programs)
                or self.pattern.search(test.name) is not None)

    def select(self, tests):
        """Names of the tests to be run."""
        chosen = []
        for name, test in tests.items():
            if not self.is_wanted(test):
                continue
            if test.labels & UNWANTED_LABELS or test.cost > LONGEST:
                self.left_out.append(name)
            else:
                chosen.append(name)
        return chosen
