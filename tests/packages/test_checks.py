"""Tests of what looks into packages, and of the tool that packs them."""

import io
import os
import pathlib
import subprocess
import sys
import tarfile
import tempfile
import unittest
import zipfile

import check_packages
import elf_checks

REPACK = pathlib.Path(__file__).resolve().parents[2] / "tools/repack.py"

PROGRAM = """#include <cstdio>
#include <string>
int main(int count, char** words) {
  char text[64];
  std::snprintf(text, sizeof text, words[0], count);
  return std::string(text) == std::to_string(count);
}
"""
HARDENED = ["-O2", "-D_FORTIFY_SOURCE=2", "-fstack-protector-strong", "-fPIE", "-pie",
            "-Wl,-z,relro,-z,now"]


class WithFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)


class Programs(WithFolder):
    def build(self, *options):
        source, program = self.folder / "p.cpp", self.folder / "p"
        source.write_text(PROGRAM, encoding="ascii")
        subprocess.run(["g++", "-w", *options, source, "-o", program], check=True)
        return program

    def test_a_hardened_program_is_one(self):
        self.assertEqual(elf_checks.check_hardening(self.build(*HARDENED)), [])

    def test_each_part_that_lacks_is_named(self):
        for without, instead, complaint in [
                ("-pie", "-no-pie", "is not position-independent"),
                ("-fstack-protector-strong", "-fno-stack-protector", "has no guarded stack"),
                ("-D_FORTIFY_SOURCE=2", "-U_FORTIFY_SOURCE", "copies memory unchecked"),
                ("-Wl,-z,relro,-z,now", "-Wl,-z,relro,-z,lazy", "binds functions lazily"),
                ("-Wl,-z,relro,-z,now", "-Wl,-z,norelro,-z,now", "can write to its relocated data"),
                ("-O2", "-O2 -Wl,-z,execstack", "can run its stack")]:
            with self.subTest(instead=instead):
                options = " ".join(HARDENED).replace(without, instead, 1)
                if without == "-pie":
                    options = options.replace("-fPIE", "-fno-pie")
                self.assertEqual(elf_checks.check_hardening(self.build(*options.split())),
                                 [complaint])

    def test_libraries_asked_for(self):
        program = self.build("-O2")
        enough = "Depends: libc6 (>= 2.36), libgcc-s1 (>= 3.0), libstdc++6 (>= 12)\n"
        self.assertEqual(elf_checks.check_depends(program, enough), [])
        old = enough.replace("2.36", "2.3")
        self.assertEqual(len(elf_checks.check_depends(program, old)), 1)
        self.assertEqual(len(elf_checks.check_depends(program, "Suggests: xboard\n")), 3)


class Archives(WithFolder):
    """The same two files, written by different people at different times."""

    def tar(self, name, *members):
        path = self.folder / name / "archive.tar.gz"
        path.parent.mkdir()
        with tarfile.open(path, "w:gz") as archive:
            for number, (member, mode) in enumerate(members):
                info = tarfile.TarInfo(member)
                info.size, info.mode = len(member), mode
                info.mtime = info.uid = number
                info.uname = name
                archive.addfile(info, io.BytesIO(member.encode()))
        return path

    def zip(self, name, *members):
        path = self.folder / (name + ".zip")
        with zipfile.ZipFile(path, "w") as archive:
            for year, (member, mode) in enumerate(members, 1990):
                info = zipfile.ZipInfo(member, (year, 1, 1, 0, 0, 0))
                info.external_attr = mode << 16
                archive.writestr(info, member)
        return path

    def repacked(self, path):
        os.utime(path, (1, 1))
        subprocess.run([sys.executable, REPACK, "1000000000", path], check=True)
        return path.read_bytes()

    def test_equal_contents_are_equal_bytes(self):
        files, others = [("a/b1", 0o700), ("a/c2", 0o640)], [("a/c2", 0o664), ("a/b1", 0o755)]
        for pack in (self.tar, self.zip):
            with self.subTest(pack=pack.__name__):
                data = self.repacked(pack("one", *files))
                self.assertEqual(data, self.repacked(pack("two", *others)))
                self.assertNotEqual(data, self.repacked(pack("three", files[0])))

    def test_contents_and_rights_stay(self):
        path = self.tar("one", ("a/b1", 0o700), ("a/c2", 0o640))
        self.repacked(path)
        with tarfile.open(path) as archive:
            self.assertEqual([(m.name, m.mode, m.mtime, m.uname) for m in archive.getmembers()],
                             [("a/b1", 0o755, 1000000000, "root"),
                              ("a/c2", 0o644, 1000000000, "root")])
            self.assertEqual(archive.extractfile("a/c2").read(), b"a/c2")

    def test_a_package_made_differently_is_noticed(self):
        one, two = self.tar("one", ("p/aa", 0o644)), self.tar("two", ("p/bb", 0o644))
        self.assertEqual(check_packages.check_equal([one], [one]), 0)
        self.assertEqual(check_packages.check_equal([one], [two]), 1)
        self.assertEqual(check_packages.check_equal([one], []), 1)

    def test_the_place_where_it_was_made_is_noticed(self):
        text = {"p/config.txt": b"MoveOverhead=50", "p/x": str(check_packages.ROOT).encode()}
        self.assertEqual(check_packages.complain(self.folder, text, text.get, [], "p/"), 1)


if __name__ == "__main__":
    unittest.main()
