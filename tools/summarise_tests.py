"""Adds up CTest result files: prints one line per stage and the total.

Usage: summarise_tests.py STAGE=FILE...   Exit status 1 when anything failed.
A stage whose file is missing did not build; it counts as one failure. Tests
named in SHOWN measure something: what they print is shown even when they pass.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree

SHOWN = ["speed.instructions_per_node"]

# How a script, a GoogleTest case and a case of Python's unittest say why.
SKIP_LINE = re.compile(r"^SKIP: (.*)$", re.MULTILINE)
GTEST_REASON = re.compile(r": Skipped\n(.*)$", re.MULTILINE)
SKIPPED_PART = re.compile(r"^(\w+) \(.*\) \.\.\. skipped [\"'](.*)[\"']$", re.MULTILINE)


def shown(path):
    """What the measuring tests of one result file printed."""
    cases = ElementTree.parse(path).getroot().iter("testcase")
    return [line for case in cases if case.get("name") in SHOWN
            for line in (case.findtext("system-out") or "").strip().splitlines()]


def skip_reasons(path):
    """(test, reason) of every test of a result file that was left out, and of
    every part of a test that says so itself."""
    for case in ElementTree.parse(path).getroot().iter("testcase"):
        name, printed = case.get("name"), case.findtext("system-out") or ""
        if case.get("status") == "disabled":
            yield name, "disabled"
        elif case.find("skipped") is not None:
            yield name, reason_printed(printed)
        for part, reason in SKIPPED_PART.findall(printed):
            yield f"{name}, {part}", reason


def reason_printed(text):
    """The reason among what a skipped test printed."""
    match = SKIP_LINE.search(text) or GTEST_REASON.search(text)
    return match[1].strip() if match else "no reason given"


def count(path):
    """(passed, failed, skipped, names of the failed) of one result file."""
    passed, skipped, failed_names = 0, 0, []
    for case in ElementTree.parse(path).getroot().iter("testcase"):
        if case.get("status") == "run":
            passed += 1
        elif case.find("skipped") is not None and "SKIP" in case.find("skipped").get("message", ""):
            skipped += 1
        elif case.get("status") == "disabled":
            skipped += 1
        else:
            failed_names.append(case.get("name"))
    return passed, len(failed_names), skipped, failed_names


def summary(passed, failed, skipped):
    text = f"{passed} passed, {failed} failed"
    return text + (f", {skipped} skipped" if skipped else "")


def main():
    total = [0, 0, 0]
    print()
    for argument in sys.argv[1:]:
        stage, path = argument.split("=", 1)
        try:
            passed, failed, skipped, names = count(path)
            for name, reason in skip_reasons(path):
                print(f"skipped in {stage}: {name}: {reason}")
            for line in shown(path):
                print(line)
            if passed + failed + skipped == 0:
                failed, names = 1, ["(no test was run)"]
        except (OSError, ElementTree.ParseError):
            passed, failed, skipped, names = 0, 1, 0, ["(the build)"]
        for name in names:
            print(f"failed in {stage}: {name}")
        print(f"stage {stage}: {summary(passed, failed, skipped)}")
        total = [total[0] + passed, total[1] + failed, total[2] + skipped]
    print(summary(*total))
    return 1 if total[1] or not total[0] else 0


if __name__ == "__main__":
    sys.exit(main())
