"""The rules of chess for checking engines: slow, short and independent of the
engine's own code.

A position is a 10x12 mailbox: index 21 is a1, 28 is h1, 98 is h8; a frame of
"#" surrounds the board so that steps off it need no arithmetic. Pieces are
their FEN letters, "." is an empty square.
"""

import collections
import re

START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"

NORTH, EAST, SOUTH, WEST = 10, 1, -10, -1
STRAIGHT = [NORTH, EAST, SOUTH, WEST]
DIAGONAL = [NORTH + EAST, SOUTH + EAST, SOUTH + WEST, NORTH + WEST]
JUMPS = [21, 12, -8, -19, -21, -12, 8, 19]
STEPS = {"n": JUMPS, "b": DIAGONAL, "r": STRAIGHT, "q": STRAIGHT + DIAGONAL,
         "k": STRAIGHT + DIAGONAL}
SLIDERS = "brq"
PROMOTIONS = "qrbn"

# A move from or to one of these squares, by either side, ends castling rights.
RIGHTS_LOST = {25: "KQ", 21: "Q", 28: "K", 95: "kq", 91: "q", 98: "k"}

# Right -> (king's square, squares to be empty, squares not to be attacked, target).
CASTLING = {
    "K": (25, [26, 27], [25, 26, 27], 27), "Q": (25, [22, 23, 24], [25, 24, 23], 23),
    "k": (95, [96, 97], [95, 96, 97], 97), "q": (95, [92, 93, 94], [95, 94, 93], 93),
}
# King's target when castling -> the rook's squares before and after.
ROOK_JUMP = {27: (28, 26), 23: (21, 24), 97: (98, 96), 93: (91, 94)}

# A move as the protocols write it.
COORDINATES = re.compile(r"[a-h][1-8][a-h][1-8][qrbn]?$")

Move = collections.namedtuple("Move", "origin target promotion")


def square_index(name):
    return 21 + "abcdefgh".index(name[0]) + 10 * "12345678".index(name[1])


def square_name(index):
    return "abcdefgh"[index % 10 - 1] + str(index // 10 - 1)


def move_text(move):
    """Coordinate text, as in the protocols."""
    return square_name(move.origin) + square_name(move.target) + move.promotion


def is_white(piece):
    return piece.isupper()


class Position:
    """One position; `play` returns the next and never changes this one."""

    def __init__(self, fen=START):
        fields = fen.split()
        self.legal = None
        self.cells = ["#"] * 120
        for rank, row in enumerate(fields[0].split("/")):
            index = 91 - 10 * rank
            for letter in row:
                empty = int(letter) if letter.isdigit() else 0
                for cell in ["."] * empty or [letter]:
                    self.cells[index] = cell
                    index += 1
        self.white = fields[1] == "w"
        self.rights = "".join(r for r in "KQkq" if len(fields) > 2 and r in fields[2])
        has_target = len(fields) > 3 and fields[3] != "-"
        self.en_passant = square_index(fields[3]) if has_target else 0
        self.half_moves = int(fields[4]) if len(fields) > 4 else 0
        self.move_number = int(fields[5]) if len(fields) > 5 else 1

    def fen(self):
        rows = []
        for rank in range(8, 0, -1):
            row, empty = "", 0
            for cell in self.cells[10 * rank + 11:10 * rank + 19]:
                if cell == ".":
                    empty += 1
                    continue
                row += (str(empty) if empty else "") + cell
                empty = 0
            rows.append(row + (str(empty) if empty else ""))
        target = square_name(self.en_passant) if self.en_passant else "-"
        return (f"{'/'.join(rows)} {'w' if self.white else 'b'} {self.rights or '-'} {target} "
                f"{self.half_moves} {self.move_number}")

    def attacked(self, index, by_white):
        """Whether a piece of that colour attacks the square."""
        cells = self.cells
        side = str.upper if by_white else str.lower
        behind = SOUTH if by_white else NORTH
        if side("p") in (cells[index + behind + EAST], cells[index + behind + WEST]):
            return True
        for kind in "nk":
            if any(cells[index + step] == side(kind) for step in STEPS[kind]):
                return True
        for directions, kinds in ((STRAIGHT, "rq"), (DIAGONAL, "bq")):
            for step in directions:
                at = index + step
                while cells[at] == ".":
                    at += step
                if cells[at] in (side(kinds[0]), side(kinds[1])):
                    return True
        return False

    def in_check(self, white=None):
        """Whether that side's king (default: the side to move's) is attacked."""
        white = self.white if white is None else white
        return self.attacked(self.cells.index("K" if white else "k"), not white)

    def own(self, cell):
        return cell.isalpha() and is_white(cell) == self.white

    def enemy(self, cell):
        return cell.isalpha() and is_white(cell) != self.white

    def pawn_moves(self, origin):
        cells = self.cells
        step, first, last = (NORTH, 3, 9) if self.white else (SOUTH, 8, 2)
        targets = []
        if cells[origin + step] == ".":
            targets.append(origin + step)
            if origin // 10 == first and cells[origin + 2 * step] == ".":
                targets.append(origin + 2 * step)
        for target in (origin + step + EAST, origin + step + WEST):
            if self.enemy(cells[target]) or (target == self.en_passant and cells[target] == "."):
                targets.append(target)
        for target in targets:
            for promotion in PROMOTIONS if target // 10 == last else [""]:
                yield Move(origin, target, promotion)

    def piece_moves(self, origin, kind):
        for step in STEPS[kind]:
            target = origin + step
            while self.cells[target] == "." and kind in SLIDERS:
                yield Move(origin, target, "")
                target += step
            if self.cells[target] == "." or self.enemy(self.cells[target]):
                yield Move(origin, target, "")

    def castling_moves(self, origin):
        for right in self.rights:
            king, empty, safe, target = CASTLING[right]
            if is_white(right) != self.white or king != origin or any(self.cells[i] != "." for i in empty):
                continue
            if not any(self.attacked(i, not self.white) for i in safe):
                yield Move(king, target, "")

    def pseudo_legal_moves(self, origins=range(21, 99)):
        """Pseudo-legal moves of the side to move's pieces on `origins`."""
        for origin in origins:
            if not self.own(self.cells[origin]):
                continue
            kind = self.cells[origin].lower()
            yield from self.pawn_moves(origin) if kind == "p" else self.piece_moves(origin, kind)
            if kind == "k":
                yield from self.castling_moves(origin)

    def is_safe(self, move):
        """Whether a pseudo-legal move leaves the mover's king unattacked."""
        return not self.play(move).in_check(self.white)

    def legal_moves(self):
        """All legal moves; computed once for a position."""
        if self.legal is None:
            self.legal = [move for move in self.pseudo_legal_moves() if self.is_safe(move)]
        return self.legal

    def play(self, move):
        """The position after a move of `pseudo_legal_moves`."""
        after = Position.__new__(Position)
        after.legal = None
        cells = after.cells = self.cells[:]
        piece, taken = cells[move.origin], cells[move.target]
        pawn = piece.lower() == "p"
        cells[move.origin] = "."
        promoted = move.promotion.upper() if self.white else move.promotion
        cells[move.target] = promoted or piece
        if pawn and move.target == self.en_passant:
            cells[move.target + (SOUTH if self.white else NORTH)] = "."
        if piece.lower() == "k" and abs(move.target - move.origin) == 2:
            before, behind = ROOK_JUMP[move.target]
            cells[behind], cells[before] = cells[before], "."
        lost = RIGHTS_LOST.get(move.origin, "") + RIGHTS_LOST.get(move.target, "")
        after.rights = "".join(right for right in self.rights if right not in lost)
        double_step = pawn and abs(move.target - move.origin) == 2 * NORTH
        after.en_passant = (move.origin + move.target) // 2 if double_step else 0
        after.half_moves = 0 if pawn or taken != "." else self.half_moves + 1
        after.move_number = self.move_number + (0 if self.white else 1)
        after.white = not self.white
        return after

    def repetition_key(self):
        """Equal for positions that count as the same: an en-passant square matters
        only if a capture there is legal."""
        target = self.en_passant
        if target and not any(m.target == target and self.cells[m.origin].lower() == "p"
                              for m in self.legal_moves()):
            target = 0
        return ("".join(self.cells), self.white, self.rights, target)

    def insufficient_material(self):
        """Lone kings, or one minor piece, or bishops all of one square colour."""
        rest = [(cell.lower(), (i // 10 + i % 10) % 2) for i, cell in enumerate(self.cells)
                if cell.isalpha() and cell.lower() != "k"]
        if len(rest) <= 1:
            return all(kind in "bn" for kind, _ in rest)
        return all(kind == "b" for kind, _ in rest) and len({colour for _, colour in rest}) == 1


def perft(position, depth):
    """Number of legal move paths of that length."""
    if depth == 0:
        return 1
    moves = position.legal_moves()
    if depth == 1:
        return len(moves)
    return sum(perft(position.play(move), depth - 1) for move in moves)


def find_move(position, text):
    """The legal move with that coordinate text, or None."""
    if not COORDINATES.match(text):
        return None
    moves = position.pseudo_legal_moves([square_index(text)])
    return next((m for m in moves if move_text(m) == text and position.is_safe(m)), None)


SAN = re.compile(r"([NBRQK]?)([a-h]?)([1-8]?)x?([a-h][1-8])(?:=?([NBRQ]))?[+#]?$")


def find_san(position, text):
    """The one legal move that short algebraic text names, or None."""
    legal = position.legal_moves()
    if text.startswith("O-O"):
        shift = -2 if text.startswith("O-O-O") else 2
        found = [m for m in legal if position.cells[m.origin].lower() == "k"
                 and m.target - m.origin == shift]
    else:
        match = SAN.match(text)
        if match is None:
            return None
        kind, file, rank, target, promotion = match.groups("")
        found = [m for m in legal if position.cells[m.origin].upper() == (kind or "P")
                 and square_name(m.target) == target and m.promotion == promotion.lower()
                 and file in square_name(m.origin) and rank in square_name(m.origin)]
    return found[0] if len(found) == 1 else None


def outcome(position, history, ply_limit=400):
    """Why the game is over, or None: (result, reason).

    `history` holds the repetition keys of every position so far, this one
    included; its length - 1 is the number of plies played.
    """
    if not position.legal_moves():
        if position.in_check():
            return ("0-1" if position.white else "1-0", "checkmate")
        return ("1/2-1/2", "stalemate")
    if position.insufficient_material():
        return ("1/2-1/2", "insufficient material")
    if history.count(position.repetition_key()) >= 3:
        return ("1/2-1/2", "repetition")
    if position.half_moves >= 100:
        return ("1/2-1/2", "fifty moves")
    if len(history) > ply_limit:
        return ("1/2-1/2", f"adjudication at {ply_limit} plies")
    return None
