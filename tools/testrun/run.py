"""Runs stages: builds and tests each, the next one being built while the present
one is tested. CTest starts the tests; this only starts CTest, reads what it
prints and adds up what it leaves."""

import dataclasses
import json
import pathlib
import queue
import re
import subprocess
import time

from testrun import costs
from testrun.commands import Chain, Command
from testrun.progress import LaterStages, Tests, minutes
from testrun.report import counts, total_line
from testrun.results import FAILED, Outcome, Result, exactly, read_outcome, read_tests

# Tests at a time beyond one for each processor: many wait for clocks and pipes.
WAITING_TESTS = 2

# A test with this label uses the real clock. On a machine that stops processes
# it may fail for that alone, so it is tried once more when nothing else runs.
CLOCK_LABEL = "clock"

TEST_ENDED = re.compile(r"^ *\d+/\d+ Test +#\d+: (.+?) \.{3,}(.*)$")
BUILD_STEP = re.compile(r"^\[(\d+)/(\d+)\]")


@dataclasses.dataclass
class Stage:
    """What is configured, built and tested under one name."""
    name: str
    preset: str
    targets: list = dataclasses.field(default_factory=list)  # none: all
    select: object = None  # function from {name: Test} to the names to be run
    only: str = ""         # of the tests those whose names match

    def commands(self, jobs):
        build = ["cmake", "--build", "--preset", self.preset, "--parallel", str(jobs)]
        if self.targets:
            build += ["--target", *self.targets]
        return [["cmake", "--preset", self.preset], build]


@dataclasses.dataclass
class Setting:
    """Where and how everything runs."""
    root: pathlib.Path
    jobs: int
    screen: object

    def build_folder(self, stage):
        return self.root / "build" / stage.preset

    def log(self, stage, what):
        return self.root / "build" / "logs" / f"{stage.name}-{what}.txt"

    def history(self):
        return self.root / "build" / "logs" / "stage-seconds.json"


def read_seconds(path):
    """The file's seconds by stage name; none if there is no such file."""
    try:
        seconds = json.loads(path.read_text(encoding="utf-8"))
    except (OSError, ValueError):
        return {}
    if not isinstance(seconds, dict):
        return {}
    return {stage: value for stage, value in seconds.items() if isinstance(value, (int, float))}


def list_tests(setting, stage):
    """The stage's tests in CTest's order, and what it takes to run them."""
    command = ["ctest", "--preset", stage.preset, *(["-R", stage.only] if stage.only else [])]
    if stage.select:
        # Numbers count all tests, so the preset's own choice stays out.
        command = ["ctest", "--test-dir", str(setting.build_folder(stage)), "--output-on-failure",
                   "--timeout", "300"]
    listed = subprocess.run([*command, "--show-only=json-v1"], cwd=setting.root, check=False,
                            capture_output=True, encoding="utf-8", errors="replace")
    tests = read_tests(listed.stdout) if listed.returncode == 0 else {}
    if not stage.select:
        return tests, command
    chosen = set(stage.select(tests))
    tests = {name: test for name, test in tests.items() if name in chosen}
    numbers = sorted(number for test in tests.values() for number in test.numbers)
    # The first one stands for begin and end of a range of step 1.
    command += ["-I", ",".join(map(str, [*numbers[:1] * 2, 1, *numbers[1:]]))]
    return tests, command


class StageTests:
    """One stage's tests while they run, and what they came to."""

    def __init__(self, setting, stage, events):
        self.setting, self.stage = setting, stage
        build = setting.build_folder(stage)
        self.tests, command = list_tests(setting, stage)
        self.file = build / "test-results.xml"
        self.clear()
        self.progress = Tests(self.tests, costs.known(build, self.tests), setting.jobs)
        self.log = open(setting.log(stage, "tests"), "wb")
        slots = setting.jobs + WAITING_TESTS
        self.command = Command([*command, "--parallel", str(slots), *self.output_words()],
                               setting.root, self.log, events)

    def output_words(self):
        return ["--output-junit", str(self.file), "--test-output-size-passed", "65536",
                "--test-output-size-failed", "262144"]

    def clear(self):
        """Results of earlier runs tell nothing about this one."""
        for path in [self.file, *(test.cases_file for test in self.tests.values())]:
            if path:
                path.unlink(missing_ok=True)
                path.parent.mkdir(parents=True, exist_ok=True)

    def uses_the_clock(self, name):
        return name in self.tests and CLOCK_LABEL in self.tests[name].labels

    def read_line(self, line):
        """One line of CTest's; tells of a failure at once."""
        match = TEST_ENDED.match(line)
        if not match:
            return
        name, verdict = match.groups()
        failed = not any(word in verdict for word in ("Passed", "Skipped", "Disabled"))
        self.progress.end(name, failed)
        if failed:
            later = "; it uses the clock and is tried alone at the end"
            self.setting.screen.say(f"FAILED in {self.stage.name}: {name}: {verdict.strip(' .*')}"
                                    + (later if self.uses_the_clock(name) else ""))

    def outcome(self):
        self.log.close()
        return read_outcome(self.stage.name, self.stage.preset, self.file, self.tests)

    def status(self):
        progress = self.progress
        return (f"{self.stage.name}: {progress.done} of {progress.total} tests done, "
                f"{progress.failed} failed")


class Run:
    """All stages of one call."""

    def __init__(self, setting, stages):
        self.setting, self.stages = setting, stages
        self.events = queue.Queue()
        self.outcomes = {}  # by stage name
        self.finished = []  # StageTests, for retries
        self.later = LaterStages(read_seconds(setting.history()))
        self.build_step = ""
        self.chain = None
        self.testing = None
        self.left_stages = list(stages)

    def go(self):
        work = []
        for stage in self.stages:
            path = self.setting.log(stage, "build")
            path.unlink(missing_ok=True)
            work += [(stage.name, words, path) for words in stage.commands(self.setting.jobs)]
        self.chain = Chain(work, self.setting.root, self.events)
        try:
            for stage in self.stages:
                self.run_stage(stage)
            self.retry_alone()
        finally:
            self.chain.stop()
            if self.testing:
                self.testing.command.stop()
        seconds = {**self.later.before, **self.later.now}
        self.setting.history().write_text(json.dumps(seconds), encoding="utf-8")
        return self.outcomes

    def run_stage(self, stage):
        started = time.monotonic()
        self.wait_for(lambda: stage.name in self.chain.ended, hurry=True)
        self.left_stages.remove(stage)
        if not self.chain.ended[stage.name]:
            self.tell_broken_build(stage)
            return
        self.testing = StageTests(self.setting, stage, self.events)
        self.wait_for(lambda: self.testing.command.status is not None and self.testing_drained)
        self.outcomes[stage.name] = self.testing.outcome()
        self.finished.append(self.testing)
        total = total_line(counts(self.outcomes[stage.name].results))
        self.setting.screen.say(f"tests of {stage.name} done: {total}")
        if not stage.only:  # some of its tests tell nothing about the others
            self.later.end(stage.name, round(time.monotonic() - started))
        self.testing = None

    def tell_broken_build(self, stage):
        result = Result(stage.name, "(the build)", FAILED)
        path = self.setting.log(stage, "build")
        try:
            lines = path.read_text(encoding="utf-8", errors="replace").splitlines()
        except OSError:
            lines = []
        result.printed = "\n".join(broken_part(lines))
        result.again = f"cmake --preset {stage.preset} && cmake --build --preset {stage.preset}"
        self.outcomes[stage.name] = Outcome([result], [], [])
        self.setting.screen.say(f"FAILED in {stage.name}: the build; see {path}")

    def wait_for(self, condition, hurry=False):
        """Handles what happens until the condition holds."""
        self.testing_drained = False
        while not condition():
            if hurry:
                self.chain.hurry()
            try:
                source, line = self.events.get(timeout=1)
            except queue.Empty:
                source, line = None, None
            if source is not None:
                self.handle(source, line)
            self.setting.screen.update(self.status())

    def handle(self, source, line):
        if self.testing and source is self.testing.command:
            if line is None:
                self.testing_drained = True
            else:
                self.testing.read_line(line)
        elif source is self.chain.current:
            if line is None:
                self.build_step = ""
                self.chain.take_end()
            else:
                match = BUILD_STEP.match(line)
                self.build_step = f", {match[1]} of {match[2]}" if match else self.build_step

    def seconds_left(self):
        """An estimate from this stage's tests and the run before; None without one."""
        later = self.later.seconds([stage.name for stage in self.left_stages])
        if later is None:
            return None
        return later + (self.testing.progress.seconds_left() if self.testing else 0)

    def status(self):
        parts = [self.testing.status()] if self.testing else []
        if self.chain.current:
            parts.append(f"building {self.chain.tag}{self.build_step}")
        left = self.seconds_left()
        if left is not None:
            parts.append(f"about {minutes(left)} left")
        return "; ".join(parts)

    def retry_alone(self):
        for tests in self.finished:
            outcome = self.outcomes[tests.stage.name]
            failed = [name for name in failed_tests(outcome, tests)
                      if tests.uses_the_clock(name)]
            for name in failed:
                self.retry(tests, outcome, name)

    def retry(self, tests, outcome, name):
        """Once more, with nothing beside it; the second verdict counts."""
        stage = tests.stage
        file = tests.file.with_name("test-results-alone.xml")
        file.unlink(missing_ok=True)
        if tests.tests[name].cases_file:
            tests.tests[name].cases_file.unlink(missing_ok=True)
        with open(self.setting.log(stage, "tests"), "ab") as log:
            subprocess.run(["ctest", "--preset", stage.preset, "-R", exactly(name),
                            "--output-junit", str(file)], cwd=self.setting.root, stdout=log,
                           stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, check=False)
        again = read_outcome(stage.name, stage.preset, file, {name: tests.tests[name]})
        again.results = [result for result in again.results if result.test == name]
        passed = bool(again.results) and all(r.outcome != FAILED for r in again.results)
        self.setting.screen.say(f"tried {name} of {stage.name} alone: "
                                + ("it passes" if passed else "it FAILS again"))
        if passed:
            outcome.results = [r for r in outcome.results if r.test != name] + again.results
            outcome.retried.append(name)


def failed_tests(outcome, tests):
    """Names of CTest's tests that failed or hold a failed case."""
    return list(dict.fromkeys(result.test for result in outcome.results
                              if result.outcome == FAILED and result.test in tests.tests))


def broken_part(lines, most=40):
    """The lines of a build's log that say what went wrong."""
    for number, line in enumerate(lines):
        if line.startswith("FAILED: ") or "CMake Error" in line:
            return lines[number:number + most]
    return lines[-most:]
