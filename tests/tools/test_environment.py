"""Tests that settings of a user or a machine do not influence tests: what
tools/environment.sh lets through, and some tests in an odd environment.

Usage: test_environment.py SOURCE_ROOT PROGRAM   (unittest; run by CTest)
"""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

ROOT, PROGRAM = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
del sys.argv[1:3]

# A "python3" and a compiler that come first on PATH and do not work.
USELESS = "#!/bin/sh\necho 'the wrong program' >&2\nexit 99\n"

ODD_VARIABLES = {
    "LC_ALL": "C", "LANGUAGE": "tr:de", "TERM": "dumb", "COLUMNS": "9", "TZ": "Pacific/Apia",
    "PYTHONUNBUFFERED": "1", "PYTHONIOENCODING": "ascii", "PYTHONUTF8": "0", "PYTHONOPTIMIZE": "1",
    "PYTHONHASHSEED": "7",
    "CXX": "false", "CXXFLAGS": "-broken", "CC": "false", "LDFLAGS": "-broken", "MAKEFLAGS": "-n",
    "CMAKE_GENERATOR": "None", "CMAKE_BUILD_TYPE": "Odd", "CTEST_PARALLEL_LEVEL": "40",
    "CTEST_OUTPUT_ON_FAILURE": "1", "GTEST_FILTER": "-*", "GTEST_REPEAT": "3",
    "ASAN_OPTIONS": "exitcode=0", "DISPLAY": ":77", "CDPATH": "/",
    "GREP_OPTIONS": "-v", "POSIXLY_CORRECT": "1", "BASH_ENV": "/dev/null/none",
    "MIRVO_FOLDER": "/nowhere",
}


class Odd(unittest.TestCase):
    """A folder for each test, and an odd environment."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mirvo odd \u00e4 ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name in ("python3", "g++", "c++", "cmake", "ctest", "ninja", "sort", "sed"):
            self.write("bin/" + name, USELESS)
        (self.folder / "tmp").mkdir()
        self.variables = {**ODD_VARIABLES, "HOME": str(self.folder / "home"),
                          "TMPDIR": str(self.folder / "tmp"),
                          "PATH": f"{self.folder}/bin:{os.environ['PATH']}"}

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_here(self, command, **variables):
        return subprocess.run(command, env={**self.variables, **variables}, cwd=self.folder,
                              capture_output=True, encoding="utf-8", errors="replace", check=False,
                              stdin=subprocess.DEVNULL, timeout=200,
                              preexec_fn=make_surroundings_odd)


def make_surroundings_odd():
    """An odd umask, and ignored signals as a careless parent leaves them."""
    os.umask(0o077)
    for number in (signal.SIGINT, signal.SIGHUP, signal.SIGUSR1):
        signal.signal(number, signal.SIG_IGN)


def clean(*command):
    return ["/bin/bash", "-c", f'. "{ROOT}/tools/environment.sh"; in_clean_environment "$@"',
            "bash", *command]


class CleanEnvironment(Odd):

    def names(self, **variables):
        done = self.run_here(clean("env"), **variables)
        self.assertEqual(done.returncode, 0, done.stderr)
        return dict(line.split("=", 1) for line in done.stdout.splitlines())

    def test_only_what_is_named_comes_through(self):
        self.assertEqual(self.names(), {
            "HOME": self.variables["HOME"], "TERM": "dumb", "LANG": "C.UTF-8",
            "DEBIAN_FRONTEND": "noninteractive", "PATH": "/usr/sbin:/usr/bin:/sbin:/bin:/usr/games"})

    def test_the_way_to_package_servers_comes_through(self):
        found = self.names(https_proxy="http://proxy:1", SSL_CERT_FILE="/a b", CI="true")
        self.assertEqual((found["https_proxy"], found["SSL_CERT_FILE"], found["CI"]),
                         ("http://proxy:1", "/a b", "true"))

    def test_python_is_the_systems(self):
        done = self.run_here(clean("python3", "-c", "import sys; print(sys.executable)"))
        self.assertEqual(done.stdout, "/usr/bin/python3\n")

    def test_file_rights_and_signals_are_the_usual_ones(self):
        done = self.run_here(clean("bash", "-c", "umask; grep SigIgn /proc/self/status; exit 5"))
        self.assertEqual(done.stdout.split(), ["0022", "SigIgn:", "0" * 16])
        self.assertEqual(done.returncode, 5)


class ContinuousIntegration(Odd):

    def test_it_runs_test_sh_in_the_clean_environment(self):
        self.write("copy/test.sh", "#!/bin/bash\nenv; echo arguments=$*; exit 3\n")
        for name in (".ci/run", "tools/environment.sh"):
            self.write("copy/" + name, (ROOT / name).read_text(encoding="utf-8"))
        done = self.run_here([self.folder / "copy/.ci/run", "one", "two"])
        self.assertEqual(done.returncode, 3, done.stderr)
        lines = done.stdout.splitlines()
        self.assertIn("CI=true", lines)
        self.assertIn("arguments=one two", lines)
        for name in ODD_VARIABLES.keys() - {"TERM"}:
            self.assertFalse([line for line in lines if line.startswith(name + "=")], name)


class OddEnvironment(Odd):
    """Tests started by hand, in an environment that was not cleaned."""

    def passes(self, *command):
        done = self.run_here([sys.executable, *command])
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_the_transcript_runner_passes_its_tests(self):
        self.passes(ROOT / "tests/transcripts/test_run_transcript.py")

    def test_transcripts_pass(self):
        cases = sorted((ROOT / "tests/transcripts/startup").glob("*.case"))
        self.passes(ROOT / "tests/transcripts/run_transcript.py", "--slow", "5", PROGRAM, *cases)

    def test_the_check_of_layers_passes(self):
        self.passes(ROOT / "tests/layers/check_includes.py", ROOT)


if __name__ == "__main__":
    unittest.main()
