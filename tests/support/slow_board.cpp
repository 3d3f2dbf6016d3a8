#include "tests/support/slow_board.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "board/key_history.h"
#include "board/keys.h"

namespace mirvo::test {
namespace {

constexpr int lookUpOrder[] = {pawn, bishop, knight, rook, queen, king};
constexpr int nVictimKinds = 5;

int Rank(int square) { return square / 8; }
int File(int square) { return square % 8; }

}  // namespace

SlowBoard::SlowBoard(const Board& board)
    : hasOverlaps(board.hasOverlaps),
      plyCount(board.plyCount),
      undoDepth(board.undoDepth),
      keys(KeyHistory, KeyHistory + board.historyIndex + 1) {
  for (int side = 0; side < nSides; ++side) {
    for (int kind = 0; kind < nKinds; ++kind) {
      for (int square = 0; square < nSquares; ++square) {
        state.stands[side][kind][square] = (board.pieces[side * 6 + kind] >> square & 1) != 0;
      }
    }
  }
  state.castling = board.castling;
  state.epRank = board.epRank;
  state.epFile = board.epFile;
  state.epColour = board.epColour;
  state.nullMoveMade = board.nullMoveMade;
  state.side = board.sideToMove;
  if (undoDepth > 0) record.word = board.undoStack[undoDepth - 1].move;
}

// Uses the published numbering: black pawn 0, white pawn 1, black knight 2, ...
std::uint64_t SlowBoard::KeyOf(const State& state) {
  std::uint64_t key = state.side == white ? Random64[780] : 0;
  for (int side = 0; side < nSides; ++side) {
    for (int kind = 0; kind < nKinds; ++kind) {
      for (int square = 0; square < nSquares; ++square) {
        if (state.stands[side][kind][square]) key ^= Random64[64 * (2 * kind + 1 - side) + square];
      }
    }
    if (state.castling.kingMoved[side] != 0) continue;
    if (state.castling.kingRookMoved[side] == 0) key ^= Random64[768 + 2 * side];
    if (state.castling.queenRookMoved[side] == 0) key ^= Random64[769 + 2 * side];
  }
  if (state.epFile != 255) key ^= Random64[772 + state.epFile];
  return key;
}

bool SlowBoard::Occupied(int square) const {
  return KindOn(square, white, lookUpOrder, nKinds) != noPiece ||
         KindOn(square, black, lookUpOrder, nKinds) != noPiece;
}

int SlowBoard::KindOn(int square, int side, const int* order, int nOrder) const {
  for (int i = 0; i < nOrder; ++i) {
    if (state.stands[side][order[i]][square]) return order[i];
  }
  return noPiece;
}

// Whether the en-passant square is on the board and empty, with a pawn behind it
// that has just made its double step; after set-up any pawn will do.
bool SlowBoard::EnPassantIsOpen() const {
  if (state.epFile > 7 || state.epRank > 7 || state.epColour > black) return false;
  const int rank = state.epRank + (state.epColour == white ? 1 : -1);
  if (rank < 0 || rank > 7 || Occupied(state.epRank * 8 + state.epFile)) return false;
  const int victim = rank * 8 + state.epFile;
  if (!state.stands[state.epColour][pawn][victim]) return false;
  if (undoDepth == 0) return true;
  const int from = static_cast<int>(record.word & 63);
  const int to = static_cast<int>(record.word >> 6 & 63);
  return to == victim && (record.word >> 15 & 7) == pawn && File(from) == File(to) &&
         std::abs(Rank(from) - Rank(to)) == 2;
}

void SlowBoard::TakeOn(int square, int kind) {
  state.stands[state.side ^ 1][kind][square] = false;
  record.captured = true;
  record.capturedKind = kind;
}

// A piece joins others on its target square and merges with one of its own side
// and kind. If it captures there as well (three pieces share the square), both of
// its kind leave the board, so that the move can be unmade.
void SlowBoard::Land(int from, int to, int kind, int landed) {
  auto& own = state.stands[state.side];
  own[kind][from] = false;
  own[landed][to] = !(own[landed][to] && record.captured);
}

// The rook does not move if it would land on another rook, and no rook appears if
// the corner has none.
void SlowBoard::Castle(int from, int to) {
  const bool isLong = File(from) > File(to);
  const int corner = Rank(from) * 8 + (isLong ? 0 : 7);
  const int target = Rank(from) * 8 + (isLong ? 3 : 5);
  (isLong ? record.castledLong : record.castledShort) = true;
  auto& rooks = state.stands[state.side][rook];
  hasOverlaps = hasOverlaps || !rooks[corner] || Occupied(target);
  if (rooks[corner] && !rooks[target]) {
    rooks[corner] = false;
    rooks[target] = true;
  }
  state.castling.hasCastled[state.side] = 1;
  state.castling.queenRookMoved[state.side] = 1;
  state.castling.kingRookMoved[state.side] = 1;
}

void SlowBoard::SetEnPassant(int kind, int from, int to) {
  const bool doubleStep = kind == pawn && std::abs(Rank(from) - Rank(to)) == 2;
  if (!doubleStep && !record.epCapture) {
    state.epRank = 255;
    state.epFile = 255;
  }
  if (!doubleStep) return;
  const bool* const enemyPawns = state.stands[state.side ^ 1][pawn];
  const bool left = File(from) > 0 && File(to) > 0 && enemyPawns[to - 1];
  const bool right = File(from) < 7 && File(to) < 7 && enemyPawns[to + 1];
  if (!left && !right) return;
  state.epFile = static_cast<std::uint8_t>(File(from));
  state.epRank = static_cast<std::uint8_t>(Rank(from) + (state.side == white ? 1 : -1));
  state.epColour = static_cast<std::uint8_t>(state.side);
}

void SlowBoard::Play(Move word) {
  const int side = state.side;
  const int from = static_cast<int>(word & 63);
  const int to = static_cast<int>(word >> 6 & 63);
  int kind = static_cast<int>(word >> 15 & 7);
  if (kind == 7) kind = KindOn(from, side, lookUpOrder, nKinds);
  ASSERT_TRUE(kind >= pawn && kind <= king);
  const bool promotes = kind == pawn && (word >> 30 & 1) != 0;
  const int landed = promotes ? static_cast<int>(word >> 21 & 7) : kind;
  const bool castles = kind == king && std::abs(File(from) - File(to)) > 1;
  const bool passes = kind == pawn && File(from) != File(to) && state.epColour == (side ^ 1) &&
                      EnPassantIsOpen() && to == state.epRank * 8 + state.epFile;
  const bool wasOccupied = Occupied(to);
  const State before = state;
  record = Record{};
  record.before = before;

  // 1. The capture. Castling captures nothing, and kings are not captured.
  const int victim = KindOn(to, side ^ 1, lookUpOrder, nVictimKinds);
  if (passes) {
    TakeOn(to + (side == white ? -8 : 8), pawn);
    record.epCapture = true;
  } else if (victim != noPiece && !castles) {
    TakeOn(to, victim);
  } else if (wasOccupied) {
    hasOverlaps = true;
  }

  // 2. The piece, the castling rook, the rights.
  Land(from, to, kind, landed);
  if (castles) Castle(from, to);
  if (kind == king) state.castling.kingMoved[side] = 1;
  if (kind == rook && from == (side == white ? 0 : 56)) state.castling.queenRookMoved[side] = 1;
  if (kind == rook && from == (side == white ? 7 : 63)) state.castling.kingRookMoved[side] = 1;
  SetEnPassant(kind, from, to);

  // 3. Turn, counters, record.
  state.side = side ^ 1;
  ++plyCount;
  ++undoDepth;
  if (kind != pawn && !record.captured) keys.push_back(KeyOf(state));
  record.word = word;
  if ((word >> 31) != 0) {
    record.word = (word & ~(Move{7} << 18)) | static_cast<Move>(record.capturedKind) << 18;
  }
  played = true;
}

void SlowBoard::ExpectSame(const Board& board) const {
  const auto sameFlags = [](const CastlingFlags& a, const CastlingFlags& b) {
    return std::memcmp(&a, &b, sizeof(CastlingFlags)) == 0;
  };
  for (int piece = 0; piece < nPieces; ++piece) {
    Bitboard set = 0;
    for (int square = 0; square < nSquares; ++square) {
      if (state.stands[piece / 6][piece % 6][square]) set |= Bitboard{1} << square;
    }
    EXPECT_EQ(board.pieces[piece], set) << "piece " << piece;
  }
  EXPECT_TRUE(sameFlags(board.castling, state.castling));
  EXPECT_EQ(board.epRank, state.epRank);
  EXPECT_EQ(board.epFile, state.epFile);
  EXPECT_EQ(board.epColour, state.epColour);
  EXPECT_EQ(board.nullMoveMade, state.nullMoveMade);
  EXPECT_EQ(board.hasOverlaps, hasOverlaps);
  EXPECT_EQ(board.sideToMove, state.side);
  EXPECT_EQ(board.plyCount, plyCount);
  EXPECT_EQ(board.undoDepth, undoDepth);
  EXPECT_EQ(board.positionKey, KeyOf(state));
  EXPECT_EQ(keys, std::vector<std::uint64_t>(KeyHistory, KeyHistory + board.historyIndex + 1));
  if (!played) return;

  EXPECT_EQ(board.inCheckCache, -1);
  const UndoRecord& undo = board.undoStack[undoDepth - 1];
  EXPECT_EQ(undo.move, record.word);
  EXPECT_EQ(undo.captured != 0, record.captured);
  if (record.captured) {
    EXPECT_EQ(undo.capturedKind, record.capturedKind);
  }
  EXPECT_EQ(undo.castledShort != 0, record.castledShort);
  EXPECT_EQ(undo.castledLong != 0, record.castledLong);
  EXPECT_EQ(undo.epCapture != 0, record.epCapture);
  EXPECT_EQ(undo.positionKey, KeyOf(record.before));
  EXPECT_TRUE(sameFlags(undo.castling, record.before.castling));
  EXPECT_EQ(undo.epRank, record.before.epRank);
  EXPECT_EQ(undo.epFile, record.before.epFile);
  EXPECT_EQ(undo.epColour, record.before.epColour);
  EXPECT_EQ(undo.nullMoveMade, record.before.nullMoveMade);
}

}  // namespace mirvo::test
