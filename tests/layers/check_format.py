"""Checks that clang-format would change nothing. Exit status 77 (skipped) when
clang-format is not installed.

Usage: check_format.py SOURCE_ROOT
"""

import os
import pathlib
import shutil
import subprocess
import sys

import layer_table

TOOLS = ["clang-format-14", "clang-format"]


def main():
    root = pathlib.Path(sys.argv[1])
    tool = next((t for t in TOOLS if shutil.which(t)), None)
    if tool is None:
        print("SKIP: clang-format is not installed")
        return 77
    files = layer_table.sources(root, {".h", ".cpp"})
    for folder in ("tests", "bench"):
        files += sorted(str(p.relative_to(root)) for p in (root / folder).rglob("*")
                        if p.suffix in {".h", ".cpp"})
    result = subprocess.run([tool, "--dry-run", "--Werror", "--ferror-limit=1", *files], cwd=root,
                            env=dict(os.environ, LC_ALL="C"), check=False)
    print(f"{len(files)} files checked with {tool}")
    return result.returncode


if __name__ == "__main__":
    sys.exit(main())
