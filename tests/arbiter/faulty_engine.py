"""A UCI engine that plays the first legal move and commits one fault on its third
move, or in every game, which the arbiter and the soak must notice. "slow" takes
time for every move, which is a fault only with a short clock.

Usage: faulty_engine.py FAULT   (see `answer` and `begin_game`; "none" for none)
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


kept = []  # memory that a leaking engine never frees


def begin_game(fault):
    if fault == "leak":
        kept.append(bytearray(b"x" * 3_000_000))
    elif fault == "files":
        kept.append(open(os.devnull, encoding="ascii"))


def answer(fault, position, ponders=False):
    """Answers one "go", with the fault if it is due."""
    move = move_text(position.legal_moves()[0])
    expected = ""
    if fault == "illegal":
        move = "e1e8"
    elif fault == "null":
        move = "0000"
    elif fault == "time":
        time.sleep(1.2)
    elif fault == "slow":
        time.sleep(0.1)
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
    if ponders and not expected and move in map(move_text, position.legal_moves()):
        replies = position.play(find_move(position, move)).legal_moves()
        expected = " ponder " + move_text(replies[0]) if replies else ""
    say("bestmove " + move + expected)


def main():
    fault = sys.argv[1]
    position, searches, ponders, pondering = Position(), 0, False, False
    for line in sys.stdin:
        line = line.strip()
        if line == "uci":
            say("uciok")
        elif line == "isready":
            say("readyok")
        elif line.startswith("position"):
            position = read_position(line)
        elif line == "ucinewgame":
            begin_game(fault)
        elif line.startswith("setoption name Ponder"):
            ponders = line.endswith("true")
        elif line.startswith("go ponder") and fault != "early":
            pondering = True
        elif line.startswith("go") or (pondering and line in ("stop", "ponderhit")):
            searches, pondering = searches + 1, False
            due = searches == 3 or fault == "slow"
            answer(fault if due else "none", position, ponders)
        elif line == "quit":
            sys.exit(4 if fault == "status" else 0)


if __name__ == "__main__":
    main()
