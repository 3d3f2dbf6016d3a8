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

/// Replies are tried behind the first moves of a list only.
constexpr int nMovesAnswered = 3;

/// From, to, colour, kind and promotion: what coordinates state.
constexpr Move statedByCoordinates =
    fromToMask | sameMoveMask | promotionFlag | (Move{7} << movePromotionShift);

/// A copy of a board without what may differ: unused undo records, and the
/// cached answer about check.
void CopyComparable(Board& copy, const Board& board) {
  std::memcpy(static_cast<void*>(&copy), &board, sizeof copy);
  copy.inCheckCache = 0;
  UndoRecord* unused = copy.undoStack + copy.undoDepth;
  std::memset(static_cast<void*>(unused), 0,
              sizeof(UndoRecord) * static_cast<std::size_t>(undoCapacity - copy.undoDepth));
}

/// Whether two states of one board agree to the last byte, padding included.
bool SameBytes(const Board& a, const Board& b) {
  static Board left;
  static Board right;
  if (a.undoDepth != b.undoDepth) return false;
  CopyComparable(left, a);
  CopyComparable(right, b);
  // Padding is compared on purpose: both are copies of one board's bytes.
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c)
  return std::memcmp(static_cast<const void*>(&left), &right, sizeof left) == 0;
}

std::vector<Move> ListOf(const BBMoveGenerator2& generator) {
  return {generator.moves, generator.moves + generator.count};
}

BrokenPromise CheckMakeAndUnmake(Board& board, const std::vector<Move>& moves) {
  static Board before;
  std::memcpy(static_cast<void*>(&before), &board, sizeof before);
  for (const Move move : moves) {
    MakeMove(board, move);
    if (const BrokenPromise broken = CheckDerivedFields(board)) return broken;
    MoverLeftInCheck(board);
    UnmakeMove(board);
    if (!SameBytes(before, board)) return "a move taken back left a trace";
  }
  return nullptr;
}

/// Behind the first moves, every reply.
BrokenPromise CheckReplies(Board& board, const std::vector<Move>& moves) {
  static Board before;
  std::memcpy(static_cast<void*>(&before), &board, sizeof before);
  const int nTried = std::min(nMovesAnswered, static_cast<int>(moves.size()));
  for (int i = 0; i < nTried; ++i) {
    MakeMove(board, moves[static_cast<std::size_t>(i)]);
    BBMoveGenerator2 replies(board, board.sideToMove);
    replies.GenerateAll();
    const BrokenPromise broken = CheckMakeAndUnmake(board, ListOf(replies));
    UnmakeMove(board);
    if (broken != nullptr) return broken;
    if (!SameBytes(before, board)) return "two moves taken back left a trace";
  }
  return nullptr;
}

/// Texts of generated moves lead back to them. Squares that hold two pieces
/// cannot promise that.
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

}  // namespace

BrokenPromise CheckDerivedFields(const Board& board) {
  static Board fresh;
  std::memcpy(static_cast<void*>(&fresh), &board, sizeof fresh);
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
  if (board.positionKey != ComputeKey(board)) return "the key is not that of the position";
  const bool inBounds = board.sideToMove <= black && board.undoDepth >= 0 &&
                        board.undoDepth <= undoCapacity && board.historyIndex >= 0 &&
                        board.historyIndex < keyHistoryCapacity;
  return inBounds ? nullptr : "a count of the board is out of bounds";
}

BrokenPromise CheckPosition(Board& board) {
  if (const BrokenPromise broken = CheckDerivedFields(board)) return broken;
  static Board before;
  std::memcpy(static_cast<void*>(&before), &board, sizeof before);
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
