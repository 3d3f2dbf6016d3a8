"""Games and positions beyond those of real chess: the program plays on correctly."""

import random

import fault_kit
import rules

PLIES = 1200

# The longest move list in one line: 4095 characters, including the line end, hold
# the command and 814 moves.
LINE_PLIES = 814

SHUFFLE = ["g1f3", "g8f6", "f3g1", "f6g8"]

# The position with most legal moves, 218, for White and mirrored for Black; and all
# pawns about to promote.
CROWDED = {
    "218 of White": "R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - - 0 1",
    "218 of Black": "Kbnn1kb1/PP1q4/q4q2/2q4q/4q3/1q4q1/3q4/r6r b - - 0 1",
    "promotions": "4k3/PPPPPPPP/8/8/8/8/pppppppp/4K3 w - - 0 1",
}


def quiet_piece_moves(position):
    return [move for move in position.legal_moves()
            if position.cells[move.target] == "." and position.cells[move.origin] not in "pP"]


def random_game(plies, seed):
    """Quiet piece moves from the start, so that the game does not end, and the
    position after them."""
    choose = random.Random(seed)
    position, moves = rules.Position(), []
    while len(moves) < plies:
        move = choose.choice(quiet_piece_moves(position))
        following = position.play(move)
        if quiet_piece_moves(following):
            moves.append(rules.move_text(move))
            position = following
    return moves, position


class LongGames(fault_kit.FaultTest):

    def test_a_list_of_as_many_moves_as_a_line_takes_is_played_to_its_end(self):
        self.start()
        self.speak_uci()
        moves, position = random_game(LINE_PLIES, 1)
        for n in (500, 501, 700, LINE_PLIES):
            line = "position startpos moves " + " ".join(moves[:n])
            self.assertLess(len(line), 4095)
            self.send(line)
        self.expect_legal(self.answer(), position)
        self.quit()

    def test_1200_plies_are_played_over_uci(self):
        # As sent by interfaces that restart the list after a while.
        self.start()
        self.speak_uci()
        position, history = rules.Position(), "position startpos moves"
        choose = random.Random(7)
        for ply in range(PLIES):
            if ply % 400 == 0 and ply > 0:
                history = f"position fen {position.fen()} moves"
            if ply % 100 == 99:
                self.send(history)
                move = self.expect_legal(self.answer("go depth 2"), position)
            else:
                quiet = [m for m in position.legal_moves() if position.cells[m.target] == "."]
                move = choose.choice(quiet or position.legal_moves())
            history += " " + rules.move_text(move)
            position = position.play(move)
            if not position.legal_moves():
                position, history = rules.Position(), "position startpos moves"
        self.send(history)
        self.expect_legal(self.answer(), position)
        self.quit()

    def test_a_list_of_1200_moves_is_cut_where_its_line_is(self):
        # The part after the split is a separate, unknown line.
        self.start()
        self.speak_uci()
        self.send("position startpos moves " + " ".join(SHUFFLE * (PLIES // 4)))
        self.answer("go depth 2")
        self.send("isready")
        self.wait("readyok")
        self.expect_a_game_move()
        self.quit()

    def test_1200_plies_are_played_over_xboard(self):
        self.start()
        self.send("xboard", "new", "force", *SHUFFLE * (PLIES // 4), "quit")
        self.assertEqual(self.ended(), 0)
        start = "\n" + " ".join(rules.START.split()[:3]) + " -\n"
        self.assertEqual(self.read(fault_kit.LOG).count(start), PLIES // 4)

    def test_the_engine_still_moves_after_1200_plies_over_xboard(self):
        self.start()
        self.send("xboard", "new", "force", "easy")
        moves, position = random_game(PLIES, 3)
        self.send(*moves, "time 300", "otim 300", "go")
        move = rules.find_move(position, self.wait("move", 60).split()[1])
        self.assertIsNotNone(move)
        line = self.printed()[-2]
        self.assertEqual(line.split()[:2], position.play(move).fen().split()[:2])
        self.quit()


class CrowdedPositions(fault_kit.FaultTest):

    def test_are_searched_and_answered_over_uci(self):
        self.start()
        self.speak_uci()
        for name, fen in CROWDED.items():
            with self.subTest(name):
                self.send("position fen " + fen)
                self.expect_legal(self.answer("go depth 3", 60), rules.Position(fen))
                self.send("position fen " + fen)
                self.expect_legal(self.answer("go wtime 9000 btime 9000"), rules.Position(fen))
        self.quit()

    def test_are_searched_and_displayed_over_xboard(self):
        for name, fen in CROWDED.items():
            with self.subTest(name):
                self.start()
                self.send("xboard", "new", "easy", "setboard " + fen, "time 500", "otim 500")
                row = "8|" + "".join(self.squares(fen.split("/")[0]))
                self.send("go")
                answer = self.wait("move")
                self.expect_legal(answer, rules.Position(fen))
                self.assertTrue(any(line.startswith(row) for line in self.printed()))
                self.quit()

    @staticmethod
    def squares(row):
        for letter in row:
            yield from ". " * int(letter) if letter.isdigit() else letter + " "

    def test_have_all_their_moves_counted(self):
        for name, fen in CROWDED.items():
            with self.subTest(name):
                legal = rules.Position(fen).legal_moves()
                if name.startswith("218"):
                    self.assertEqual(len(legal), 218)
                self.start(command="$mirvo -perft 1 " + " ".join(fen.split()[:3]))
                self.assertEqual(self.ended(), 0)
                lines = [line.text for line in self.engine.read_rest(60)]
                self.assertIn(f"1 {len(legal):12}", lines)


if __name__ == "__main__":
    fault_kit.main()
