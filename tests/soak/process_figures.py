"""Figures of a process from the system: memory, open files, and how long it waited
for a processor."""

import os


def status_kilobytes(pid, field="VmRSS"):
    """A size of /proc/PID/status in kilobytes."""
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        for line in status:
            if line.startswith(field + ":"):
                return int(line.split()[1])
    return 0


def open_files(pid):
    return len(os.listdir(f"/proc/{pid}/fd"))


def waited(pid, thread=None):
    """Milliseconds that a process's thread (default: the first) was ready to
    run while others had the processors, since its start. 0 where the system
    does not count them."""
    path = f"/proc/{pid}/task/{thread or pid}/schedstat"
    try:
        with open(path, encoding="ascii") as figures:
            return int(figures.read().split()[1]) / 1e6
    except (OSError, IndexError, ValueError):
        return 0.0


def processor_time(pid):
    """Milliseconds of processor time used by a process of one thread."""
    try:
        with open(f"/proc/{pid}/schedstat", encoding="ascii") as figures:
            return int(figures.read().split()[0]) / 1e6
    except (OSError, IndexError, ValueError):  # only in ticks then
        with open(f"/proc/{pid}/stat", encoding="ascii") as figures:
            fields = figures.read().rpartition(")")[2].split()
        return 1000 * (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
