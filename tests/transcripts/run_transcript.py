"""Runs one transcript: starts the program in a new folder as a case file says and
compares what it prints and logs with what the file expects.

Usage: run_transcript.py [options] PROGRAM CASE...
Exit status: 0 passed, 1 failed, 77 skipped, 2 wrong usage or case file.
"""

import argparse
import difflib
import os
import pathlib
import re
import shlex
import shutil
import sys
import tempfile

from case_file import NO_NEWLINE, Block, CaseError, as_entry, read_case
from normalise import CONSOLE_ONLY, normalise
from session import Session, SessionFault

LOG_NAME = "mirvo_0.2.7_d_log.txt"
SOURCE_ROOT = pathlib.Path(__file__).resolve().parents[2]
PASSED, FAILED, WRONG, SKIPPED = 0, 1, 2, 77


def as_bytes(text):
    return text.encode("utf-8", "surrogateescape")


def as_text(data):
    return data.decode("utf-8", "surrogateescape")


def escaped_bytes(text):
    """The bytes of a text with escapes such as \\n and \\xef."""
    return as_bytes(text).decode("unicode_escape").encode("latin-1")


def prepare(folder, steps):
    """Makes the files that the program finds."""
    for step in steps:
        name, _, rest = step.argument.partition(" ")
        target = folder / name
        if step.verb == "file":
            target.write_bytes(as_bytes(step.block.text()))
        elif step.verb == "bytes":
            target.write_bytes(escaped_bytes(rest))
        elif step.verb == "folder":
            target.mkdir()
        elif step.verb == "link":
            target.symlink_to(rest)
        elif step.verb == "copy":
            shutil.copyfile(SOURCE_ROOT / rest, target)


def play(session, steps):
    for step in steps:
        if step.verb == "send":
            session.send(as_bytes(step.argument) + b"\n")
        elif step.verb == "send-bytes":
            session.send(escaped_bytes(step.argument))
        elif step.verb == "expect":
            session.expect(step.argument)
        elif step.verb == "close":
            session.close_input()
        elif step.verb == "close-output":
            session.close_output()


def difference(title, block, actual):
    """Where `actual` differs from `block`, or an empty text."""
    if re.fullmatch(block.pattern(), actual):
        return ""
    expected = [{"|": "", "~": "~"}.get(kind, "...") + line for kind, line in block.entries]
    if not block.ends_with_newline:
        expected.append(NO_NEWLINE)
    found = actual.split("\n")
    found = found[:-1] if found[-1] == "" else [*found, NO_NEWLINE]
    lines = difflib.unified_diff(expected, found, "expected " + title, "actual " + title,
                                 lineterm="", n=4)
    return "\n".join(lines) + "\n"


def check_log(folder, run, output):
    """Compares the log with its expectation; returns faults and contents."""
    path = folder / LOG_NAME
    if run.log == "any":
        return "", ""
    if run.log == "none":
        return ("the log file exists\n" if path.is_file() else ""), ""
    if not path.is_file():
        return "there is no log file\n", ""
    log = normalise(as_text(path.read_bytes()), run.normalise, run.once)
    if isinstance(run.log, Block):
        return difference("log", run.log, log), log
    same = output.replace(CONSOLE_ONLY, "")
    if log == same:
        return "", log
    lines = difflib.unified_diff(same.split("\n"), log.split("\n"), "output", "log", lineterm="")
    return "\n".join(lines) + "\n", log


def check_files(folder, run):
    for step in run.checks:
        name, _, rest = step.argument.partition(" ")
        path = folder / name
        if step.verb == "no-file":
            if path.exists():
                yield f"{name} exists\n"
        elif not path.is_file():
            yield f"there is no {name}\n"
        elif step.verb == "expect-file":
            yield difference(name, step.block, normalise(as_text(path.read_bytes())))
        elif path.read_bytes() != bytes.fromhex(rest):
            yield f"{name} holds {path.read_bytes().hex()}\n"


def run_once(options, folder, run, time_limit):
    """One start of the program. Returns (faults, output, log)."""
    prepare(folder, run.setup)
    command = [*options.prefix, options.program, *run.arguments]
    session = Session(command, folder, time_limit)
    faults = []
    try:
        play(session, run.script)
        status = session.finish()
        if status != run.status:
            faults.append(f"exit status {status} instead of {run.status}\n")
    except SessionFault as fault:
        faults.append(f"{fault}\n")
    finally:
        session.close()
    output = normalise(as_text(session.text), run.normalise, run.once)
    faults.append(difference("output", run.output, output))
    log_fault, log = check_log(folder, run, output)
    faults.append(log_fault)
    faults.extend(check_files(folder, run))
    # A prefix command may print on standard error; the program itself never does.
    errors = as_text(session.errors)
    if errors and (not options.prefix or any(faults)):
        faults.append(f"standard error:\n{errors}")
    return [fault for fault in faults if fault], output, log


def rewrite(case, results):
    """Replaces the expectations that differ in the case file by the actual output."""
    lines = case.path.read_text(encoding="utf-8", errors="surrogateescape").split("\n")
    replaced = []
    for run, (_, output, log) in zip(case.runs, results):
        for block, actual in ((run.output, output), (run.log, log)):
            if isinstance(block, Block) and not re.fullmatch(block.pattern(), actual):
                replaced.append((block, actual))
    for block, actual in sorted(replaced, key=lambda pair: -pair[0].first_line):
        parts = actual.split("\n")
        entries = [as_entry(line) for line in (parts[:-1] if parts[-1] == "" else parts)]
        if parts[-1] != "":
            entries.append(NO_NEWLINE)
        lines[block.first_line:block.end_line] = entries
    case.path.write_text("\n".join(lines), encoding="utf-8", errors="surrogateescape")


def run_case(options, path):
    case = read_case(path)
    if case.platform not in ("any", options.platform):
        print(f"SKIP: {path.name} is about {case.platform} systems")
        return SKIPPED
    results = []
    with tempfile.TemporaryDirectory(prefix="mirvo-transcript-") as folder:
        for run in case.runs:
            results.append(run_once(options, pathlib.Path(folder), run,
                                    case.time_limit * options.slow))
    if options.update:
        rewrite(case, results)
    if not any(faults for faults, _, _ in results):
        return PASSED
    for number, (faults, _, _) in enumerate(results, 1):
        for fault in faults:
            print(f"{path.name}, run {number}: {fault}", end="")
    return FAILED


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--prefix", type=shlex.split, default=[],
                        help="command to put in front of the program (wine, a driver)")
    parser.add_argument("--platform", default="windows" if os.name == "nt" else "posix")
    parser.add_argument("--slow", type=float, default=1.0, help="factor on every time limit")
    parser.add_argument("--update", action="store_true",
                        help="put what was printed into the case file")
    parser.add_argument("program")
    parser.add_argument("cases", nargs="+", type=pathlib.Path)
    options = parser.parse_args(arguments)
    options.program = os.path.abspath(options.program)
    try:
        statuses = [run_case(options, path) for path in options.cases]
    except CaseError as error:
        print(error)
        return WRONG
    return FAILED if FAILED in statuses else SKIPPED if SKIPPED in statuses else PASSED


if __name__ == "__main__":
    sys.exit(main())
