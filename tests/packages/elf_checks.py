"""What a program for Linux says of itself, read by readelf: its processor, the
library versions that it needs, and whether it is hardened."""

import re
import subprocess

# readelf's name of a processor, and Debian's.
MACHINES = {"Advanced Micro Devices X86-64": "amd64", "AArch64": "arm64", "IBM S/390": "s390x"}

# The newest symbol version of each release of the C++ library that mattered so
# far; a newer one has to be added here.
CXX_RELEASES = {28: 10, 29: 11, 30: 12}


def readelf(program, *options):
    return subprocess.run(["readelf", "-W", *options, program], check=True, text=True,
                          stdout=subprocess.PIPE).stdout


def machine_name(program):
    machine = re.search(r"Machine:\s+(.*)", readelf(program, "-h"))[1].strip()
    return MACHINES.get(machine, machine)


def needed_versions(program):
    """{package: lowest version that has what the program asks for}, as numbers."""
    text = readelf(program, "-V")
    c_library = max(tuple(map(int, found.split(".")))
                    for found in re.findall(r"GLIBC_([\d.]+)", text))
    cxx_library = max(int(found) for found in re.findall(r"GLIBCXX_3\.4\.(\d+)", text))
    return {"libc6": c_library,
            "libstdc++6": (min(release for newest, release in CXX_RELEASES.items()
                               if newest >= cxx_library),),
            "libgcc-s1": (3, 0)}


def check_depends(program, fields):
    """Complaints about a package's Depends line."""
    line = re.search(r"^Depends: (.*)$", fields, re.MULTILINE)
    said = {name: tuple(map(int, version.split(".")))
            for name, version in re.findall(r"([\w+-]+) \(>= ([\d.]+)\)", line[1] if line else "")}
    return [f"depends on {name} {said.get(name)}, its program on {version}"
            for name, version in needed_versions(program).items()
            if said.get(name, (0,)) < version]


def check_hardening(program):
    """Complaints about a program that lacks what Debian gives its own."""
    headers, dynamic = readelf(program, "-h", "-l"), readelf(program, "-d")
    symbols = readelf(program, "--dyn-syms")
    stack = re.search(r"GNU_STACK.*", headers)
    wanted = {
        "is not position-independent": "DYN (Position-Independent" in headers,
        "can write to its relocated data": "GNU_RELRO" in headers,
        "binds functions lazily": re.search(r"FLAGS_1.*NOW", dynamic) is not None,
        "has no guarded stack": "__stack_chk_fail" in symbols,
        "copies memory unchecked": re.search(r"__\w+_chk@", symbols.replace("__stack_chk", ""))
                                   is not None,
        "can run its stack": stack is not None and " RWE " not in stack[0],
    }
    return [complaint for complaint, holds in wanted.items() if not holds]
