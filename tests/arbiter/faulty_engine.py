"""A UCI engine that plays the first legal move and commits one fault on its
third move: what the arbiter must notice.

Usage: faulty_engine.py FAULT   (see `answer` for the faults; "none" for none)
"""

import os
import sys
import time

from rules import START, Position, find_move, move_text


def say(line):
    print(line, flush=True)


def read_position(line):
    before, _, moves = line.partition(" moves ")
    position = Position(before.removeprefix("position fen ") if " fen " in before else START)
    for text in moves.split():
        position = position.play(find_move(position, text))
    return position


def answer(fault, position):
    """Answers one "go", with the fault if it is due."""
    move = move_text(position.legal_moves()[0])
    expected = ""
    if fault == "illegal":
        move = "e1e8"
    elif fault == "null":
        move = "0000"
    elif fault == "time":
        time.sleep(1.2)
    elif fault == "hang":
        return
    elif fault == "double":
        say("bestmove " + move)
    elif fault == "death":
        os._exit(3)
    elif fault == "line":
        say("info depth 1 score cp 0 pv e1e8")
    elif fault == "reply":
        expected = " ponder e1e8"
    elif fault == "form":
        move += " thinking"
    say("bestmove " + move + expected)


def main():
    fault = sys.argv[1]
    position, searches = Position(), 0
    for line in sys.stdin:
        line = line.strip()
        if line == "uci":
            say("uciok")
        elif line == "isready":
            say("readyok")
        elif line.startswith("position"):
            position = read_position(line)
        elif line.startswith("go"):
            searches += 1
            answer(fault if searches == 3 else "none", position)
        elif line == "quit":
            sys.exit(4 if fault == "status" else 0)


if __name__ == "__main__":
    main()
