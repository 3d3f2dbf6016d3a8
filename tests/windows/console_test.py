"""A person at the keyboard: the Windows program in a console.

    console_test.py COMMAND OF THE PROGRAM...
"""

import sys
import tempfile
import time

from terminal import Terminal, plain


def main(command):
    # What to type, and what the console must show then.
    session = [("uci\r", "uciok"), ("isready\r", "readyok"), ("position startpos\r", "startpos"),
               ("go infinite\r", "info depth 4"), ("stop\r", "bestmove")]
    with tempfile.TemporaryDirectory() as folder:
        terminal = Terminal(command, folder)
        faults = []
        if not (terminal.wait_for("Ponder=") and terminal.wait_for_keys()):
            faults.append("does not start to read keys")
        for keys, answer in session:
            # One key at a time, as a hand does it.
            for key in keys:
                terminal.type(key)
                time.sleep(0.01)
            if not terminal.wait_for(answer):
                faults.append(f"does not show {answer!r} after {keys!r}")
                break
        terminal.type("quit\r")
        status = terminal.finish(20)
        if status != 0:
            faults.append(f"ends with status {status}")
    for fault in faults:
        print("the program", fault)
    if faults:
        print(plain(terminal.shown)[-3000:])
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
