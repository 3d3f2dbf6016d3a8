"""What CTest and GoogleTest write about a run, as plain records.

CTest knows one test for each program of GoogleTest; the single cases are read
from the file that such a program writes (GTEST_OUTPUT).
"""

import dataclasses
import json
import pathlib
import re
import shlex
import xml.etree.ElementTree as ElementTree

PASSED, FAILED, SKIPPED = "passed", "failed", "skipped"

# What a test that measures prints is shown even when it passes.
SHOWN = ["speed.instructions_per_node"]

# How a script, a GoogleTest case and a part of a unittest say why they skip.
SKIP_LINE = re.compile(r"^SKIP: (.*)$", re.MULTILINE)
GTEST_REASON = re.compile(r": Skipped\n(.*)$", re.MULTILINE)
SKIPPED_PART = re.compile(r"^(\w+) \(.*\)(?:\n.*)? \.\.\. skipped [\"'](.*)[\"']$", re.MULTILINE)

NO_REASON = "no reason given"


@dataclasses.dataclass
class Test:
    """A test as CTest knows it."""
    name: str
    command: list = dataclasses.field(default_factory=list)
    labels: frozenset = frozenset()
    cost: float = 0.0  # seconds, as CMake's files say
    cases_file: pathlib.Path | None = None  # GoogleTest's own results
    numbers: list = dataclasses.field(default_factory=list)  # CTest's, of all of that name


@dataclasses.dataclass
class Result:
    """One test or one GoogleTest case of one stage."""
    stage: str
    name: str
    outcome: str
    test: str = ""     # CTest's name of it, or of the program it is in
    seconds: float = 0.0
    reason: str = ""   # of a skipped one
    printed: str = ""  # of a failed one
    again: str = ""    # command that repeats it alone


@dataclasses.dataclass
class Outcome:
    """What one stage's tests came to."""
    results: list
    durations: list  # (seconds, name) of each test of CTest's
    notes: list      # lines to be shown: skipped parts, measured figures
    retried: list = dataclasses.field(default_factory=list)  # names that passed alone


def as_list(value):
    return value if isinstance(value, list) else [value]


def results_path(words):
    """The file that a GoogleTest program is told to write; Wine calls the root
    folder Z:."""
    for word in words:
        match = re.fullmatch(r"(?:GTEST_OUTPUT=|--gtest_output=)xml:(?:Z:)?(.*)", word)
        if match:
            return pathlib.Path(match[1])
    return None


def read_tests(listing):
    """The tests of a listing ("ctest --show-only=json-v1"), by name."""
    tests = {}
    for number, entry in enumerate(json.loads(listing)["tests"], 1):
        properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
        command = entry.get("command", [])
        words = as_list(properties.get("ENVIRONMENT", [])) + command
        test = Test(entry["name"], command, frozenset(as_list(properties.get("LABELS", []))),
                    float(properties.get("COST", 0)), results_path(words))
        tests.setdefault(test.name, test).numbers.append(number)
    return tests


def case_outcome(case):
    """How CTest's record of a test ended."""
    skipped = case.find("skipped")
    if case.get("status") == "run":
        return PASSED
    if case.get("status") == "disabled":
        return SKIPPED
    # A program that is not there is "skipped" to CTest, too.
    if skipped is not None and "SKIP" in skipped.get("message", ""):
        return SKIPPED
    return FAILED


def reason_printed(text):
    match = SKIP_LINE.search(text) or GTEST_REASON.search(text)
    return match[1].strip() if match else NO_REASON


def exactly(name):
    """CMake's regular expression for a name."""
    return "^" + re.sub(r"([][.*+?|()^$\\])", r"\\\1", name) + "$"


def repeat_test(preset, name):
    return shlex.join(["ctest", "--preset", preset, "-R", exactly(name)])


def repeat_case(test, case, seed):
    """The program's command for one case; and for all in the order they had,
    which matters if the case fails because of another one."""
    program = [word for word in test.command if not word.startswith("--gtest_")]
    alone = shlex.join([*program, "--gtest_filter=" + case])
    if not seed:
        return alone
    return (f"{alone}\n  in the same order: "
            + shlex.join([*program, "--gtest_shuffle", "--gtest_random_seed=" + seed]))


def gtest_case(stage, test, element, seed):
    """The record of a case in GoogleTest's file; None for one not run."""
    name = f"{element.get('classname')}.{element.get('name')}"
    result = Result(stage, name, PASSED, test.name, float(element.get("time", 0)))
    if element.find("failure") is not None:
        result.outcome = FAILED
        result.printed = "\n".join(fault.text or "" for fault in element.iter("failure"))
        result.again = repeat_case(test, name, seed)
    elif element.get("result") == "skipped" or element.find("skipped") is not None:
        result.outcome = SKIPPED
        text = element.find("skipped")
        lines = ((text.text or text.get("message", "")) if text is not None else "").split("\n")
        result.reason = next((line for line in lines[1:] if line.strip()), NO_REASON)
    elif element.get("status") == "notrun":
        return None
    return result


def gtest_cases(stage, test):
    """Records of a program's cases; none when it left no file."""
    try:
        root = ElementTree.parse(test.cases_file).getroot()
    except (OSError, ElementTree.ParseError):
        return []
    seed = root.get("random_seed")
    cases = [gtest_case(stage, test, element, seed) for element in root.iter("testcase")]
    return [case for case in cases if case is not None]


def records_of(stage, preset, case, test):
    """One test of CTest's as records: its cases, if it has any."""
    name, printed = case.get("name"), case.findtext("system-out") or ""
    whole = Result(stage, name, case_outcome(case), name, float(case.get("time") or 0))
    whole.again = repeat_test(preset, name)
    cases = gtest_cases(stage, test) if test.cases_file else []
    if whole.outcome == SKIPPED:
        whole.reason = "disabled" if case.get("status") == "disabled" else reason_printed(printed)
    elif whole.outcome == FAILED:
        whole.printed = printed
        # A program that fails without a failed case crashed or was stopped.
        if cases and not any(record.outcome == FAILED for record in cases):
            return [*cases, whole]
    elif test.cases_file and not cases:
        whole.outcome = FAILED
        whole.printed = "The program left no results of its cases.\n" + printed
    return cases or [whole]


def read_cases(path):
    """CTest's records in a result file; empty when there is no file."""
    try:
        return list(ElementTree.parse(path).getroot().iter("testcase"))
    except (OSError, ElementTree.ParseError):
        return []


def notes_of(case):
    """Lines about a test that its outcome does not tell."""
    name, printed = case.get("name"), case.findtext("system-out") or ""
    for part, reason in SKIPPED_PART.findall(printed):
        yield f"{name}, {part}: {reason}"


def measured(case):
    if case.get("name") in SHOWN and case.get("status") == "run":
        yield from (case.findtext("system-out") or "").strip().splitlines()


def read_outcome(stage, preset, path, tests):
    """Everything about one stage's result file. No test at all is a failure."""
    outcome = Outcome([], [], [])
    for case in read_cases(path):
        test = tests.get(case.get("name"), Test(case.get("name")))
        outcome.results += records_of(stage, preset, case, test)
        outcome.durations.append((float(case.get("time") or 0), case.get("name")))
        outcome.notes += [f"skipped part in {stage}: {text}" for text in notes_of(case)]
        outcome.notes += measured(case)
    if not outcome.results:
        outcome.results = [Result(stage, "(no test was run)", FAILED)]
    return outcome
