"""Checks that every header compiles alone and can be included twice.

Usage: check_headers.py SOURCE_ROOT COMPILER
"""

import concurrent.futures
import os
import subprocess
import sys

import layer_table

FLAGS = ["-std=c++20", "-fsyntax-only", "-x", "c++", "-Wall", "-Wextra", "-Wpedantic", "-Wshadow",
         "-Wconversion", "-Wformat=2", "-Werror"]


def compile_alone(root, compiler, header):
    """The compiler's messages about a file that includes nothing else."""
    text = f'#include "{header}"\n#include "{header}"\n'
    result = subprocess.run([compiler, *FLAGS, "-I", root, "-"], input=text, text=True,
                            capture_output=True, check=False)
    return result.stderr if result.returncode else ""


def main():
    root, compiler = sys.argv[1:]
    headers = layer_table.sources(root, {".h"})
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        messages = list(pool.map(lambda h: compile_alone(root, compiler, h), headers))
    failed = [header for header, message in zip(headers, messages) if message]
    for header, message in zip(headers, messages):
        if message:
            print(f"{header} does not compile alone:\n{message}")
    print(f"{len(headers)} headers, {len(failed)} failures")
    return 1 if failed or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
