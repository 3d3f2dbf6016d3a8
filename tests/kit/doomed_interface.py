"""Plays an interface that is going to be killed: starts a program with pipes to
it, says what is asked for, tells the program's number and waits.

    doomed_interface.py PROGRAM [BEGINNING LINE...]

It waits for a line with the beginning before it tells the number. Without one
the program's output goes nowhere.
"""

import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from kit.engine_process import DROPPED, PIPE, EngineProcess  # noqa: E402


def main(program, beginning=None, *lines):
    with EngineProcess([program], output=PIPE if beginning else DROPPED) as engine:
        engine.send(*lines)
        if beginning:
            engine.wait_for_line(beginning)
        print(engine.pid, flush=True)
        engine.wait()


if __name__ == "__main__":
    main(*sys.argv[1:])
