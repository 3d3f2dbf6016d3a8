"""Checks the packages of a release as those who get them do: unpacks each, and
has its engine search the node signature; the source is built first.

Usage: check_release.py FOLDER [FILE...]      default: all files there
"""

import pathlib
import shutil
import subprocess
import sys
import tarfile
import tempfile
import zipfile

import check_packages
from check_signature import check as check_signature

ROOT = pathlib.Path(__file__).resolve().parents[2]
SIGNATURE = ROOT / "tests/data/signature.txt"
QEMU = ["qemu-aarch64", "-L", "/usr/aarch64-linux-gnu"]
RULES = {".deb": check_packages.check_deb, ".gz": check_packages.check_tar,
         ".zip": check_packages.check_zip}


def build_source(folder):
    """Builds an unpacked source as its README says; the program."""
    build = folder / "build"
    for command in (["cmake", "-S", folder, "-B", build, "-G", "Ninja", "-DMIRVO_TESTS=OFF"],
                    ["cmake", "--build", build, "--target", "mirvo"]):
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return build / "shell/mirvo"


def lintian_complaints(package):
    """What Debian's own checker says; that nobody has a domain is known."""
    if not shutil.which("lintian"):
        return []
    said = subprocess.run(["lintian", "--no-cfg", "--allow-root", package], check=False, text=True,
                          stdout=subprocess.PIPE).stdout
    return [line for line in said.splitlines() if "bogus-mail-host" not in line]


def wine_loader(scratch):
    """Wine with its files in the scratch folder, ended by the caller, and real
    Windows pipes: Wine cannot tell whether input waits in those of this system."""
    driver = scratch / "pipe_driver.exe"
    subprocess.run(["x86_64-w64-mingw32-g++-posix", "-std=c++20", "-static", "-I", ROOT,
                    ROOT / "tests/windows/pipe_driver.cpp", "-o", driver], check=True)
    return [ROOT / "tests/windows/run_in_wine", scratch / "wine", driver]


def check_source(path, scratch):
    with tarfile.open(path) as archive:
        archive.extractall(scratch)
    program = build_source(scratch / path.name.removesuffix(".tar.gz"))
    return check_signature(SIGNATURE, [program])


def check_web_zip(path, scratch, files):
    """The page holds the engine of the npm package, which is started there."""
    with zipfile.ZipFile(path) as archive:
        pages = [name for name in archive.namelist() if name.endswith("index.html")]
        programs = [archive.read(name) for name in archive.namelist() if name.endswith(".wasm")]
    faults = (len(pages) == 0) + (len(programs) != 1)
    for package in [file for file in files if file.suffix == ".tgz"]:
        with tarfile.open(package) as archive:
            data = archive.extractfile("package/mirvo.wasm").read()
        faults += data not in programs
    if faults:
        print(f"{path.name} lacks its page or the engine of the npm package")
    return faults


def check_npm(path, scratch):
    with tarfile.open(path) as archive:
        archive.extractall(scratch)
    return check_signature(SIGNATURE, ["node", scratch / "package/bin/mirvo.mjs"])


def check_program_package(path, scratch):
    """A package of the engine for one system: contents, hardening, signature."""
    hardened = path.suffix == ".deb"
    faults = RULES[path.suffix](path, hardened)
    if path.suffix == ".deb":
        for complaint in lintian_complaints(path):
            print(complaint)
            faults += 1
        subprocess.run(["dpkg-deb", "-x", path, scratch], check=True)
        program = scratch / "usr/bin/mirvo"
        emulated = "_arm64" in path.name
    else:
        program, _ = check_packages.unpacked_program(path, scratch)
        emulated = "aarch64" in path.name
    loader = QEMU if emulated else []
    if path.suffix == ".zip":
        loader = wine_loader(scratch)
    try:
        return faults + check_signature(SIGNATURE, [*loader, program])
    finally:
        if path.suffix == ".zip":
            subprocess.run([ROOT / "tests/windows/wine_session", scratch / "wine", "stop"],
                           check=False)


def check_file(path, files):
    with tempfile.TemporaryDirectory(prefix="mirvo-release-") as folder:
        scratch = pathlib.Path(folder)
        if path.name == "mirvo-web.zip":
            return check_web_zip(path, scratch, files)
        if path.suffix == ".tgz":
            return check_npm(path, scratch)
        if path.suffix == ".gz" and "-Linux-" not in path.name:
            return check_source(path, scratch)
        return check_program_package(path, scratch)


def main(folder, *names):
    files = sorted(path for path in pathlib.Path(folder).iterdir() if path.name != "SHA256SUMS")
    faults = 0
    for path in files:
        if names and path.name not in names:
            continue
        print(f"-- {path.name}", flush=True)
        faults += check_file(path, files)
    done = subprocess.run(["sha256sum", "--quiet", "--check", "SHA256SUMS"], cwd=folder, check=False)
    return 1 if faults or done.returncode or not files else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
