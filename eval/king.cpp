#include "eval/king.h"

#include <algorithm>

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/square_sets.h"
#include "eval/eval_tables.h"

namespace mirvo {

std::int32_t KingDangerTable[nKingDanger];

void BuildKingDangerTable() {
  for (int points = 0; points < nKingDanger; ++points) {
    const auto square = static_cast<float>(points * points);
    KingDangerTable[points] = static_cast<std::int32_t>(square * kingDangerScale);
  }
}

namespace {

// One king, with the sets that most of its amounts read.
template <int side>
struct KingView {
  explicit KingView(const EvalRecord& evalRecord)
      : record(evalRecord),
        board(*evalRecord.board),
        own(PiecesOf(board, side)),
        enemy(PiecesOf(board, side ^ 1)),
        square(KingSquare(board, side)),
        file(FileOf(square)),
        relativeRank(RelativeRank(side, RankOf(square))) {}

  const EvalRecord& record;
  const Board& board;
  const Bitboard* own;
  const Bitboard* enemy;
  int square;
  int file;
  int relativeRank;
};

template <int side>
ScorePair PlaceAmount(const KingView<side>& view) {
  if (view.record.stage == Opening) {
    const std::int32_t amount = KingOpeningSquare.of[side][view.square];
    return {amount, amount};
  }
  return {KingMiddlegameSquare.of[side][view.square], KingEndgameSquare.of[side][view.square]};
}

// Files, as bits of rank 1, on which one of `pawns` stands on a relative rank.
template <int side>
Bitboard FilesOnRank(Bitboard pawns, int relativeRank) {
  return (pawns >> (8 * RelativeRank(side, relativeRank))) & RankSet(rank1);
}

// Pawn shelter on the wing a side has castled to; middle game only.
template <int side>
std::int32_t CastledShelter(const KingView<side>& view) {
  const Bitboard wing = (view.file < fileE ? filesAToC : filesFToH) & RankSet(rank1);
  const Bitboard second = FilesOnRank<side>(view.own[pawn], rank2) & wing;
  const Bitboard missing = wing & ~second;
  std::int32_t amount = (shelterPawn * PopCount(second) + shelterBase) * shelterScale;
  if (missing != 0) {
    const Bitboard third = FilesOnRank<side>(view.own[pawn], rank3) & missing;
    amount += shelterAdvanced * PopCount(third) + shelterMissing * PopCount(missing & ~third);
  }
  // A king above its second rank depends less on those pawns.
  return view.relativeRank > rank2 ? amount / 2 : amount;
}

// A side that has not castled: its lost castling rights and its pawn shelter.
template <int side>
ScorePair UncastledAmount(const KingView<side>& view) {
  constexpr Bitboard wings = ~centreFiles & RankSet(rank1);
  const CastlingFlags& flags = view.board.castling;
  const Bitboard second = FilesOnRank<side>(view.own[pawn], rank2) & wings;
  const std::int32_t count = PopCount(second);
  ScorePair score = {uncastledPawn * count + uncastledBase, uncastledEg};
  if (count < uncastledWingPawns) {
    const Bitboard third = FilesOnRank<side>(view.own[pawn], rank3);
    score.mg += uncastledHole * PopCount(wings & ~(second | third));
  }
  const bool bothRooksMoved = flags.queenRookMoved[side] != 0 && flags.kingRookMoved[side] != 0;
  if (flags.kingMoved[side] != 0 || bothRooksMoved) score.AddBoth(lostCastling);
  return score;
}

// Open files at the king: its own and those beside it, without an own pawn;
// middle game only.
template <int side>
std::int32_t OpenFilesAtKing(const KingView<side>& view) {
  const Bitboard pawns = view.own[pawn];
  std::int32_t amount = 0;
  if ((pawns & FileSet(view.file)) == 0) amount += kingFileOpen;
  if (view.file > fileA && (pawns & FileSet(view.file - 1)) == 0) amount += kingNeighbourFileOpen;
  if (view.file < fileH && (pawns & FileSet(view.file + 1)) == 0) amount += kingNeighbourFileOpen;
  return amount;
}

// King on the back rank behind its own pawns, and the enemy has a rook or queen.
template <int side>
bool HasBackRankWeakness(const KingView<side>& view) {
  if (view.relativeRank != rank1 || (view.enemy[rook] | view.enemy[queen]) == 0) return false;
  const Bitboard exits = KingAttacks[view.square] & RelativeRankSet(side, rank2);
  return (exits & ~view.own[pawn]) == 0;
}

// Own against enemy pieces close to the king; pawns and kings do not count.
template <int side>
std::int32_t Presence(const KingView<side>& view) {
  const Bitboard near = ManhattanWithin[view.square][presenceRadius];
  const Bitboard own = view.board.sideOccupancyNoKing[side] & ~view.own[pawn];
  const Bitboard enemy = view.board.sideOccupancyNoKing[side ^ 1] & ~view.enemy[pawn];
  return zonePresence * (PopCount(near & own) - PopCount(near & enemy));
}

// Enemy pawns in the king's quarter of the board; middle game only.
template <int side>
std::int32_t PawnStorm(const KingView<side>& view) {
  if (view.relativeRank > rank2) return 0;
  const Bitboard files = view.file < fileE ? queenSideFiles : kingSideFiles;
  constexpr Bitboard ranks = RanksBehind(side, RelativeRank(side, rank5));
  return pawnStorm * PopCount(view.enemy[pawn] & files & ranks);
}

// Danger points by the zone squares that only the enemy attacks, and by number
// and weight of the enemy pieces that attack the zone.
template <int side>
std::int32_t Danger(const KingView<side>& view) {
  const EvalRecord& record = view.record;
  const Bitboard lost = record.kingZone[side] & record.attacks[side ^ 1][unionAttacks] &
                        ~record.attacks[side][unionAttacks];
  const std::int32_t points = dangerPerZoneSquare * PopCount(lost) +
                              record.kingAttackWeight[side] * record.kingAttackers[side] / 2;
  return KingDangerTable[std::min(points, nKingDanger - 1)];
}

template <int side>
ScorePair KingOf(const EvalRecord& record) {
  const KingView<side> view(record);
  ScorePair score = PlaceAmount<side>(view);
  if (view.board.castling.hasCastled[side] != 0) {
    score.mg += CastledShelter<side>(view);
  } else {
    score += UncastledAmount<side>(view);
  }
  score.mg += OpenFilesAtKing<side>(view) + PawnStorm<side>(view);
  score.AddBoth(record.kingTropism[side] + Presence<side>(view) - Danger<side>(view));
  if (HasBackRankWeakness<side>(view)) score.AddBoth(backRankWeakness);
  return score;
}

}  // namespace

MIRVO_COUNTS_BITS ScorePair EvaluateKing(EvalRecord& record, int side) {
  return side == white ? KingOf<white>(record) : KingOf<black>(record);
}

}  // namespace mirvo
