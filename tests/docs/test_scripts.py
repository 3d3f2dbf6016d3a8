"""Tests of the scripts that the README names: where run.sh prints what, when packages
are installed, what play.sh starts, and what test.sh says without Wine.

Usage: test_scripts.py SOURCE_ROOT   (unittest; run by CTest)
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv.pop(1)).resolve()

# Replacements for Debian's commands: they log their arguments; packages named
# "absent-*" count as not installed.
STUBS = {
    "dpkg-query": 'case "${@: -1}" in absent-*) exit 1;; *) printf installed;; esac',
    "apt-get": 'echo "apt-get $*" >>"$CALLS"',
    "sudo": 'echo "sudo $*" >>"$CALLS"; "$@"',
    "id": 'echo "$FAKE_UID"',
}


def need_packages(packages, user):
    """Runs need_packages as a user id with the replacements: (calls, stdout)."""
    with tempfile.TemporaryDirectory() as folder:
        for name, body in STUBS.items():
            stub = pathlib.Path(folder) / name
            stub.write_text(f"#!/bin/bash\n{body}\n", encoding="utf-8")
            stub.chmod(0o755)
        calls = pathlib.Path(folder) / "calls"
        calls.touch()
        environment = dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}", CALLS=str(calls),
                           FAKE_UID=user)
        result = subprocess.run(
            ["bash", "-euc", f'. "{ROOT}/tools/packages.sh"; need_packages {packages}'],
            env=environment, capture_output=True, text=True, check=True)
        return calls.read_text(encoding="utf-8").splitlines(), result.stdout


def run_sh(arguments, text="", cwd=None):
    return subprocess.run([ROOT / "run.sh", *arguments], input=text, capture_output=True, text=True,
                          cwd=cwd, timeout=280, check=False)


class Packages(unittest.TestCase):
    def test_nothing_missing_asks_nobody(self):
        self.assertEqual(need_packages("one two", "0"), ([], ""))

    def test_lists_are_fetched_before_anything_is_installed(self):
        calls, printed = need_packages("one absent-two absent-three", "0")
        self.assertEqual(len(calls), 2)
        self.assertTrue(calls[0].startswith("apt-get update"))
        self.assertTrue(calls[1].startswith("apt-get install -y"))
        self.assertTrue(calls[1].endswith(" absent-two absent-three"))
        self.assertEqual(printed, "")

    def test_users_install_with_sudo(self):
        calls, _ = need_packages("absent-one", "1000")
        self.assertEqual([call.split()[0] for call in calls], ["sudo", "apt-get"] * 2)


class TestScript(unittest.TestCase):
    """The stage for Windows on a machine without Wine. A copy of the scripts
    runs; it never comes to a build."""

    def run_windows_stage(self, **environment):
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            shutil.copy(ROOT / "test.sh", folder)
            shutil.copytree(ROOT / "tools", folder / "tools",
                            ignore=shutil.ignore_patterns("__pycache__"))
            stubs = {"dpkg-query": 'case "${@: -1}" in wine64) exit 1;; *) printf installed;; esac',
                     "apt-get": "exit 100", "sudo": '"$@"'}
            for name, body in stubs.items():
                (folder / name).write_text(f"#!/bin/bash\n{body}\n", encoding="utf-8")
                (folder / name).chmod(0o755)
            inherited = {name: value for name, value in os.environ.items() if name != "CI"}
            done = subprocess.run(
                [folder / "test.sh", "windows"], capture_output=True, text=True, check=False,
                env={**inherited, "PATH": f"{folder}:{os.environ['PATH']}", **environment})
        return done.returncode, done.stdout

    def test_a_missing_wine_is_told_twice(self):
        _, printed = self.run_windows_stage()
        self.assertEqual(printed.count("THE WINDOWS PROGRAM IS NOT TESTED"), 2)
        self.assertTrue(printed.endswith("\n0 passed, 0 failed, 1 skipped\n"))

    def test_a_missing_wine_is_a_failure_in_continuous_integration(self):
        status, printed = self.run_windows_stage(CI="true")
        self.assertEqual(status, 1)
        self.assertTrue(printed.endswith("\n0 passed, 1 failed\n"))


class RunScript(unittest.TestCase):
    def test_standard_output_is_the_engines_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            result = run_sh([], "uci\nquit\n", folder)
            self.assertEqual(result.returncode, 0, result.stderr)
            lines = result.stdout.splitlines()
            self.assertEqual(lines[0], "Welcome to Mirvo (0.2.7_d) by Tavelin")
            self.assertEqual(lines[-1], "uciok")
            # A second start has nothing to build.
            again = run_sh(["-perft", "2"], cwd=folder)
            self.assertIn("no work to do", again.stderr)
            self.assertEqual(again.stdout.splitlines()[-1], "2          400")


class PlayScript(unittest.TestCase):
    """play.sh with stand-ins for what opens windows and asks for packages."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mirvo-scripts-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.stub("dpkg-query", "printf installed")
        self.stub("polyglot", "")
        self.stub("xboard", 'printf "%s\\n" "$@"; command -v mirvo')

    def stub(self, name, body):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(f"#!/bin/bash\n{body}\n", encoding="utf-8")
        path.chmod(0o755)

    def play(self, *options, root=ROOT, display=":0"):
        environment = dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}", DISPLAY=display,
                           XDG_DATA_HOME=str(self.folder / "data"))
        return subprocess.run([root / "play.sh", *options], env=environment, capture_output=True,
                              text=True, timeout=280, check=False)

    def copy_without_sources(self):
        """The scripts in a folder where nothing can be built."""
        shutil.copy(ROOT / "play.sh", self.folder)
        for name in ("tools", "packaging"):
            shutil.copytree(ROOT / name, self.folder / name,
                            ignore=shutil.ignore_patterns("__pycache__"))
        return self.folder

    def test_the_window_has_the_engine_of_this_build(self):
        done = self.play("--black", "--depth", "3", "--", "-size", "Small")
        self.assertEqual(done.returncode, 0, done.stderr)
        words = done.stdout.splitlines()
        self.assertEqual(words[words.index("-fcp") + 1], "mirvo")
        self.assertIn("-fUCI", words)
        self.assertEqual(words[words.index("-mode") + 1], "MachineWhite")
        self.assertEqual(words[words.index("-depth") + 1], "3")
        self.assertEqual(words[-3:-1], ["-size", "Small"])
        self.assertEqual(words[-1], str(ROOT / "build/run/installed/bin/mirvo"))
        playing = self.folder / "data/mirvo"
        self.assertIn("MoveOverhead=50", (playing / "config.txt").read_text(encoding="ascii"))
        self.assertGreater((playing / "book.bk").stat().st_size, 0)

    def test_mistakes_are_told_before_anything_is_built(self):
        root = self.copy_without_sources()
        done = self.play("--clok", root=root)
        self.assertEqual((done.returncode, done.stdout), (2, ""))
        self.assertTrue(done.stderr.startswith("play.sh: unknown option: --clok;"), done.stderr)
        done = self.play(display="", root=root)
        self.assertEqual(done.returncode, 1)
        self.assertIn("DISPLAY is not set", done.stderr)
        self.assertIn("--browser", self.play("--help", display="", root=root).stdout)

    def test_packages_that_cannot_be_had(self):
        self.stub("dpkg-query", 'case "${@: -1}" in xboard) exit 1;; *) printf installed;; esac')
        self.stub("apt-get", "exit 100")
        self.stub("sudo", '"$@"')
        done = self.play(root=self.copy_without_sources())
        self.assertEqual(done.returncode, 1)
        self.assertIn("play.sh: xboard and polyglot cannot be installed here", done.stderr)

    def test_the_page_is_another_script(self):
        root = self.copy_without_sources()
        self.stub("web/serve.sh", 'echo "page $*"')
        self.assertEqual(self.play("--browser", root=root, display="").stdout, "page \n")


if __name__ == "__main__":
    unittest.main()
