#include "protocol/xboard_play.h"

#include <cassert>

#include "board/make_move.h"
#include "board/notation.h"
#include "protocol/game_board.h"
#include "protocol/position_line.h"
#include "protocol/xboard_ponder.h"
#include "search/game_counters.h"
#include "search/pondering.h"
#include "search/search_flags.h"
#include "search/time_control.h"
#include "shell/base/output.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

/// Whether the move captures en passant: after set-up by its form, otherwise by the
/// en-passant square.
bool TakesEnPassant(const Board& board, Move move) {
  if (TakesEnPassantAfterSetUp(board, move)) return true;
  const int to = ToSquare(move);
  return MovingKind(move) == pawn && EnPassantAvailable(board) && RankOf(to) == board.epRank &&
         FileOf(to) == board.epFile && FileOf(FromSquare(move)) != FileOf(to);
}

void LimitToOwnClock(const XBoardGame& game, SearchLimits& limits) {
  SetDeadline(limits, engineConfig.MoveOverhead, {game.ownTime, game.ownTimeReceived});
}

/// Sets the limits of the coming search: none while pondering, else the time allotted
/// from the engine's clock.
void LimitSearch(const XBoardGame& game, SearchLimits& limits) {
  limits.ponder = xboardPonder.ReplayPonderMove;
  limits.infinite = limits.ponder;
  xboardPonder.ReplayPonderMove = false;
  if (limits.ponder) {
    limits.milliseconds = 0;
  } else {
    AllocateTime(limits, game.movesToGo, game.ownTime, game.ownIncrement);
    LimitToOwnClock(game, limits);
  }
}

/// Runs a search within the record's limits.
SearchResult SearchWithin(XBoardGame& game, SearchRecord& record) {
  StoreTimeLimits(engineConfig, record.limits);
  searchFlags.pondering = record.limits.ponder;
  game.running = &record.limits;
  const SearchResult result = game.think(record);
  game.running = nullptr;
  return result;
}

/// Unmakes the pondered move, without output. A held move, if there is one, is the
/// dispatcher's next line and clears the miss itself.
void UndoPondering(SearchLimits& limits) {
  UnmakeMove(gameBoard);
  searchFlags.StopSearch = false;
  limits.infinite = true;
  StoreTimeLimits(engineConfig, limits);
  if (!xboardPonder.PendingMove) xboardPonder.ponderMiss = false;
}

void PlayEngineMove(Move move) {
  MakeMove(gameBoard, move & ~mateMark);
  PrintGameBoard();
  PrintPositionLine(gameBoard);
  char text[moveTextCapacity];
  MoveToCoordinates(move, text);
  Output(output, "move %s\n", text);
}

/// Searches the game board and plays the answer. Returns the expected reply
/// to ponder on, noMove when the engine did not move or has none.
Move ThinkAndMove(XBoardGame& game) {
  xboardPonder.searchAbandoned = false;
  searchFlags.StopSearch = false;
  SearchRecord record = PrepareSearch(gameBoard);
  LimitSearch(game, record.limits);
  const SearchResult result = SearchWithin(game, record);
  game.LastMoveFlagged = (result.best & mateMark) != 0;
  // A ponder search that ends before a hit or miss is abandoned too.
  if (searchFlags.pondering) AbandonPondering();
  const bool abandoned = xboardPonder.searchAbandoned;
  xboardPonder.searchAbandoned = false;
  if (record.limits.ponder && xboardPonder.ponderMiss) {
    UndoPondering(record.limits);
    return noMove;
  }
  if (abandoned || result.best == noMove) return noMove;
  PlayEngineMove(result.best);
  return result.ponder;
}

/// Makes the expected reply the dispatcher's next line, if the engine may ponder.
void StartPondering(const XBoardGame& game, Move expected) {
  const bool mayPonder = game.gameInProgress && !game.force && !game.LastMoveFlagged &&
                         engineConfig.Ponder != 0 && !searchFlags.pondering &&
                         !xboardPonder.ponderMiss && !searchFlags.BookInUse && expected != noMove;
  if (!mayPonder) return;
  xboardPonder.PendingMove = false;
  xboardPonder.ReplayPonderMove = true;
  xboardPonder.expectedMove = expected;
  char text[moveTextCapacity];
  MoveToCoordinates(expected, text);
  Output(output, "PONDERING %s\n", text);
}

void ThinkAndPonder(XBoardGame& game) {
  const Move expected = ThinkAndMove(game);
  StartPondering(game, expected);
}

/// The opponent played another move: the ponder search is undone, and the real move is
/// handled after it.
void MissPonder(Move realMove) {
  Output(output, "PONDER NOT HIT. STOPPING\n");
  ++ponderStats.misses;
  AbandonPondering();
  xboardPonder.heldMove = realMove;
  xboardPonder.PendingMove = true;
  PrintPonderStats();
}

/// Only the two squares decide, so another promotion piece is a hit.
void DecidePonder(const XBoardGame& game, Move realMove) {
  if (((realMove ^ xboardPonder.expectedMove) & fromToMask) != 0) {
    MissPonder(realMove);
  } else {
    assert(game.running != nullptr);
    PonderHit(*game.running, game.movesToGo, game.ownTime, game.ownIncrement);
    LimitToOwnClock(game, *game.running);
    StoreTimeLimits(engineConfig, *game.running);
  }
}

/// Makes the opponent's move; an origin square without a piece passes the turn.
void PlayTextMove(Move move) {
  if (move == noMove) {
    PassTurnInGame(gameBoard);
  } else {
    MakeTextMove(gameBoard, move);
  }
  PrintGameBoard();
  PrintPositionLine(gameBoard);
  CountReversibleMove(gameCounters, IsReversible(move));
}

/// The first move of a game makes the engine play Black; in force mode only the header
/// says so.
void JoinGame(XBoardGame& game) {
  if (game.gameInProgress) return;
  game.engineColour = black;
  FillGameHeader(game);
  if (!game.force) game.gameInProgress = true;
}

}  // namespace

Move CompleteTextMove(const char* text, const Board& board) {
  const int side = board.sideToMove;
  const Move move = MoveFromCoordinates(text, board, side);
  if (PieceOn(board, FromSquare(move), side) == noPiece) return noMove;
  const int captured = PieceOn(board, ToSquare(move), side ^ 1);
  if (captured != noPiece) return WithCaptured(move | captureFlag, captured);
  if (TakesEnPassant(board, move)) return WithCaptured(move | captureFlag, pawn);
  return move;
}

void HandleXBoardMove(XBoardGame& game, const char* line) {
  const bool recordOnly = xboardPonder.recordOnly;
  xboardPonder.recordOnly = false;
  if (!recordOnly) JoinGame(game);
  if (!game.force) PrintGameBoard();
  if (searchFlags.pondering) {
    DecidePonder(game, MoveFromCoordinates(line, gameBoard, game.engineColour ^ 1));
    return;
  }
  PlayTextMove(CompleteTextMove(line, gameBoard));
  if (game.gameInProgress && !game.force) {
    ThinkAndPonder(game);
  } else {
    xboardPonder.ReplayPonderMove = false;
  }
}

void StartPlaying(XBoardGame& game) {
  game.engineColour = gameBoard.sideToMove;
  FillGameHeader(game);
  game.gameInProgress = true;
  game.force = false;
  searchFlags.StopSearch = false;
  searchFlags.pondering = false;
  xboardPonder.ReplayPonderMove = false;
  ThinkAndPonder(game);
}

}  // namespace mirvo
