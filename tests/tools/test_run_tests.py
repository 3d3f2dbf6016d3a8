"""Tests of tools/run_tests.py: made-up projects whose tests pass, fail, skip,
crash, hang and need a second try, run by the real CMake and CTest; and made-up
result files.

Usage: test_run_tests.py SOURCE_ROOT   (unittest; run by CTest)
"""

import json
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import unittest.mock

ROOT = pathlib.Path(sys.argv.pop(1)).resolve()
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))
from testrun import costs, progress, quick, report, results  # noqa: E402

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(made_up LANGUAGES NONE)
enable_testing()
function(shell name text)
  add_test(NAME ${name} COMMAND sh -c "${text}")
  set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77 LABELS "${ARGN}")
endfunction()
"""

# Stands for a GoogleTest program: writes the results that it was given.
GTEST = """#!/bin/sh
[ -z "$2" ] || printf '%s' "$2" >"${GTEST_OUTPUT#xml:}"
exit $1
"""
CASE = '<testcase name="{}" classname="Suite" status="run" result="completed" time="0.5">{}</testcase>'
GOOD = CASE.format("Good", "")
BAD = CASE.format("Bad", '<failure message="x">a.cpp:7\nExpected: 1</failure>')
LEFT_OUT = ('<testcase name="Out" classname="Suite" status="run" result="skipped" time="0">'
            '<skipped message="m"><![CDATA[a.cpp:9\nno links here\n]]></skipped></testcase>')
DISABLED = '<testcase name="DISABLED_X" classname="Suite" status="notrun" result="suppressed"/>'


def presets(names):
    return json.dumps({
        "version": 6,
        "configurePresets": [{"name": name, "generator": "Ninja",
                              "binaryDir": "${sourceDir}/build/" + name,
                              "cacheVariables": {"STAGE": name}} for name in names],
        "buildPresets": [{"name": name, "configurePreset": name} for name in names],
        "testPresets": [{"name": name, "configurePreset": name,
                         "output": {"outputOnFailure": True}} for name in names]})


def is_alive(number):
    try:
        stat = pathlib.Path(f"/proc/{number}/stat").read_text(encoding="ascii")
    except OSError:
        return False
    return stat.rsplit(")", 1)[1].split()[0] != "Z"


class MadeUpProject(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mirvo-runner-")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        shutil.copytree(ROOT / "tools/testrun", self.root / "tools/testrun",
                        ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copy(ROOT / "tools/run_tests.py", self.root / "tools")
        self.write("gtest", GTEST)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_tests(self, text, *stages, **variables):
        """Runs a project with these tests: (exit status, lines)."""
        self.write("CMakeLists.txt", PROJECT + text)
        self.write("CMakePresets.json", presets(stages or ["release"]))
        environment = {name: value for name, value in os.environ.items() if name != "CI"}
        done = subprocess.run(
            [sys.executable, self.root / "tools/run_tests.py", *(stages or ["release"])],
            env={**environment, **variables}, cwd=self.root, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", timeout=200,
            check=False)
        return done.returncode, done.stdout.splitlines()

    def shell(self, name, text, label=""):
        return f"shell({name} [==[{text}]==] {label})\n"

    def gtest(self, name, status, cases):
        """A program with these cases; None: it leaves no results."""
        file = f"{self.root}/build/release/gtest-results/{name}.xml"
        text = "" if cases is None else f'<testsuites random_seed="4711"><testsuite>{cases}</testsuite></testsuites>'
        return (f"add_test(NAME {name} COMMAND {self.root}/gtest {status} [==[{text}]==])\n"
                f"set_tests_properties({name} PROPERTIES ENVIRONMENT GTEST_OUTPUT=xml:{file})\n")


class WholeRuns(MadeUpProject):

    def test_counts_and_status(self):
        status, lines = self.run_tests(self.shell("a.one", "true") + self.shell("b", "true"))
        self.assertEqual((status, lines[-1]), (0, "2 passed, 0 failed"))

    def test_each_kind_of_end(self):
        status, lines = self.run_tests(
            self.shell("good", "true")
            + self.shell("bad", "echo what is wrong; exit 3")
            + self.shell("crash", "kill -SEGV $$")
            + self.shell("left_out", "echo SKIP: there is no Wine; exit 77")
            + self.shell("hangs", "sleep 1000")
            + "set_tests_properties(hangs PROPERTIES TIMEOUT 0.5)\n"
            + "add_test(NAME absent COMMAND /nonexistent/program)\n")
        self.assertEqual((status, lines[-1]), (1, "1 passed, 4 failed, 1 skipped"))
        self.assertIn("skipped in release: left_out: there is no Wine", lines)
        for name in ("bad", "crash", "hangs", "absent"):
            self.assertIn(f"failed in release: {name}", lines)
            # It is told at once, too.
            self.assertTrue(any(line.startswith(f"FAILED in release: {name}: ") for line in lines))
        self.assertIn("    what is wrong", lines)

    def test_the_command_told_repeats_a_failure(self):
        _, lines = self.run_tests(self.shell("a.b", "echo once more; exit 1")
                                  + self.shell("aXb", "echo wrong one; exit 0"))
        commands = [line.partition("again: ")[2] for line in lines if "again: " in line]
        self.assertEqual(len(commands), 1)
        done = subprocess.run(shlex.split(commands[0]), cwd=self.root, encoding="utf-8",
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("once more", done.stdout)
        self.assertNotIn("aXb", done.stdout)

    def test_stages_are_added_and_told_apart(self):
        text = 'shell(same "test ${STAGE} = one")\n'
        status, lines = self.run_tests(text, "one", "two")
        self.assertEqual((status, lines[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("stage one: 1 passed, 0 failed", lines)
        self.assertIn("stage two: 0 passed, 1 failed", lines)
        self.assertIn("failed in two: same", lines)

    def test_a_broken_build_fails_its_stage_only(self):
        text = self.shell("fine", "true") + """
            if(STAGE STREQUAL "one")
              add_custom_target(broken ALL COMMAND sh -c "echo the reason; false" VERBATIM)
            endif()\n"""
        status, lines = self.run_tests(text, "one", "two")
        self.assertEqual((status, lines[-1]), (1, "1 passed, 1 failed"))
        self.assertIn("failed in one: (the build)", lines)
        self.assertIn("    the reason", lines)

    def test_a_project_that_cannot_be_configured_has_failed(self):
        status, lines = self.run_tests('message(FATAL_ERROR "the reason")\n')
        self.assertEqual((status, lines[-1]), (1, "0 passed, 1 failed"))
        self.assertTrue(any("the reason" in line for line in lines))

    def test_no_test_at_all_is_a_failure(self):
        status, lines = self.run_tests("")
        self.assertEqual((status, lines[-1]), (1, "0 passed, 1 failed"))

    def test_an_ended_run_leaves_nothing_behind(self):
        # The test says its number and then waits for ever.
        text = self.shell("waits", "echo $$ >../pid.new; mv ../pid.new ../pid; exec sleep 1000")
        self.write("CMakeLists.txt", PROJECT + text)
        self.write("CMakePresets.json", presets(["release"]))
        with subprocess.Popen([sys.executable, self.root / "tools/run_tests.py", "release"],
                              cwd=self.root, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL) as process:
            file = self.root / "build/pid"
            while not file.exists():
                self.assertIsNone(process.poll())
                time.sleep(0.05)
            process.terminate()
        self.assertEqual(process.returncode, 130)
        number = int(file.read_text(encoding="ascii"))
        for _ in range(400):
            if not is_alive(number):
                return
            time.sleep(0.05)
        self.fail("the test still runs")

    def test_some_tests_only(self):
        text = self.shell("a.one", "true") + self.shell("b.two", "false")
        status, lines = self.run_tests(text, "release", "--only=^a")
        self.assertEqual((status, lines[-1]), (0, "1 passed, 0 failed"))

    def test_the_next_stage_is_built_while_one_is_tested(self):
        # The first stage's test ends only when the second stage is built.
        text = self.shell("waits", "until [ -e ../built ]; do sleep 0.05; done")
        text += "set_tests_properties(waits PROPERTIES TIMEOUT 100)\n"
        text += """
            if(STAGE STREQUAL "two")
              add_custom_target(mark ALL COMMAND touch ${CMAKE_SOURCE_DIR}/build/built VERBATIM)
            endif()\n"""
        status, lines = self.run_tests(text, "one", "two")
        self.assertEqual((status, lines[-1]), (0, "2 passed, 0 failed"))

    def test_old_results_are_not_counted(self):
        text = self.shell("fine", "true")
        self.run_tests(text)
        status, lines = self.run_tests(text + 'message(FATAL_ERROR "now broken")\n')
        self.assertEqual((status, lines[-1]), (1, "0 passed, 1 failed"))

    def test_logs_and_progress(self):
        _, lines = self.run_tests(self.shell("good", "echo some words"))
        self.assertTrue(any(line.startswith("building release") for line in lines), lines)
        log = (self.root / "build/logs/release-tests.txt").read_text(encoding="utf-8")
        self.assertIn("good", log)
        self.assertTrue((self.root / "build/logs/release-build.txt").stat().st_size)
        self.assertFalse(any("\r" in line for line in lines))

    def test_the_next_run_estimates_from_this_one(self):
        history = self.root / "build/logs/stage-seconds.json"
        for kept in ("", "no figures", "[1]", '{"release": {"tests": 1}}'):
            if kept:
                history.write_text(kept, encoding="utf-8")
            _, lines = self.run_tests(self.shell("good", "true"))
            self.assertFalse(any(" left" in line for line in lines), lines)
        self.assertEqual(list(json.loads(history.read_text(encoding="utf-8"))), ["release"])
        _, lines = self.run_tests(self.shell("good", "true"))
        self.assertTrue(any(line.endswith(" left") for line in lines), lines)

    def test_a_run_of_some_tests_changes_no_estimate(self):
        history = self.root / "build/logs/stage-seconds.json"
        history.parent.mkdir(parents=True)
        history.write_text('{"release": 300}', encoding="utf-8")
        self.run_tests(self.shell("good", "true"), "--only", "good", "release")
        self.assertEqual(json.loads(history.read_text(encoding="utf-8")), {"release": 300})

    def test_a_stage_that_cannot_be_run(self):
        for variables, total, expected in (({}, "1 passed, 0 failed, 1 skipped", 0),
                                           ({"CI": "true"}, "1 passed, 1 failed", 1)):
            with self.subTest(total):
                status, lines = self.run_tests(self.shell("good", "true"), "release",
                                               "--left-out=windows", "windows", **variables)
                self.assertEqual((status, lines[-1]), (expected, total))
                self.assertEqual(sum("NOT TESTED" in line for line in lines), 2)


class SecondTries(MadeUpProject):

    # Fails the first time, and ever when something runs beside it.
    ONCE = "if [ -e tried ]; then exit 0; else touch tried; exit 1; fi"

    def test_a_test_with_the_clock_is_tried_alone(self):
        text = self.shell("late", self.ONCE, "clock") + self.shell("good", "true")
        status, lines = self.run_tests(text)
        self.assertEqual((status, lines[-1]), (0, "2 passed, 0 failed"))
        self.assertIn("tried late of release alone: it passes", lines)
        self.assertIn("passed in release when tried alone: late", lines)

    def test_it_fails_when_it_fails_again(self):
        status, lines = self.run_tests(self.shell("late", "exit 1", "clock"))
        self.assertEqual((status, lines[-1]), (1, "0 passed, 1 failed"))
        self.assertIn("tried late of release alone: it FAILS again", lines)

    def test_other_tests_have_one_try(self):
        status, lines = self.run_tests(self.shell("once", self.ONCE, "game"))
        self.assertEqual((status, lines[-1]), (1, "0 passed, 1 failed"))

    def test_cases_of_a_program_with_the_clock(self):
        program = f"""#!/bin/sh
            if [ -e tried ]; then cases='{GOOD}'; status=0; else cases='{BAD}'; status=1; fi
            touch tried
            echo "<testsuites>$cases</testsuites>" >"${{GTEST_OUTPUT#xml:}}"
            exit $status\n"""
        self.write("gtest", program)
        text = self.gtest("late_test", 0, "") + (
            "set_tests_properties(late_test PROPERTIES LABELS clock)\n")
        status, lines = self.run_tests(text)
        self.assertEqual((status, lines[-1]), (0, "1 passed, 0 failed"))


class Cases(MadeUpProject):

    def total(self, status, cases):
        ended, lines = self.run_tests(self.gtest("some_test", status, cases))
        return ended, lines[-1], lines

    def test_cases_are_counted(self):
        status, last, lines = self.total(0, GOOD * 3 + LEFT_OUT + DISABLED)
        self.assertEqual((status, last), (0, "3 passed, 0 failed, 1 skipped"))
        self.assertIn("skipped in release: Suite.Out: no links here", lines)

    def test_a_failed_case_is_named_with_its_command(self):
        status, last, lines = self.total(1, GOOD + BAD)
        self.assertEqual((status, last), (1, "1 passed, 1 failed"))
        self.assertIn("failed in release: Suite.Bad", lines)
        self.assertIn("    Expected: 1", lines)
        again = "\n".join(lines).partition("  again: ")[2]
        self.assertIn("--gtest_filter=Suite.Bad", again)
        self.assertIn("in the same order: ", again)
        self.assertIn("--gtest_shuffle --gtest_random_seed=4711", again)

    def test_a_crash_leaves_no_file_and_has_failed(self):
        status, last, lines = self.total(139, None)
        self.assertEqual((status, last), (1, "0 passed, 1 failed"))
        self.assertIn("failed in release: some_test", lines)

    def test_a_program_without_results_has_failed_whatever_it_says(self):
        self.assertEqual(self.total(0, None)[:2], (1, "0 passed, 1 failed"))
        self.assertEqual(self.total(0, "")[:2], (1, "0 passed, 1 failed"))

    def test_a_fault_behind_the_last_case_counts(self):
        # A leak is reported when all cases have passed.
        self.assertEqual(self.total(23, GOOD * 2)[:2], (1, "2 passed, 1 failed"))


class ResultFiles(unittest.TestCase):

    def outcome(self, cases, tests=None):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "results.xml"
            path.write_text(f"<testsuite>{cases}</testsuite>", encoding="utf-8")
            return results.read_outcome("stage", "preset", path, tests or {})

    def test_measured_figures_are_shown(self):
        measured = ('<testcase name="speed.instructions_per_node" status="run">'
                    "<system-out>perft: 400.0\nsearch: 4000.0\n</system-out></testcase>")
        other = '<testcase name="a" status="run"><system-out>noise</system-out></testcase>'
        self.assertEqual(self.outcome(measured + other).notes, ["perft: 400.0", "search: 4000.0"])

    def test_reasons_of_parts_are_shown(self):
        part = ('<testcase name="e" status="run"><system-out>test_f (x.Y.test_f) ... skipped '
                "'no rights'\ntest_g (x.Y.test_g)\nSays more. ... skipped \"it's so\"\n"
                "</system-out></testcase>")
        self.assertEqual(self.outcome(part).notes,
                         ["skipped part in stage: e, test_f: no rights",
                          "skipped part in stage: e, test_g: it's so"])

    def test_reasons_of_cases_that_ctest_knows(self):
        case = ('<testcase name="A.B" status="notrun"><skipped message="SKIP_REGULAR_EXPRESSION"/>'
                "<system-out>[ RUN ] A.B\na.cpp:7: Skipped\nno links here\n</system-out></testcase>")
        self.assertEqual([(r.outcome, r.reason) for r in self.outcome(case).results],
                         [("skipped", "no links here")])

    def test_files_that_wine_writes_are_found(self):
        listing = {"tests": [{"name": "a", "command": ["wine", "a.exe"], "properties": [
            {"name": "ENVIRONMENT", "value": ["GTEST_OUTPUT=xml:Z:/build/a.xml"]},
            {"name": "LABELS", "value": ["clock"]}, {"name": "COST", "value": 4.0}]}, {"name": "b", "command": ["b"]}]}
        tests = results.read_tests(json.dumps(listing))
        self.assertEqual(tests["a"].cases_file, pathlib.Path("/build/a.xml"))
        self.assertEqual((tests["a"].labels, tests["a"].cost, tests["a"].numbers),
                         (frozenset(["clock"]), 4.0, [1]))
        self.assertIsNone(tests["b"].cases_file)


class Report(unittest.TestCase):

    def test_the_ten_slowest_come_first(self):
        outcome = results.Outcome([results.Result("s", "a", results.PASSED)],
                                  [(n / 2, f"t{n}") for n in range(12)], [])
        lines, status = report.report({"s": outcome})
        self.assertEqual(status, 0)
        self.assertEqual(lines[2], "     5.5 s  s: t11")
        self.assertEqual(sum(" s  s: t" in line for line in lines), 10)

    def test_equal_reasons_stand_together(self):
        skipped = [results.Result("s", name, results.SKIPPED, reason="no Wine") for name in "ab"]
        lines, status = report.report({"s": results.Outcome(skipped, [], [])})
        self.assertIn("skipped in s: a, b: no Wine", lines)
        self.assertEqual((lines[-1], status), ("0 passed, 0 failed, 2 skipped", 1))


class Costs(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build = pathlib.Path(folder.name)

    def test_what_earlier_runs_took_counts_before_what_is_said(self):
        tests = {name: results.Test(name, cost=cost) for name, cost in
                 (("a b", 30.0), ("c", 0.0), ("d", 5.0))}
        self.assertEqual(costs.known(self.build, tests), {"a b": 30.0, "d": 5.0})
        costs.memory(self.build).parent.mkdir(parents=True)
        costs.memory(self.build).write_text("a b 3 7.5\nc 1 0.25\n---\na b\n", encoding="utf-8")
        self.assertEqual(costs.known(self.build, tests), {"a b": 7.5, "c": 0.25, "d": 5.0})


class Progress(unittest.TestCase):

    def test_the_estimate_comes_from_known_figures(self):
        tests = progress.Tests(["a", "b"], {"a": 30.0, "b": 10.0}, jobs=2)
        self.assertEqual(tests.seconds_left(), 20.0)
        tests.end("a", failed=False)
        tests.started -= 60  # a minute for three quarters of the work
        self.assertAlmostEqual(tests.seconds_left(), 20.0, delta=1)
        tests.end("b", failed=True)
        self.assertEqual((tests.seconds_left(), tests.done, tests.failed), (0, 2, 1))

    def test_later_stages_go_at_the_pace_of_this_run(self):
        later = progress.LaterStages({"release": 100, "sanitize": 300, "windows": 60})
        self.assertEqual(later.seconds(["sanitize", "windows"]), 360)
        later.end("release", 50)  # the run before shared its processors
        self.assertEqual(later.seconds(["sanitize", "windows"]), 180)
        later.end("sanitize", 550)  # now this one does
        self.assertEqual(later.seconds(["windows"]), 90)
        self.assertEqual(later.seconds([]), 0)

    def test_a_stage_that_never_ran_has_no_estimate(self):
        later = progress.LaterStages({"release": 100})
        later.end("web", 10)  # nothing to compare it with
        self.assertEqual(later.seconds(["release"]), 100)
        self.assertIsNone(later.seconds(["release", "arm64"]))

    def test_texts_of_times(self):
        self.assertEqual([progress.minutes(seconds) for seconds in (0, 42, 89, 150, 3000)],
                         ["5 s", "40 s", "90 s", "2 min", "50 min"])


class Quick(unittest.TestCase):

    PROGRAMS = ["tests/board/board_test", "tests/eval/eval_test", "tests/search/search_test",
                "tests/search/signature_test", "tests/shell/startup_tables_test",
                "tests/fuzz/fuzz_corpus_test"]

    def choice(self, *changed, first=False):
        return quick.Choice(None if first else list(changed), self.PROGRAMS, "/b")

    def chosen(self, choice, *tests):
        made = {name: results.Test(name, command or ["python3"], frozenset(labels))
                for name, command, labels in tests}
        return choice.select(made)

    def test_a_source_file_builds_its_layers_programs(self):
        self.assertEqual(self.choice("eval/king.cpp").programs,
                         ["tests/eval/eval_test", "tests/search/signature_test",
                          "tests/shell/startup_tables_test"])

    def test_nothing_changed_still_tries_the_program(self):
        choice = self.choice()
        self.assertEqual(choice.targets,
                         ["shell/mirvo", "opening_book", "tests/search/signature_test"])
        self.assertEqual(self.chosen(choice, ("transcript.uci.x", [], ["transcript"]),
                                     ("transcript.runner", [], []),
                                     ("layers.includes_point_downwards", [], []),
                                     ("layers.cppcheck_finds_nothing", [], []),
                                     ("docs.names_exist", [], [])),
                         ["transcript.uci.x", "layers.includes_point_downwards"])

    def test_a_first_run_and_a_change_of_the_build_take_all_layers(self):
        for choice in (self.choice(first=True), self.choice("cmake/layers.cmake"),
                       self.choice("tests/eval/CMakeLists.txt"), self.choice("CMakePresets.json")):
            self.assertEqual(choice.programs, self.PROGRAMS[:-1])

    def test_cases_of_a_wanted_program_are_chosen(self):
        choice = self.choice("tests/eval/king_test.cpp")
        self.assertEqual(self.chosen(choice, ("King.A", ["/b/tests/eval/eval_test", "x"], []),
                                     ("eval_1", ["wine", "/b/tests/eval/eval_test"], []),
                                     ("Board.A", ["/b/tests/board/board_test"], [])),
                         ["King.A", "eval_1"])

    def test_what_takes_long_or_plays_is_left_out(self):
        choice = self.choice("book/book_file.cpp")
        made = {"book.short": results.Test("book.short", cost=20.0),
                "book.long": results.Test("book.long", cost=30.0),
                "book.plays": results.Test("book.plays", labels=frozenset(["game"]))}
        self.assertEqual(choice.select(made), ["book.short"])
        self.assertEqual(choice.left_out, ["book.long", "book.plays"])

    def test_files_without_a_layer(self):
        names = ["docs.names_exist", "docs.samples_are_what_is_printed", "docs.scripts",
                 "tools.mutations", "transcript.runner", "layers.cppcheck_finds_nothing",
                 "layers.headers_compile_alone", "speed.measuring_scripts", "arbiter.rules"]
        for changed, expected in {
                "docs/testing.md": names[:2], "README.md": names[:2], "run.sh": names[:3],
                "tools/mutate.py": [names[0], names[3]],
                "tests/transcripts/session.py": [names[4]], "board/fen.cpp": [names[5]],
                "board/fen.h": names[5:7], "bench/scale.py": [names[7]],
                "tests/arbiter/rules.py": [names[8]]}.items():
            with self.subTest(changed):
                chosen = self.chosen(self.choice(changed), *((name, [], []) for name in names))
                self.assertEqual(chosen, expected)

    def test_files_are_listed_without_git_too(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name in ("a.cpp", "docs/b.md", "build/c.o", ".git/config"):
                (root / name).parent.mkdir(exist_ok=True)
                (root / name).write_text("text", encoding="utf-8")
            with unittest.mock.patch.dict(os.environ, PATH="/nonexistent"):
                self.assertEqual(sorted(quick.list_files(root)), ["a.cpp", "docs/b.md"])

    def test_changes_are_told_from_contents(self):
        self.assertEqual(quick.changed_files({"a": "1", "b": "2", "c": "3"},
                                             {"a": "1", "b": "9", "d": "4"}), ["b", "c", "d"])


class QuickRun(MadeUpProject):

    def quick(self):
        done = subprocess.run([sys.executable, self.root / "tools/run_tests.py", "quick"],
                              cwd=self.root, stdin=subprocess.DEVNULL, encoding="utf-8",
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return done.returncode, done.stdout.splitlines()

    def test_it_runs_what_was_chosen_until_it_passes(self):
        text = (PROJECT + "add_custom_command(OUTPUT shell/mirvo COMMAND touch shell/mirvo)\n"
                + "add_custom_target(opening_book ALL DEPENDS shell/mirvo)\n"
                + "file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/shell)\n"
                + 'shell(transcript.uci.a "true")\nshell(transcript.uci.b "test ! -e ../broken")\n'
                + 'shell(soak.c "false")\nshell(docs.names_exist "true")\n')
        self.write("CMakeLists.txt", text)
        self.write("CMakePresets.json", presets(["release"]))
        self.write("docs/a.md", "one")
        self.write("build/broken", "")
        status, lines = self.quick()
        self.assertEqual((status, lines[-1]), (1, "1 passed, 1 failed"))
        (self.root / "build/broken").unlink()
        self.assertIn("first quick run: all layers", lines)
        status, lines = self.quick()
        self.assertEqual((status, lines[-1]), (0, "2 passed, 0 failed"))
        self.write("docs/a.md", "two")
        status, lines = self.quick()
        self.assertEqual((status, lines[-1]), (0, "3 passed, 0 failed"))
        self.assertIn("changed since the last good quick run: docs/a.md", lines)


if __name__ == "__main__":
    unittest.main()
