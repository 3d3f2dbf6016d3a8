"""Changes single lines of the engine and reports which test notices.

    tools/mutate.py --layer eval --count 20 --seed 3
    tools/mutate.py --count 120            all layers, in proportion to their size
    tools/mutate.py --file board/fen.cpp --list
    tools/mutate.py --again                the survivors of earlier runs again

Works on a copy of the tracked files in build/mutate/source, never on the tree
itself. Every mutant is built and tested alone: first the test programs of its own
layer, the one with the file's name before the others, then those of the layers
above, then sessions of the whole program. The first failure ends it. A program
that takes several times its usual processor time counts as a failure. The result
of each mutant is also stored in build/mutate/results.jsonl.
"""

import argparse
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path += [str(ROOT / "tools"), str(ROOT / "tests/layers")]

import layer_table
from mutations import Mutation, mutations_of

WORK = ROOT / "build/mutate"
SOURCE = WORK / "source"
BUILD = WORK / "build"
RESULTS = WORK / "results.jsonl"
LAYERS = list(layer_table.USES)

# Lowest layer first; tests/shell has programs of three layers.
TEST_FOLDERS = {
    "base_test": "base", "config_test": "config", "shell_test": "shell", "hash_table_test": "hash",
}
# Sessions of the program; games, deep counts and checks of texts are left out.
SESSIONS = ["-L", "^(transcript|process)$"]

CAUGHT, NO_BUILD, SURVIVED = "caught", "did not compile", "SURVIVED"
# Limits for mutants that print or allocate endlessly.
MOST_BYTES_WRITTEN = 200 << 20
MOST_MEMORY = 12 << 30


def run(command, cpu_seconds, wall_seconds, **options):
    """(status, output, processor seconds); status None when time ran out."""

    def limit():
        # A background job of a shell ignores interrupts, but tests send some.
        signal.signal(signal.SIGINT, signal.SIG_DFL)
        resource.setrlimit(resource.RLIMIT_CPU, (cpu_seconds, cpu_seconds + 5))
        resource.setrlimit(resource.RLIMIT_FSIZE, (MOST_BYTES_WRITTEN, MOST_BYTES_WRITTEN))
        resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with open(WORK / "output.txt", "w+b") as output:
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
            preexec_fn=limit, start_new_session=True, **options)
        try:
            status = process.wait(wall_seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, 9)
            process.wait()
            status = None
        output.seek(0)
        text = output.read(1 << 20).decode(errors="replace")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    if status in (-24, -9):  # out of processor time
        status = None
    return status, text, used


def copy_tree():
    """Updates build/mutate/source; unchanged files keep their times."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\0")
    names = {name for name in listed if name and (ROOT / name).is_file()}
    for name in names:
        target = SOURCE / name
        data = (ROOT / name).read_bytes()
        if not target.is_file() or target.read_bytes() != data:
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)
            os.utime(target)
    for path in SOURCE.rglob("*"):
        if path.is_file() and path.relative_to(SOURCE).as_posix() not in names:
            path.unlink()


def build(target, jobs):
    command = ["ninja", "-C", str(BUILD), f"-j{jobs}", *target]
    return run(command, 600, 1200)


class Program:
    """One GoogleTest program: its target, its layer, its usual time."""

    def __init__(self, path):
        self.target = pathlib.Path(path).name
        self.path = path
        folder = pathlib.Path(path).parent.name
        self.layer = TEST_FOLDERS.get(self.target, folder)
        self.seconds = 0.0

    def check(self):
        """None when every test passes, else the name of the first failure."""
        seconds = int(20 + 6 * self.seconds)
        environment = dict(os.environ, TMPDIR=str(WORK / "tmp"), GTEST_COLOR="no")
        status, text, used = run(
            [self.path, "--gtest_brief=1", "--gtest_fail_fast"], seconds, 6 * seconds,
            cwd=WORK / "tmp", env=environment)
        self.used = used
        if status == 0:
            return None
        failed = re.search(r"\[  FAILED  \] ([\w./]+)", text)
        if failed and status is not None:
            return failed.group(1)
        return f"{self.target} ({'endless' if status is None else 'crash'})"


def programs():
    """The GoogleTest programs of the build, according to CTest."""
    shown = subprocess.run(
        ["ctest", "--test-dir", str(BUILD), "--show-only=json-v1"],
        check=True, capture_output=True, text=True).stdout
    paths, slow = set(), set()
    for test in json.loads(shown)["tests"]:
        command = test.get("command") or [""]
        if "--gtest_shuffle" in command:
            labels = [p["value"] for p in test["properties"] if p["name"] == "LABELS"]
            (slow if labels and "slow" in labels[0] else paths).add(command[0])
    return [Program(path) for path in sorted(paths - slow)]


def prepare(jobs):
    """Builds the copy, which must pass its tests; returns the test programs."""
    subprocess.run(
        ["cmake", "-S", SOURCE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Mutate",
         "-DCMAKE_CXX_FLAGS_MUTATE=-O1", "-DMIRVO_WERROR=OFF",
         "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        + (["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"] if shutil.which("ld.lld") else []),
        check=True, stdout=subprocess.DEVNULL)
    status, text, _ = build([], jobs)
    if status != 0:
        sys.exit(text[-3000:] + "\nThe tree itself does not build.")
    found = programs()
    for program in found:
        failure = program.check()
        program.seconds = program.used
        if failure:
            sys.exit(f"Without any change {failure} fails already.")
    return found


def in_order(found, mutant, own_layer):
    """The programs to run for a mutant, the most likely to fail first."""
    layer = layer_table.layer_of(mutant.file)
    stem = pathlib.Path(mutant.file).stem
    above = [] if own_layer else [other for other in LAYERS if layer in layer_table.USES[other]]

    def rank(program):
        return (program.layer != layer, stem not in program.target,
                LAYERS.index(program.layer), program.seconds)

    return sorted((p for p in found if p.layer == layer or p.layer in above), key=rank)


class Mutant:
    def __init__(self, file, mutation):
        self.file = file
        self.mutation = mutation

    def apply(self):
        path = SOURCE / self.file
        self.original = path.read_text()
        lines = self.original.split("\n")
        lines[self.mutation.line - 1] = self.mutation.new_line
        path.write_text("\n".join(lines))

    def undo(self):
        (SOURCE / self.file).write_text(self.original)

    def verdict(self, found, jobs, own_layer):
        """(verdict, the test that failed)."""
        self.apply()
        try:
            for program in in_order(found, self, own_layer):
                verdict = self.built([program.target], jobs)
                if verdict:
                    return verdict
                failure = program.check()
                if failure:
                    return CAUGHT, failure
            if own_layer:
                return SURVIVED, ""
            return self.built([], jobs) or self.sessions()
        finally:
            self.undo()

    def built(self, targets, jobs):
        status, text, _ = build(targets, jobs)
        if status == 0:
            return None
        if "error:" in text and "FAILED: " in text:
            return NO_BUILD, ""
        # The build makes the book with the engine itself.
        failed = re.search(r"FAILED: (\S+)", text)
        return CAUGHT, f"the build ({failed.group(1) if failed else 'endless'})"

    def sessions(self):
        status, text, _ = run(
            ["ctest", "--test-dir", str(BUILD), *SESSIONS, "--stop-on-failure", "--timeout", "100"],
            100, 1800, env=dict(os.environ, TMPDIR=str(WORK / "tmp")))
        if status == 0:
            return SURVIVED, ""
        failed = re.search(r"Test +#\d+: (\S+) \.*\**(?:Failed|Timeout|Exception)", text)
        return CAUGHT, failed.group(1) if failed else "sessions"


def candidates(layers, files):
    """{layer: [(file, line, mutations of that line)]}."""
    result = {layer: [] for layer in layers}
    for file in layer_table.sources(SOURCE, {".cpp", ".h"}):
        layer = layer_table.layer_of(file)
        if layer not in result or (files and file not in files) or "_windows" in file:
            continue
        by_line = {}
        for mutation in mutations_of((SOURCE / file).read_text()):
            by_line.setdefault(mutation.line, []).append(mutation)
        result[layer] += [(file, line, changes) for line, changes in by_line.items()]
    return result


def is_row(changes):
    """Whether lines have only numbers, like the rows of a table."""
    return re.fullmatch(r"[\s\d{},.xA-FULuflf+-]*", changes[0].old_line) is not None


def choose(layers, files, count, least, seed):
    """`count` mutants on random lines, at most one per line, at least `least` per
    layer."""
    generator = random.Random(seed)
    found = candidates(layers, files)
    weights = {layer: sum(0.2 if is_row(c) else 1 for _, _, c in lines)
               for layer, lines in found.items()}
    total = sum(weights.values())
    chosen = []
    for layer, lines in found.items():
        if not lines:
            continue
        share = max(least, round(count * weights[layer] / total))
        # A weighted sample without repetition.
        keyed = sorted(lines, key=lambda item: generator.random() ** (5 if is_row(item[2]) else 1),
                       reverse=True)
        for file, _, changes in keyed[:share]:
            kind = generator.choice(sorted({change.kind for change in changes}))
            change = generator.choice([c for c in changes if c.kind == kind])
            chosen.append(Mutant(file, change))
    generator.shuffle(chosen)  # so that an interrupted run covers all layers
    return chosen


def recorded():
    """{(file, old line, new line): the last record of that mutant}."""
    lines = RESULTS.read_text().splitlines() if RESULTS.exists() else []
    records = [json.loads(line) for line in lines]
    return {(record["file"], record["old"], record["new"]): record for record in records}


def survivors():
    """The mutants that survived when last tried, if their lines still exist."""
    result = []
    for (file, old, new), record in recorded().items():
        lines = (SOURCE / file).read_text().split("\n") if (SOURCE / file).is_file() else []
        places = [n for n, text in enumerate(lines, 1) if text == old]
        if record["verdict"] == SURVIVED and places:
            line = min(places, key=lambda n: abs(n - record["line"]))
            result.append(Mutant(file, Mutation(line, 0, len(old), new, record["kind"], old)))
    return result


def table():
    """A row per layer: its mutants, and how many were caught at once, later or never.
    Those that did not compile are left out."""
    verdicts = {}
    for line in RESULTS.read_text().splitlines():
        record = json.loads(line)
        key = record["layer"], record["file"], record["old"], record["new"]
        verdicts.setdefault(key, []).append(record["verdict"])
    lines = ["| Layer | Mutants | Caught | Caught later | Survive |", "|---|---:|---:|---:|---:|"]
    total = [0] * 4
    for layer in LAYERS:
        met = [v for key, v in verdicts.items() if key[0] == layer and v[-1] != NO_BUILD]
        counts = [len(met), sum(v[0] == CAUGHT for v in met),
                  sum(v[0] != CAUGHT and v[-1] == CAUGHT for v in met),
                  sum(v[-1] == SURVIVED for v in met)]
        total = [a + b for a, b in zip(total, counts)]
        lines.append(f"| {layer} | " + " | ".join(map(str, counts)) + " |")
    lines.append("| all | " + " | ".join(map(str, total)) + " |")
    return "\n".join(lines)


def describe(mutant):
    mutation = mutant.mutation
    return (f"{mutant.file}:{mutation.line}  {mutation.kind}\n"
            f"  - {mutation.old_line.strip()}\n  + {mutation.new_line.strip()}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--layer", action="append", choices=LAYERS)
    parser.add_argument("--file", action="append", help="path from the source root")
    parser.add_argument("--line", type=int, action="append")
    parser.add_argument("--count", type=int, default=20)
    parser.add_argument("--least", type=int, default=1, help="mutants in every layer")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--again", action="store_true", help="survivors of earlier runs")
    parser.add_argument("--list", action="store_true", help="choose, but run nothing")
    parser.add_argument("--own-layer", action="store_true", help="with this layer's programs only")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--table", action="store_true", help="sum all runs up, run nothing")
    options = parser.parse_args()
    if options.table:
        print(table())
        return

    (WORK / "tmp").mkdir(parents=True, exist_ok=True)
    copy_tree()
    if options.again:
        mutants = survivors()
    else:
        known = recorded()
        mutants = [m for m in choose(options.layer or LAYERS, options.file, options.count,
                                     options.least, options.seed)
                   if (m.file, m.mutation.old_line, m.mutation.new_line) not in known]
    mutants = [m for m in mutants
               if (not options.file or m.file in options.file)
               and (not options.line or m.mutation.line in options.line)]
    if options.list:
        print("\n".join(describe(mutant) for mutant in mutants))
        return

    os.nice(10)
    found = prepare(options.jobs)
    counts = {CAUGHT: 0, NO_BUILD: 0, SURVIVED: 0}
    for mutant in mutants:
        started = time.monotonic()
        verdict, test = mutant.verdict(found, options.jobs, options.own_layer)
        counts[verdict] += 1
        seconds = round(time.monotonic() - started)
        print(f"{describe(mutant)}\n  {verdict} {test} ({seconds} s)", flush=True)
        record = {"layer": layer_table.layer_of(mutant.file), "file": mutant.file,
                  "line": mutant.mutation.line, "kind": mutant.mutation.kind,
                  "old": mutant.mutation.old_line, "new": mutant.mutation.new_line,
                  "verdict": verdict, "test": test, "seconds": seconds}
        with open(RESULTS, "a") as results:
            results.write(json.dumps(record) + "\n")
    print(", ".join(f"{count} {verdict}" for verdict, count in counts.items()))
    build([], options.jobs)


if __name__ == "__main__":
    main()
