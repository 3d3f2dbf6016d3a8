"""Makes the packages of a build folder, twice, and checks what they hold.

    check_packages.py [--hardened] CPACK BUILD_FOLDER Linux|Windows [LOADER...]

LOADER is the command that runs a program for another system or processor: given
one, the unpacked program is started in its folder as an interface does it. With
--hardened the program must be one as Debian makes its own.
Status 77 (skipped) where Debian's tools are missing.
"""

import os
import pathlib
import posixpath
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import zipfile

from elf_checks import check_depends, check_hardening, machine_name

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77

# What CPack calls to make a .deb, and what looks into a program.
DEBIAN_TOOLS = ["dpkg-deb", "dpkg-shlibdeps", "file", "readelf"]

# Below the root of the file system (.deb) or the package's own folder.
ON_LINUX = [
    "bin/mirvo",
    "bin/mirvo-play",
    "bin/mirvo-window",
    "share/applications/mirvo.desktop",
    "share/games/plugins/uci/mirvo.eng",
    "share/icons/hicolor/scalable/apps/mirvo.svg",
    "share/man/man6/mirvo.6.gz",
    "share/man/man6/mirvo-play.6.gz",
    "share/man/man6/mirvo-window.6.gz",
    "share/mirvo/book.bk",
    "share/mirvo/config.txt",
    "share/mirvo/mirvo-suite.epd",
    "share/doc/mirvo/README.md",
    "share/doc/mirvo/LICENCE.txt",
    "share/doc/mirvo/copyright",
    "share/doc/mirvo/changelog.gz",
    "share/doc/mirvo/changelog.Debian.gz",
    "share/doc/mirvo/docs/options.md",
    "share/doc/mirvo/docs/performance.md",
]
FIELDS = ["Package: mirvo\n", "Version: 0.2.7-1\n", "Section: games\n", "Depends: libc6 (>= ",
          "Maintainer: Tavelin <", "Recommends: xboard, polyglot\n"]
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
    telling = [name for name in names if str(ROOT).encode() in read(name)]
    for name in telling:
        print(f"{package.name} tells where it was made: {name}")
    return len(missing) + len(libraries) + len(unsafe) + len(telling)


def complain_of_tar(package, archive, root):
    def read(name):
        member = archive.getmember(name)
        return archive.extractfile(member).read() if member.isfile() else b""

    faults = complain(package, archive.getnames(), read, ON_LINUX, root)
    for member in archive.getmembers():
        wanted = (0o755,) if member.isdir() else (0o644, 0o755)
        if member.mode not in wanted:
            print(f"{package.name}: {member.name} has the rights {member.mode:o}")
            faults += 1
    # A compressed text notes no time and no name.
    for name in archive.getnames():
        if name.endswith(".gz") and read(name)[3:8] != bytes(5):
            print(f"{package.name}: {name} notes when it was made")
            faults += 1
    return faults


def check_deb(package, hardened):
    with tempfile.TemporaryDirectory(prefix="mirvo-unpacked-") as folder:
        contents = pathlib.Path(folder) / "contents.tar"
        with open(contents, "wb") as file:
            subprocess.run(["dpkg-deb", "--fsys-tarfile", package], check=True, stdout=file)
        with tarfile.open(contents) as archive:
            faults = complain_of_tar(package, archive, "./usr/")
            archive.extract("./usr/bin/mirvo", folder)
        program = pathlib.Path(folder) / "usr/bin/mirvo"
        fields = subprocess.run(["dpkg-deb", "--field", package], check=True, text=True,
                                stdout=subprocess.PIPE).stdout
        complaints = [f"does not say {field.strip()!r}" for field in FIELDS if field not in fields]
        if f"Architecture: {machine_name(program)}\n" not in fields:
            complaints.append("is for another processor than its program")
        complaints += check_depends(program, fields)
        if hardened:
            complaints += check_hardening(program)
    for complaint in complaints:
        print(f"{package.name} {complaint}")
    return faults + len(complaints)


def check_tar(package, _hardened):
    root = package.name.removesuffix(".tar.gz") + "/"
    with tarfile.open(package) as archive:
        return complain_of_tar(package, archive, root)


def check_zip(package, _hardened):
    root = package.stem + "/"
    with zipfile.ZipFile(package) as archive:
        faults = complain(package, archive.namelist(), archive.read, ON_WINDOWS, root)
        settings = archive.read(root + "config.txt")
    if settings.count(b"\n") != settings.count(b"\r\n"):
        print("config.txt does not end lines as Windows does")
        faults += 1
    return faults


def unpacked_program(package, scratch):
    """Unpacks a zip or tar.gz: (the program, the folder with settings and book)."""
    shutil.unpack_archive(package, scratch)
    if package.suffix == ".zip":
        folder = pathlib.Path(scratch) / package.stem
        return folder / "mirvo.exe", folder
    folder = pathlib.Path(scratch) / package.name.removesuffix(".tar.gz")
    return folder / "bin/mirvo", folder / "share/mirvo"


def check_start(package, loader):
    """The unpacked engine finds its settings and its book, and ends on quit."""
    with tempfile.TemporaryDirectory(prefix="mirvo unpacked ") as scratch:
        program, folder = unpacked_program(package, scratch)
        done = subprocess.run([*loader, program], cwd=folder, text=True,
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


CHECKS = {"Linux": {".deb": check_deb, ".gz": check_tar}, "Windows": {".zip": check_zip}}


def make_packages(cpack, build_folder, folder, zone):
    """Makes them in a folder of any name, for somebody in any time zone, and packs
    the archives as a release does. Returns the package time that CPack was told."""
    made = subprocess.run([cpack, "--config", build_folder + "/CPackConfig.cmake", "-B", folder],
                          cwd=build_folder, check=False, text=True, umask=0o022,
                          env={**os.environ, "TZ": zone},
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if made.returncode != 0:
        sys.exit(made.stdout)
    times = pathlib.Path(build_folder, "package_time.cmake").read_text(encoding="utf-8")
    seconds = re.search(r"SOURCE_DATE_EPOCH\} (\d+)", times)[1]
    packages = [path for path in sorted(pathlib.Path(folder).glob("mirvo*"))
                if path.suffix in (".deb", ".gz", ".zip")]
    archives = [path for path in packages if path.suffix != ".deb"]
    subprocess.run([sys.executable, ROOT / "tools/repack.py", seconds, *archives], check=True)
    return packages


def check_equal(packages, others):
    names = [path.name for path in packages]
    if names != [path.name for path in others]:
        print(f"made once: {names}, made twice: {[path.name for path in others]}")
        return 1
    differing = [path.name for path, other in zip(packages, others)
                 if path.read_bytes() != other.read_bytes()]
    for name in differing:
        print(f"{name} is another one when it is made again")
    return len(differing)


def main(words):
    hardened = words[0] == "--hardened"
    cpack, build_folder, platform, *loader = words[hardened:]
    missing = [tool for tool in DEBIAN_TOOLS if not shutil.which(tool)]
    if platform == "Linux" and missing:
        print(f"SKIP: {', '.join(missing)} not installed")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder, \
            tempfile.TemporaryDirectory(prefix="mirvo-made-again-") as again:
        packages = make_packages(cpack, build_folder, folder, "Pacific/Auckland")
        faults = check_equal(packages, make_packages(cpack, build_folder, again, "UTC"))
        for ending, check in CHECKS[platform].items():
            found = [path for path in packages if path.suffix == ending]
            if len(found) != 1:
                print(f"{len(found)} packages end in {ending}")
                faults += 1
                continue
            faults += check(found[0], hardened)
            if loader and ending != ".deb" and not faults:
                faults += check_start(found[0], loader)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
