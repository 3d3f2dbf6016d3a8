"""Helpers for tests that run other people's programs: find them, run them with a
time limit in their own folder, and skip a test."""

import os
import shutil
import signal
import subprocess
import sys

SKIPPED = 77

# Debian's games live in a folder that not every PATH has.
SEARCH_PATH = os.environ.get("PATH", "") + ":/usr/games"


def need(*programs):
    """Ends the test as skipped unless all programs are installed."""
    for program in programs:
        if shutil.which(program, path=SEARCH_PATH) is None:
            print(f"SKIP: {program} is not installed")
            sys.exit(SKIPPED)


def run(command, folder, limit):
    """Runs a command with `folder` as home and working directory; its output.
    Past `limit` seconds it and its children are ended and the test fails."""
    environment = dict(os.environ, HOME=folder, PATH=SEARCH_PATH, LC_ALL="C")
    process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                               errors="replace", start_new_session=True)
    try:
        return process.communicate(timeout=limit)[0]
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        print(process.communicate()[0])
        fail(f"{command[0]} did not end within {limit} s")


def fail(*lines):
    print("FAULT:", *lines, sep="\n")
    sys.exit(1)


def read(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()
