#include "board/perft.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"

namespace mirvo {

std::uint64_t PerftCounts[maxPerftDepth];
std::uint64_t PerftSplitCounts[2][maxPerftDepth];
std::int32_t PerftTargetDepth;
std::uint64_t nPerftMoves;

namespace {

// Helper searchers that took part. Kept for the "Splits" line; always 0.
std::int32_t nPerftSplits = 0;

}  // namespace

void PerftCount(Board& board, int ply) {
  if (ply == PerftTargetDepth) return;
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateCaptures();
  generator.GenerateNonCaptures();
  const Bitboard kingAndPinned = KingAndPinned(board, board.sideToMove);
  std::uint64_t nLegal = 0;
  for (int i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    MakeMove(board, move);
    if ((kingAndPinned & Bit(FromSquare(move))) == 0 || !MoverLeftInCheck(board)) {
      ++nLegal;
      if (ply + 1 < PerftTargetDepth) PerftCount(board, ply + 1);
    }
    UnmakeMove(board);
  }
  nPerftMoves += static_cast<std::uint64_t>(generator.count);
  PerftCounts[ply] += nLegal;
}

void RunPerft(Board& board, int depth) {
  nPerftSplits = 0;
  std::memset(PerftCounts, 0, sizeof(PerftCounts));
  std::memset(PerftSplitCounts, 0, sizeof(PerftSplitCounts));
  PerftTargetDepth = std::clamp(depth, 0, maxPerftDepth);
  TrimGameHistory(board);
  const std::uint32_t start = TickCount();
  PerftCount(board, 0);
  const std::uint32_t elapsed = TickCount() - start + 1;
  const float seconds = static_cast<float>(elapsed) * 0.001F;
  Output(output, "Time = %.2fs\n", static_cast<double>(seconds));
  const std::uint64_t total =
      std::accumulate(PerftCounts, PerftCounts + PerftTargetDepth, std::uint64_t{0});
  Output(output, "kNodes/sec = %.2f\n",
         static_cast<double>(static_cast<float>(total) / seconds * 0.001F));
  Output(output, "Splits = %d\n", nPerftSplits);
}

std::uint64_t PerftCountAtDepth(int depth) {
  const int index = std::clamp(depth, 1, maxPerftDepth) - 1;
  if (PerftCounts[0] != 0) return PerftCounts[index];
  return PerftSplitCounts[0][index] + PerftSplitCounts[1][index];
}

}  // namespace mirvo
