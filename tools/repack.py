"""Writes archives anew so that equal contents are equal bytes: names in order,
one time for all, nobody's user, the two usual file rights.

Usage: repack.py SECONDS ARCHIVE...   (.tar.gz, .tgz, .zip; SECONDS since 1970)
"""

import gzip
import io
import pathlib
import stat
import sys
import tarfile
import time
import zipfile

EXECUTABLE, PLAIN = 0o755, 0o644


def rights(mode, is_folder=False):
    return EXECUTABLE if is_folder or mode & stat.S_IXUSR else PLAIN


def repack_tar(path, seconds):
    members = []
    with tarfile.open(path) as archive:
        for member in archive.getmembers():
            data = archive.extractfile(member).read() if member.isfile() else None
            members.append((member, data))
    packed = io.BytesIO()
    with tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as archive:
        for member, data in sorted(members, key=lambda pair: pair[0].name):
            member.mtime = seconds
            member.uid = member.gid = 0
            member.uname = member.gname = "root"
            member.mode = rights(member.mode, member.isdir())
            member.pax_headers = {}
            archive.addfile(member, io.BytesIO(data) if data is not None else None)
    path.write_bytes(gzip.compress(packed.getvalue(), 9, mtime=0))


def repack_zip(path, seconds):
    with zipfile.ZipFile(path) as archive:
        files = [(info, archive.read(info)) for info in archive.infolist() if not info.is_dir()]
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for info, data in sorted(files, key=lambda pair: pair[0].filename):
            plain = zipfile.ZipInfo(info.filename, time.gmtime(seconds)[:6])
            plain.create_system = 3  # Unix, whose rights these are
            plain.external_attr = (stat.S_IFREG | rights(info.external_attr >> 16)) << 16
            plain.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(plain, data)


def repack(path, seconds):
    if path.suffix == ".zip":
        repack_zip(path, seconds)
    else:
        repack_tar(path, seconds)


if __name__ == "__main__":
    for name in sys.argv[2:]:
        repack(pathlib.Path(name), int(sys.argv[1]))
