"""Makes the packages of a build folder and checks their contents.

    check_packages.py CPACK BUILD_FOLDER Linux|Windows [LOADER...]

LOADER is the command that runs a Windows program: given one, the unpacked program
is started in its folder as an interface does.
Status 77 (skipped) where Debian's tools are missing.
"""

import pathlib
import posixpath
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import zipfile

SKIPPED = 77

# What CPack calls to make a .deb.
DEBIAN_TOOLS = ["dpkg-deb", "dpkg-shlibdeps", "file"]

# Below the root of the file system (.deb) or the package's own folder.
ON_LINUX = [
    "bin/mirvo",
    "bin/mirvo-play",
    "bin/mirvo-window",
    "share/applications/mirvo.desktop",
    "share/games/plugins/uci/mirvo.eng",
    "share/icons/hicolor/scalable/apps/mirvo.svg",
    "share/man/man6/mirvo.6",
    "share/man/man6/mirvo-window.6",
    "share/mirvo/book.bk",
    "share/mirvo/config.txt",
    "share/mirvo/mirvo-suite.epd",
    "share/doc/mirvo/README.md",
    "share/doc/mirvo/LICENCE.txt",
    "share/doc/mirvo/docs/options.md",
    "share/doc/mirvo/docs/performance.md",
]
OPENING = "uci\nisready\nposition startpos\ngo depth 1\n"
ON_WINDOWS = ["mirvo.exe", "README.md", "LICENCE.txt", "config.txt", "book.bk", "mirvo-suite.epd",
              "docs/performance.md", "docs/windows.md"]
PICTURE = re.compile(r"!\[[^\]]*\]\(([^)]+)\)")


def pictures(names, read):
    """Names of the pictures that the documents among the names show."""
    for name in names:
        if name.endswith(".md"):
            for target in PICTURE.findall(read(name).decode()):
                yield posixpath.join(posixpath.dirname(name), target)


def complain(package, names, read, wanted, root):
    """Number of faults of a list of names; read(name) gives a file's bytes."""
    missing = [root + name for name in wanted if root + name not in names]
    missing += [name for name in pictures(names, read) if name not in names]
    libraries = [name for name in names if name.endswith((".a", ".lib", ".dll", ".so"))]
    for name in missing:
        print(f"{package.name} lacks {name}")
    for name in libraries:
        print(f"{package.name} holds {name}")
    unsafe = [name for name in names
              if name.endswith("/config.txt") and b"MoveOverhead=50" not in read(name)]
    for name in unsafe:
        print(f"{package.name} lets moves overdraw the clock: {name}")
    return len(missing) + len(libraries) + len(unsafe)


def complain_of_tar(package, archive, root):
    return complain(package, archive.getnames(), lambda name: archive.extractfile(name).read(),
                    ON_LINUX, root)


def check_deb(package):
    listing = subprocess.run(["dpkg-deb", "--fsys-tarfile", package], check=True,
                             stdout=subprocess.PIPE).stdout
    with tempfile.TemporaryFile() as file:
        file.write(listing)
        file.seek(0)
        with tarfile.open(fileobj=file) as archive:
            faults = complain_of_tar(package, archive, "./usr/")
    fields = subprocess.run(["dpkg-deb", "--field", package], check=True, text=True,
                            stdout=subprocess.PIPE).stdout
    for field in ("Package: mirvo\n", "Version: 0.2.7", "Section: games\n", "Depends: libc6",
                  "Recommends: xboard, polyglot\n"):
        if field not in fields:
            print(f"{package.name} does not say {field.strip()!r}")
            faults += 1
    return faults


def check_tar(package):
    root = package.name.removesuffix(".tar.gz") + "/"
    with tarfile.open(package) as archive:
        return complain_of_tar(package, archive, root)


def check_start(package, loader):
    """The unpacked engine finds its settings and its book, and ends on quit."""
    with tempfile.TemporaryDirectory(prefix="mirvo unpacked ") as scratch:
        with zipfile.ZipFile(package) as archive:
            archive.extractall(scratch)
        folder = pathlib.Path(scratch) / package.stem
        done = subprocess.run([*loader, folder / "mirvo.exe"], cwd=folder, text=True,
                              input=OPENING + "quit\n", stdout=subprocess.PIPE, timeout=60,
                              check=False)
        log = next(folder.glob("*_log.txt"), None)
    faults = []
    if done.returncode != 0:
        faults.append(f"ends with status {done.returncode}")
    if "not found" in done.stdout:
        faults.append("lacks a file at its start")
    for answer in ("uciok", "readyok", "bestmove "):
        if answer not in done.stdout:
            faults.append(f"does not answer {answer!r}")
    if "info depth" in done.stdout:
        faults.append("searches for a first move that its book holds")
    if log is None:
        faults.append("writes no log into its folder")
    for fault in faults:
        print(f"the engine of {package.name} {fault}")
    if faults:
        print(done.stdout)
    return len(faults)


def check_zip(package):
    root = package.stem + "/"
    with zipfile.ZipFile(package) as archive:
        faults = complain(package, archive.namelist(), archive.read, ON_WINDOWS, root)
        settings = archive.read(root + "config.txt")
    if settings.count(b"\n") != settings.count(b"\r\n"):
        print("config.txt does not end lines as Windows does")
        faults += 1
    return faults


CHECKS = {"Linux": {".deb": check_deb, ".gz": check_tar}, "Windows": {".zip": check_zip}}


def main(cpack, build_folder, platform, *loader):
    missing = [tool for tool in DEBIAN_TOOLS if not shutil.which(tool)]
    if platform == "Linux" and missing:
        print(f"SKIP: {', '.join(missing)} not installed")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        made = subprocess.run([cpack, "--config", build_folder + "/CPackConfig.cmake", "-B", folder],
                              cwd=build_folder, check=False, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if made.returncode != 0:
            print(made.stdout)
            return 1
        faults = 0
        for ending, check in CHECKS[platform].items():
            packages = list(pathlib.Path(folder).glob("mirvo-*" + ending))
            if len(packages) != 1:
                print(f"{len(packages)} packages end in {ending}")
                faults += 1
                continue
            faults += check(packages[0])
            if loader and not faults:
                faults += check_start(packages[0], loader)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
