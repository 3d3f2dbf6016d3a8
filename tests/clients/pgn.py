"""Reads the games of a PGN file that a chess interface wrote."""

import collections
import re

from rules import Position, find_san

Game = collections.namedtuple("Game", "tags moves result comments")


def games(text):
    """The games in order; moves are short algebraic texts as written."""
    found = []
    for chunk in re.split(r"(?=^\[Event )", text, flags=re.MULTILINE):
        tags = dict(re.findall(r'^\[(\w+) "(.*)"\]', chunk, re.MULTILINE))
        if not tags:
            continue
        body = re.sub(r"^\[.*\]$", "", chunk, flags=re.MULTILINE)
        comments = [" ".join(comment.split()) for comment in re.findall(r"\{([^}]*)\}", body)]
        words = re.sub(r"\{[^}]*\}", " ", body).split()
        results = [word for word in words if word in ("1-0", "0-1", "1/2-1/2", "*")]
        moves = [word for word in words if word not in results and not re.match(r"\d+\.", word)]
        found.append(Game(tags, moves, results[-1] if results else "*", comments))
    return found


def first_illegal_move(game):
    """The first move that the rules do not allow, or None."""
    position = Position(game.tags["FEN"]) if "FEN" in game.tags else Position()
    for text in game.moves:
        move = find_san(position, text)
        if move is None:
            return text
        position = position.play(move)
    return None
