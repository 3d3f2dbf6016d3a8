// Positions that no game can reach: any score will do, but nothing may be read
// outside a table. The sanitizers make these tests effective.
#include <random>

#include "board/board.h"
#include "tests/eval/eval_fixture.h"

namespace mirvo {
namespace {

class OddPositions : public EvalTest {
 protected:
  /// Evaluates for both sides, cold and from the caches.
  void EvaluateAll() {
    HashClear(EvalHashTable);
    HashClear(PawnHashTable);
    for (int side = white; side <= black; ++side) {
      board.sideToMove = static_cast<std::uint8_t>(side);
      board.positionKey = ComputeKey(board);
      const std::int32_t score = Evaluate(record, board, side);
      EXPECT_LT(std::abs(score), 200000);
      EXPECT_EQ(Evaluate(record, board, side), score);
    }
  }

  void EvaluateFen(const std::string& placement) {
    SetUp3(placement + " w -");
    EvaluateAll();
  }
};

TEST_F(OddPositions, KingsMissing) {
  EvaluateFen("8/8/8/8/8/8/P7/8");
  EvaluateFen("4k3/8/8/8/8/8/P7/RNBQ4");
  EvaluateFen("rnbq4/p7/8/8/8/8/8/4K3");
  EvaluateFen("8/8/8/8/8/8/8/8");
}

TEST_F(OddPositions, CrowdsOfPieces) {
  EvaluateFen("QQQQQQQQ/QQQQQQQQ/QQQQQQQQ/QQQQQQ2/8/k7/8/K7");
  EvaluateFen("QQQQQQQQ/QQQQQQQQ/QQQQQQQQ/QQQQKQQQ/qqqqqqqq/qqqqqqqq/qqqqqqqq/qqqqkqqq");
  EvaluateFen("PPPPPPPP/PPPPPPPP/PPPPPPPP/PPPPKPPP/pppppppp/pppppppp/pppppppp/ppppkppp");
  EvaluateFen("pppppppp/pppppppp/pppppppp/ppppkppp/PPPPPPPP/PPPPPPPP/PPPPPPPP/PPPPKPPP");
  EvaluateFen("NNNNNNNN/NNNNNNNN/BBBBBBBB/BBBBKBBB/rrrrrrrr/rrrrrrrr/nnnnnnnn/nnnnknnn");
}

TEST_F(OddPositions, PawnsOnTheFirstAndLastRank) {
  EvaluateFen("PPPPpppp/8/8/4k3/4K3/8/8/PPPPpppp");
  EvaluateFen("pPpPpPpP/pPpPpPpP/8/4k3/4K3/8/PpPpPpPp/PpPpPpPp");
}

TEST_F(OddPositions, RandomBoardsOfEveryDensity) {
  std::mt19937_64 random(20261121);
  for (int round = 0; round < 3000; ++round) {
    SetUp3("8/8/8/8/8/8/8/8 w -");
    const unsigned density = 1 + static_cast<unsigned>(random() % 16);
    for (int square = 0; square < nSquares; ++square) {
      if (random() % 16 < density) board.pieces[random() % nPieces] |= Bit(square);
    }
    const std::uint64_t flags = random();
    std::uint8_t* castling = board.castling.hasCastled;
    for (int i = 0; i < 2; ++i) {
      castling[i] = (flags >> i) & 1;
      board.castling.kingMoved[i] = (flags >> (2 + i)) & 1;
      board.castling.kingRookMoved[i] = (flags >> (4 + i)) & 1;
      board.castling.queenRookMoved[i] = (flags >> (6 + i)) & 1;
    }
    board.plyCount = static_cast<std::int32_t>(flags >> 8 & 31);
    LocateKings(board);
    RebuildOccupancy(board);
    RebuildRotated(board);
    EvaluateAll();
  }
}

TEST_F(OddPositions, TwoPiecesOnOneSquare) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 500; ++round) {
    SetUp3("8/8/8/8/8/8/8/8 w -");
    for (Bitboard& set : board.pieces) set = random() & random() & random();
    LocateKings(board);
    RebuildOccupancy(board);
    RebuildRotated(board);
    EvaluateAll();
  }
}

}  // namespace
}  // namespace mirvo
