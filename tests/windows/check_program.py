"""Checks that a Windows program needs only system libraries, and that its stack is
large enough.

    check_program.py OBJDUMP PROGRAM
"""

import re
import subprocess
import sys

# Libraries that every Windows has.
SYSTEM_LIBRARIES = {"kernel32.dll", "msvcrt.dll", "user32.dll", "advapi32.dll"}
STACK_SIZE = 16 * 1024 * 1024


def main(objdump, program):
    headers = subprocess.run([objdump, "-p", program], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    imported = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    stack = int(re.search(r"SizeOfStackReserve\s+([0-9a-f]+)", headers).group(1), 16)
    print("imports:", *sorted(imported), "stack:", stack)
    faults = []
    if not imported:
        faults.append("no import list was found")
    if imported - SYSTEM_LIBRARIES:
        faults.append(f"needs {sorted(imported - SYSTEM_LIBRARIES)} beside it")
    if stack != STACK_SIZE:
        faults.append(f"has a stack of {stack} bytes instead of {STACK_SIZE}")
    if "pei-x86-64" not in headers:
        faults.append("is no program for x86-64")
    for fault in faults:
        print(f"{program} {fault}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
