// Reading the games of a PGN file, one at a time: the moves and what each was
// worth to the side that played it. Reads the board layer; owns nothing.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"

namespace mirvo {

/// Plies of a game that are kept; later ones are played and forgotten. The
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

/// Reads the games of a file and hands each to `receive`. `gameCount` counts
/// the games with at least one move. A game's plies past `plyLimit` are not
/// looked at. False when the file cannot be opened, which is reported.
///
/// A word that names no move of the position is kept as far as it was
/// understood, without being played, so it counts for the other side.
bool ReadPgnGames(const char* path, int plyLimit, GameReceiver receive, void* context,
                  std::int32_t& gameCount);

/// The number of games that ReadPgnGames would hand out, without playing them.
bool CountPgnGames(const char* path, std::int32_t& gameCount);

/// The first generated move that agrees with an algebraic text in target
/// square, moving kind and stated file, or noMove. Legality is not tested, and
/// a stated rank is not looked at. `partial` receives what the text states.
Move MatchSan(Board& board, const char* text, Move& partial);

}  // namespace mirvo
