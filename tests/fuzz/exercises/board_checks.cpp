#include "tests/fuzz/exercises/board_checks.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/display.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "board/san.h"
#include "eval/evaluate.h"
#include "protocol/position_line.h"

namespace mirvo {
namespace {

/// Replies are tried after so many moves of a position.
constexpr std::size_t nMovesAnswered = 3;

/// From, to, colour, kind and promotion: what coordinates state.
constexpr Move statedByCoordinates =
    fromToMask | sameMoveMask | promotionFlag | (Move{7} << movePromotionShift);

/// Bytes of a board in use: up to its newest undo record.
std::size_t BytesInUse(const Board& board) {
  const auto* const end = reinterpret_cast<const char*>(board.undoStack + board.undoDepth);
  return static_cast<std::size_t>(end - reinterpret_cast<const char*>(&board));
}

std::vector<Move> ListOf(const BBMoveGenerator2& generator) {
  return {generator.moves, generator.moves + generator.count};
}

BrokenPromise CheckMakeAndUnmake(Board& board, const std::vector<Move>& moves) {
  static Board before;
  CopyInUse(before, board);
  for (const Move move : moves) {
    MakeMove(board, move);
    if (const BrokenPromise broken = CheckDerivedFields(board)) return broken;
    MoverLeftInCheck(board);
    UnmakeMove(board);
    if (!SameBytes(before, board)) return "unmaking a move left a trace";
  }
  return nullptr;
}

/// Tries every reply to a few moves, chosen differently in each position.
BrokenPromise CheckReplies(Board& board, const std::vector<Move>& moves) {
  static Board before;
  CopyInUse(before, board);
  const std::size_t first = moves.empty() ? 0 : board.positionKey % moves.size();
  const std::size_t nTried = std::min(thorough ? nMovesAnswered : 1, moves.size());
  for (std::size_t i = 0; i < nTried; ++i) {
    MakeMove(board, moves[(first + i) % moves.size()]);
    BBMoveGenerator2 replies(board, board.sideToMove);
    replies.GenerateAll();
    const BrokenPromise broken = CheckMakeAndUnmake(board, ListOf(replies));
    UnmakeMove(board);
    if (broken != nullptr) return broken;
    if (!SameBytes(before, board)) return "unmaking two moves left a trace";
  }
  return nullptr;
}

/// The text of a generated move reads as that move, except where two pieces share a
/// square.
BrokenPromise CheckTexts(const Board& board, const std::vector<Move>& moves) {
  if (board.hasOverlaps) return nullptr;
  for (const Move move : moves) {
    char text[moveTextCapacity];
    MoveToCoordinates(move, text);
    const Move read = MoveFromCoordinates(text, board, board.sideToMove);
    if (((read ^ move) & statedByCoordinates) != 0) return "coordinates name another move";
    MoveToSan(move, text);
    const Move partial = SanToPartialMove(text, board.sideToMove);
    if (ToSquare(partial) != ToSquare(move) || MovingKind(partial) != MovingKind(move)) {
      return "algebraic text names another move";
    }
  }
  return nullptr;
}

BrokenPromise CheckLists(Board& board, const std::vector<Move>& all) {
  BBMoveGenerator2 parts(board, board.sideToMove);
  parts.GenerateCaptures();
  parts.GenerateNonCaptures();
  return ListOf(parts) == all ? nullptr : "captures and other moves are not all moves";
}

BrokenPromise CheckEvaluation(Board& board) {
  EvalRecord record{};
  const std::int32_t score = Evaluate(record, board, board.sideToMove);
  record = EvalRecord{};
  return Evaluate(record, board, board.sideToMove) == score ? nullptr
                                                            : "a cached evaluation differs";
}

BrokenPromise CheckDiagrams(const Board& board) {
  char diagram[diagramCapacity];
  for (const BoardLayout layout : {BoardLayout::wide, BoardLayout::compact}) {
    FormatBoard(board, layout, diagram);
    if (std::strlen(diagram) >= diagramCapacity) return "a diagram is too long";
  }
  char line[positionLineCapacity];
  FormatPositionLine(board, line);
  return std::strchr(line, '\n') == nullptr ? "a position line has no end" : nullptr;
}

BrokenPromise CheckNewPosition(Board& board) {
  if (const BrokenPromise broken = CheckDerivedFields(board)) return broken;
  static Board before;
  CopyInUse(before, board);
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  const std::vector<Move> moves = ListOf(generator);
  for (const BrokenPromise broken :
       {CheckLists(board, moves), CheckTexts(board, moves), CheckMakeAndUnmake(board, moves),
        CheckReplies(board, moves), CheckDiagrams(board)}) {
    if (broken != nullptr) return broken;
  }
  if (!SameBytes(before, board)) return "looking at a position changed it";
  return CheckEvaluation(board);
}

}  // namespace

bool thorough = true;

void CopyInUse(Board& copy, const Board& board) {
  std::memcpy(static_cast<void*>(&copy), &board, BytesInUse(board));
}

bool SameBytes(const Board& a, const Board& b) {
  if (a.undoDepth != b.undoDepth) return false;
  const auto* const left = reinterpret_cast<const char*>(&a);
  const auto* const right = reinterpret_cast<const char*>(&b);
  const auto cache =
      static_cast<std::size_t>(reinterpret_cast<const char*>(&a.inCheckCache) - left);
  const std::size_t behind = cache + sizeof a.inCheckCache;
  return std::memcmp(left, right, cache) == 0 &&
         std::memcmp(left + behind, right + behind, BytesInUse(a) - behind) == 0;
}

BrokenPromise CheckDerivedFields(const Board& board) {
  const bool inBounds = board.sideToMove <= black && board.undoDepth >= 0 &&
                        board.undoDepth <= undoCapacity && board.historyIndex >= 0 &&
                        board.historyIndex < keyHistoryCapacity;
  if (!inBounds) return "a count of the board is out of bounds";
  static Board fresh;
  CopyInUse(fresh, board);
  RebuildOccupancy(fresh);
  RebuildRotated(fresh);
  for (const int side : {white, black}) {
    if (fresh.sideOccupancy[side] != board.sideOccupancy[side] ||
        fresh.sideOccupancyNoKing[side] != board.sideOccupancyNoKing[side]) {
      return "a side's squares are wrong";
    }
    if (board.kingFile[side] > 7 || board.kingRank[side] > 7) return "a king is off the board";
  }
  if (fresh.occupied != board.occupied || fresh.occupiedRot90 != board.occupiedRot90 ||
      fresh.occupiedDiagA1H8 != board.occupiedDiagA1H8 ||
      fresh.occupiedDiagA8H1 != board.occupiedDiagA8H1) {
    return "the occupied squares are wrong";
  }
  if (fresh.pawnKey != board.pawnKey) return "the pawn key is wrong";
  return board.positionKey == ComputeKey(board) ? nullptr : "the key is not that of the position";
}

BrokenPromise CheckPosition(Board& board) {
  static Board found;
  static bool any = false;
  if (any && SameBytes(found, board)) return nullptr;
  const BrokenPromise broken = CheckNewPosition(board);
  any = broken == nullptr;
  if (any) CopyInUse(found, board);
  return broken;
}

std::vector<Move> LegalMovesOf(Board& board) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  std::vector<Move> legal;
  for (const Move move : ListOf(generator)) {
    MakeMove(board, move);
    if (!MoverLeftInCheck(board)) legal.push_back(move);
    UnmakeMove(board);
  }
  return legal;
}

bool SamePosition(const Board& a, const Board& b) {
  return std::equal(a.pieces, a.pieces + nPieces, b.pieces) && a.sideToMove == b.sideToMove &&
         std::memcmp(&a.castling, &b.castling, sizeof a.castling) == 0;
}

}  // namespace mirvo
