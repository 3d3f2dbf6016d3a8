"""Builds and tests stages and says how it went. ./test.sh starts it.

Usage: run_tests.py [--left-out STAGE] [--only PATTERN] STAGE...   presets, as release
       run_tests.py quick                          what can notice the last changes

Everything that is printed by builds and tests is in build/logs. The last line
is "N passed, N failed" (and skipped ones, if any); exit status 0 if none failed.
"""

import argparse
import os
import pathlib
import signal
import subprocess
import sys

from testrun import quick
from testrun.progress import Screen
from testrun.report import report
from testrun.results import FAILED, SKIPPED, Outcome, Result
from testrun.run import Run, Setting, Stage

ROOT = pathlib.Path(__file__).resolve().parents[1]

WHY_LEFT_OUT = {
    "windows": "its compiler or Wine is not there and\n"
               "***  could not be installed (g++-mingw-w64-x86-64-posix, googletest, wine64).",
    "arm64": "its compiler or qemu is not there and could\n"
             "***  not be installed (g++-aarch64-linux-gnu, googletest, qemu-user).",
    "s390x": "its compiler or qemu is not there and could\n"
             "***  not be installed (g++-s390x-linux-gnu, googletest, qemu-user).",
    "web": "its compiler, Node or a browser is not there\n"
           "***  and could not be installed (emscripten, nodejs, npm, chromium).",
}
FRAME = "*" * 79


def complain(screen, stage):
    why = WHY_LEFT_OUT.get(stage, "it cannot be run here.")
    screen.say(f"{FRAME}\n***  THE {stage.upper()} PROGRAM IS NOT TESTED: {why}\n{FRAME}")


def left_out_outcome(stage):
    """Under continuous integration what cannot be tested has failed."""
    outcome = FAILED if os.environ.get("CI") else SKIPPED
    return Outcome([Result(stage, "(the whole stage)", outcome,
                           reason="it cannot be run here")], [], [])


def tell(screen, outcomes, left_out):
    lines, status = report(outcomes)
    for line in lines[:-1]:
        screen.say(line)
    for stage in left_out:
        complain(screen, stage)
    screen.say(lines[-1])
    return status


def run_stages(setting, names, left_out, only):
    for stage in left_out:
        complain(setting.screen, stage)
    stages = [Stage(name, name, only=only) for name in names if name not in left_out]
    outcomes = Run(setting, stages).go() if stages else {}
    outcomes.update((stage, left_out_outcome(stage)) for stage in left_out)
    return tell(setting.screen, outcomes, left_out)


def run_quick(setting):
    """The release build of what is needed, and the tests that it allows."""
    stage = Stage("quick", "release")
    old, new = quick.read_state(ROOT), quick.present_state(ROOT)
    changed = None if old is None else quick.changed_files(old, new)
    build = setting.build_folder(stage)
    if not (build / "build.ninja").exists():
        subprocess.run(["cmake", "--preset", stage.preset], cwd=setting.root, check=False,
                       stdout=subprocess.DEVNULL)
    choice = quick.Choice(changed, quick.test_programs(build), build)
    stage.targets, stage.select = choice.targets, choice.select
    setting.screen.say("first quick run: all layers" if changed is None else
                       f"changed since the last good quick run: {', '.join(changed) or 'nothing'}")
    status = tell_quick(setting, Run(setting, [stage]).go(), choice)
    if status == 0:
        quick.write_state(ROOT, new)
    return status


def tell_quick(setting, outcomes, choice):
    if choice.left_out:
        setting.screen.say(f"left to ./test.sh: {', '.join(choice.left_out)}")
    return tell(setting.screen, outcomes, [])


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--left-out", action="append", default=[], metavar="STAGE",
                        help="a stage that cannot be run here; told, and a failure under CI")
    parser.add_argument("--only", default="", metavar="PATTERN",
                        help="of the tests only those whose names match (ctest -R)")
    parser.add_argument("stages", nargs="*")
    options = parser.parse_intermixed_args()
    # However the run is ended, what it started ends with it.
    for number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, lambda *_: sys.exit(130))
    setting = Setting(ROOT, os.cpu_count() or 1, Screen())
    try:
        if options.stages == ["quick"]:
            return run_quick(setting)
        return run_stages(setting, options.stages, options.left_out, options.only)
    except KeyboardInterrupt:
        setting.screen.say("interrupted")
        return 130


if __name__ == "__main__":
    sys.exit(main())
