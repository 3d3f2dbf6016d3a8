// Reads the games of a PGN file one at a time: the moves, and the points of the
// result for the side that played each.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Plies of a game that are stored; later ones are played but not stored. The
/// longest recorded tournament game has 538.
inline constexpr int gamePlyCapacity = 500;

struct GameRecord {
  std::int32_t plyCount;
  Move moves[gamePlyCapacity];
  /// Points of the game for the side that played the move: 2 for a win, 1 for a
  /// draw, 0 for a loss or an unknown result.
  std::int32_t weights[gamePlyCapacity];
};

/// Receives the games one by one; the record is reused for the next game.
using GameReceiver = void (*)(void* context, const GameRecord& game);

/// Reads the games of a file and passes each to `receive`. `gameCount` counts the
/// games with at least one move. Ignores plies after `plyLimit`. False when the
/// file cannot be opened, which is reported.
///
/// A word that matches no move of the position is stored as far as it was
/// understood but not played, so it counts for the other side.
bool ReadPgnGames(const char* path, int plyLimit, GameReceiver receive, void* context,
                  std::int32_t& gameCount);

/// Counts the games that ReadPgnGames would read, without playing them.
bool CountPgnGames(const char* path, std::int32_t& gameCount);

/// The first generated move that agrees with an algebraic text in target square,
/// moving kind and stated file, or noMove. Tests neither legality nor a stated
/// rank. `partial` receives what the text states.
Move MatchSan(Board& board, const char* text, Move& partial);

}  // namespace mirvo
