// Helpers for tests of the board layer: positions from text, move lists as text,
// the invariants of every board, and copies of a board for comparison.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "board/board.h"

namespace mirvo::test {

inline constexpr char startFen[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq";
inline constexpr char kiwipeteFen[] =
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq";

/// Builds the start-up tables once.
void PrepareTables();

/// Sets `board` up from the first three FEN fields. A fourth field that names
/// a square sets the en-passant fields, for the side not to move. Also accepts
/// "startpos" and "startpos moves e2e4 ...".
void SetPosition(Board& board, const std::string& fen);
Board BoardFrom(const std::string& fen);

/// Number of the square "e4".
int Square(const std::string& name);

/// The set of the squares in "a1 h8 e4".
Bitboard Squares(const std::string& names);

/// The set as square names from a1 upwards, blank-separated.
std::string NamesOf(Bitboard set);

/// The generator's lists for the side to move.
std::vector<Move> AllMoves(Board& board);
std::vector<Move> Captures(Board& board);
std::vector<Move> NonCaptures(Board& board);

/// The moves of AllMoves that do not leave the mover's king attacked.
std::vector<Move> LegalMoves(Board& board);

/// Coordinate texts in list order, blank-separated.
std::string TextsOf(const std::vector<Move>& moves);
std::string TextOf(Move move);

/// The generated move with this coordinate text; a test failure and noMove
/// when there is none.
Move FindMove(Board& board, const std::string& text);

/// Plays generated moves named by their texts.
void Play(Board& board, const std::string& texts);

/// Fails the test unless every derived field of `board` agrees with its pieces
/// and the key equals the one computed from scratch. Everything is recomputed
/// square by square.
void ExpectConsistent(const Board& board);

/// Placement of the pieces as FEN text; squares that hold several pieces show
/// the first.
std::string PlacementOf(const Board& board);

/// Whether two boards agree in every field, unused undo records aside.
bool SameFields(const Board& a, const Board& b);

/// The bytes of a board and its key history, to compare the same board with later
/// (padding bytes of another board may differ).
class Snapshot {
 public:
  explicit Snapshot(const Board& board);
  /// Whether nothing differs, unused undo records aside.
  bool SameAs(const Board& board) const;

 private:
  std::vector<unsigned char> bytes;
  std::vector<std::uint64_t> keys;
};

/// Numbers from a fixed seed, the same on every platform.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state(seed) {}
  std::uint64_t Next();
  /// 0 .. limit - 1.
  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(Next() % limit); }

 private:
  std::uint64_t state;
};

/// Plays `nGames` games of random legal moves, at most `maxPlies` each, from
/// several starting positions, and calls `visit` before every move.
void PlayRandomGames(std::uint64_t seed, int nGames, int maxPlies,
                     const std::function<void(Board&)>& visit);

/// Lines of a file under tests/data, without comments ("#") and empty lines.
std::vector<std::string> DataLines(const std::string& name);

}  // namespace mirvo::test
