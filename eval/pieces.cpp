#include <algorithm>

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/occupancy_maps.h"
#include "eval/eval_tables.h"
#include "eval/side_geometry.h"
#include "eval/terms.h"

namespace mirvo {

namespace {

/// Amounts of a set of squares on ranks 3 and 4 (low) and 5 and 6 (high),
/// files c to f, four bits a rank.
struct CentreSums {
  std::int8_t low[256];
  std::int8_t high[256];
};

constexpr CentreSums SumCentre() {
  CentreSums sums{};
  for (int index = 0; index < 256; ++index) {
    for (int bit = 0; bit < 8; ++bit) {
      if ((index >> bit & 1) == 0) continue;
      const int file = 2 + (bit & 3);
      const Bitboard lower = Bit(SquareAt(2 + (bit >> 2), file));
      const Bitboard upper = Bit(SquareAt(4 + (bit >> 2), file));
      sums.low[index] = static_cast<std::int8_t>(
          sums.low[index] + ((lower & centreSquares) != 0 ? centreSquare : ringSquare));
      sums.high[index] = static_cast<std::int8_t>(
          sums.high[index] + ((upper & centreSquares) != 0 ? centreSquare : ringSquare));
    }
  }
  return sums;
}

constexpr CentreSums centreSums = SumCentre();

/// Ring and centre squares of a set, by two look-ups: cheaper than counting
/// both where the processor does not count bits.
std::int32_t CentreAmount(Bitboard set) {
  const auto ranks = static_cast<std::uint32_t>(set >> SquareAt(2, 2)) & 0x0F0F0F0FU;
  const std::uint32_t pairs = ranks | ranks >> 4;
  return centreSums.low[pairs & 0xFF] + centreSums.high[(pairs >> 16) & 0xFF];
}

/// What every piece of a side is measured against, and what its pieces of one
/// kind add up to.
template <int side>
struct PieceTerm {
  explicit PieceTerm(const EvalRecord& record)
      : board(*record.board),
        own(board.sideOccupancy[side]),
        enemyPawnAttacks(record.attacks[side ^ 1][pawn]),
        unsafe(enemyPawnAttacks & (~board.occupied | PiecesOf<side ^ 1>(board)[pawn])),
        enemyIsolated(record.isolated[side ^ 1]),
        enemyZone(record.kingZone[side ^ 1]),
        ownZone(record.kingZone[side]),
        enemyKingDistance(ManhattanDistance[KingSquare(board, side ^ 1)]) {}

  /// Amounts that all kinds share, for one piece that controls `mobility`
  /// directly and `reach` counting what it sees through own pieces.
  template <int kind>
  void AddCommon(int square, Bitboard mobility, Bitboard reach) {
    std::int32_t both = 0;
    if ((enemyPawnAttacks & Bit(square)) != 0) both += AttackedByPawn[kind];
    // Seldom any: a branch is cheaper than counting nothing.
    if (const Bitboard hits = reach & enemyIsolated; hits != 0) {
      both += isolatedPawnHit * PopCount(hits);
    }
    both += ownZoneSquare * PopCount(reach & ownZone);
    if (const Bitboard hits = reach & enemyZone; hits != 0) {
      both += enemyZoneSquare * PopCount(hits);
      ++attackers;
      attackWeight += KingAttackWeight[kind];
    }
    score.AddBoth(both);
    score.mg += CentreAmount(mobility);
    attacks |= reach;
    tropism += tropismStep[kind] * enemyKingDistance[square] + tropismBase[kind];
  }

  std::int32_t UnsafeAmount(Bitboard mobility) const {
    return unsafeSquare * PopCount(mobility & unsafe);
  }

  /// Hands the sums over to the record.
  template <int kind>
  ScorePair Finish(EvalRecord& record) const {
    record.attacks[side][kind] = attacks;
    record.kingAttackers[side ^ 1] += attackers;
    record.kingAttackWeight[side ^ 1] += attackWeight;
    record.kingTropism[side ^ 1] += tropism;
    return score;
  }

  const Board& board;
  const Bitboard own;
  const Bitboard enemyPawnAttacks;
  const Bitboard unsafe;  // squares an enemy pawn guards and no enemy piece fills
  const Bitboard enemyIsolated;
  const Bitboard enemyZone;
  const Bitboard ownZone;
  const std::int32_t* const enemyKingDistance;  // by square

  ScorePair score;
  Bitboard attacks = 0;
  std::int32_t attackers = 0;
  std::int32_t attackWeight = 0;
  std::int32_t tropism = 0;
};

/// The board's occupancy views without the pieces of `removed`.
OccupancyViews ViewsWithout(const Board& board, Bitboard removed) {
  OccupancyViews views = ViewsOf(board);
  views.occupied &= ~removed;
  while (removed != 0) {
    const RotatedBits& bits = RotatedBitsOf[static_cast<std::size_t>(PopHighest(removed))];
    views.rot90 &= ~bits.rot90;
    views.diagA1H8 &= ~bits.diagA1H8;
    views.diagA8H1 &= ~bits.diagA8H1;
  }
  return views;
}

/// Bishop-like attacks that pass through the own pieces in `transparent`. Only
/// a piece that is hit can open the line, so most calls return `plain`.
Bitboard DiagonalXRay(const Board& board, int square, Bitboard plain, Bitboard transparent) {
  if ((plain & transparent) == 0) return plain;
  return BishopAttacks(ViewsWithout(board, transparent), square);
}

/// The same along rank and file.
Bitboard LineXRay(const Board& board, int square, Bitboard plain, Bitboard transparent) {
  if ((plain & transparent) == 0) return plain;
  return RookAttacks(ViewsWithout(board, transparent), square);
}

// ------------------------------------------------------------------ knights

/// An outpost counts for more when an own pawn supports it and when no enemy
/// minor piece can challenge it. Which bishops could is told by the parity of
/// the square's number: that is the wrong colour on every other rank, a habit
/// of this engine's play that is kept.
template <int side>
std::int32_t OutpostAmount(const PieceTerm<side>& term, int square) {
  const std::int32_t outpost = KnightOutpost.of[side][square];
  if (outpost == 0 || (term.enemyPawnAttacks & Bit(square)) != 0) return 0;
  std::int32_t amount = outpost;
  if ((PawnAttackSet<side>(PiecesOf<side>(term.board)[pawn]) & Bit(square)) != 0) {
    amount += outpost / 2;
  }
  const Bitboard* enemy = PiecesOf<side ^ 1>(term.board);
  const Bitboard colourSet = (square & 1) == 0 ? lightSquares : darkSquares;
  if (enemy[knight] == 0 && (enemy[bishop] & colourSet) == 0) amount += outpost / 2;
  return amount;
}

template <int side>
ScorePair KnightsOf(EvalRecord& record) {
  Bitboard knights = PiecesOf<side>(*record.board)[knight];
  if (knights == 0) return {};
  PieceTerm<side> term(record);
  while (knights != 0) {
    const int square = PopHighest(knights);
    const Bitboard reach = KnightAttacks[square];
    const Bitboard mobility = reach & ~term.own;
    term.score.AddBoth(KnightSquare.of[side][square] + KnightMobility[PopCount(mobility)] +
                       term.UnsafeAmount(mobility) + OutpostAmount<side>(term, square));
    term.template AddCommon<knight>(square, mobility, reach);
  }
  return term.template Finish<knight>(record);
}

// ------------------------------------------------------------------ bishops

/// What the number of bishops is worth before any of them is looked at.
template <int side>
ScorePair BishopCountAmount(const Board& board, Bitboard bishops) {
  const Bitboard others = bishops & (bishops - 1);
  if (others == 0) {
    const Bitboard colour = (bishops & lightSquares) != 0 ? lightSquares : darkSquares;
    const int pawns = PopCount(PiecesOf<side>(board)[pawn] & colour);
    const std::int32_t amount = SingleBishop[std::min(pawns, nPawnCounts - 1)];
    return {amount, amount};
  }
  return (others & (others - 1)) == 0 ? bishopPair : ScorePair{};
}

/// A bishop that took the rook pawn and cannot get out: White's on a7 behind
/// black pawns on b6 and c7, on h7 behind g6 and f7, Black's mirrored.
template <int side>
bool IsTrappedBishop(const Board& board, int square) {
  constexpr Bitboard a7 = RelativeSquare<side>(48);
  constexpr Bitboard b6c7 = RelativeSquare<side>(41) | RelativeSquare<side>(50);
  constexpr Bitboard h7 = RelativeSquare<side>(55);
  constexpr Bitboard g6f7 = RelativeSquare<side>(46) | RelativeSquare<side>(53);
  const Bitboard here = Bit(square);
  if ((here & (a7 | h7)) == 0) return false;
  const Bitboard cage = here == a7 ? b6c7 : g6f7;
  return (PiecesOf<side ^ 1>(board)[pawn] & cage) == cage;
}

template <int side>
ScorePair BishopsOf(EvalRecord& record) {
  Bitboard bishops = PiecesOf<side>(*record.board)[bishop];
  if (bishops == 0) return {};
  PieceTerm<side> term(record);
  const Bitboard transparent = PiecesOf<side>(term.board)[queen];
  term.score = BishopCountAmount<side>(term.board, bishops);
  while (bishops != 0) {
    const int square = PopHighest(bishops);
    const int rank = RankOf(square);
    const Bitboard plain = BishopAttacks(term.board, square);
    const Bitboard reach = DiagonalXRay(term.board, square, plain, transparent) & ~term.own;
    const Bitboard mobility = plain & ~term.own;
    term.score += bishopMobilityBase;
    term.score.AddBoth(BishopSquare.of[side][square] +
                       bishopSquareAhead * PopCount(mobility & RanksAhead<side>(rank)) +
                       bishopSquareBehind * PopCount(mobility & RanksBehind<side>(rank)) +
                       term.UnsafeAmount(mobility));
    if (IsTrappedBishop<side>(term.board, square)) term.score.AddBoth(trappedBishop);
    term.template AddCommon<bishop>(square, mobility, reach);
  }
  return term.template Finish<bishop>(record);
}

// -------------------------------------------------------------------- rooks

/// Whether the whole file is free of own pawns, or of all pawns.
template <int side>
std::int32_t RookFileAmount(const Board& board, int file, std::int32_t nEnemyPawns) {
  const Bitboard squares = FileSet(file);
  if ((PiecesOf<side>(board)[pawn] & squares) != 0) return rookBehindOwnPawn;
  if ((PiecesOf<side ^ 1>(board)[pawn] & squares) != 0) return nEnemyPawns / 2 + rookHalfOpenFile;
  return nEnemyPawns + rookOpenFile;
}

/// A back-rank rook outside a king that went that way without castling.
template <int side>
bool IsTrappedRook(const Board& board, int square) {
  if (board.castling.hasCastled[side] != 0) return false;
  if (RelativeRank<side>(RankOf(square)) != 0) return false;
  const int rookFile = FileOf(square);
  const int kingFile = board.kingFile[side];
  return (rookFile >= 6 && (kingFile == 5 || kingFile == 6)) ||
         (rookFile <= 1 && (kingFile == 1 || kingFile == 2));
}

/// Bonus of a rook on the enemy's second rank; the same for every rook there.
template <int side>
std::int32_t SeventhRankAmount(const Board& board) {
  std::int32_t amount = 0;
  if (RelativeRank<side>(board.kingRank[side ^ 1]) == 7) amount += rookSeventhKing;
  if ((PiecesOf<side ^ 1>(board)[pawn] & RelativeRankSet<side>(6)) != 0) amount += rookSeventhPawns;
  return amount;
}

template <int side>
ScorePair RooksOf(EvalRecord& record) {
  Bitboard rooks = PiecesOf<side>(*record.board)[rook];
  if (rooks == 0) return {};
  PieceTerm<side> term(record);
  const Bitboard transparent = rooks | PiecesOf<side>(term.board)[queen];
  const std::int32_t nEnemyPawns = PopCount(PiecesOf<side ^ 1>(term.board)[pawn]);
  while (rooks != 0) {
    const int square = PopHighest(rooks);
    const Bitboard plain = RookAttacks(term.board, square);
    const Bitboard reach = LineXRay(term.board, square, plain, transparent) & ~term.own;
    const Bitboard mobility = plain & ~term.own;
    const int count = PopCount(mobility);
    std::int32_t both = RookSquare.of[side][square] + term.UnsafeAmount(mobility) +
                        RookFileAmount<side>(term.board, FileOf(square), nEnemyPawns);
    if (IsTrappedRook<side>(term.board, square)) both += trappedRook;
    if (RelativeRank<side>(RankOf(square)) == 6) both += SeventhRankAmount<side>(term.board);
    term.score += {RookMobilityMg[count], RookMobilityEg[count]};
    term.score.AddBoth(both);
    term.template AddCommon<rook>(square, mobility, reach);
  }
  return term.template Finish<rook>(record);
}

// ------------------------------------------------------------------- queens

template <int side>
ScorePair QueensOf(EvalRecord& record) {
  Bitboard queens = PiecesOf<side>(*record.board)[queen];
  if (queens == 0) return {};
  PieceTerm<side> term(record);
  const Bitboard onDiagonals = queens | PiecesOf<side>(term.board)[bishop];
  const Bitboard onLines = queens | PiecesOf<side>(term.board)[rook];
  while (queens != 0) {
    const int square = PopHighest(queens);
    const Bitboard diagonals = BishopAttacks(term.board, square);
    const Bitboard lines = RookAttacks(term.board, square);
    const Bitboard reach = (DiagonalXRay(term.board, square, diagonals, onDiagonals) |
                            LineXRay(term.board, square, lines, onLines)) &
                           ~term.own;
    const Bitboard mobility = (diagonals | lines) & ~term.own;
    // A queen's mobility counts what stands open behind its own helpers too.
    const int count = PopCount(reach);
    term.score += {QueenMobilityMg[count], QueenMobilityEg[count]};
    term.score.AddBoth(QueenSquare.of[side][square]);
    term.template AddCommon<queen>(square, mobility, reach);
  }
  return term.template Finish<queen>(record);
}

}  // namespace

ScorePair EvaluateKnights(EvalRecord& record, int side) {
  return side == white ? KnightsOf<white>(record) : KnightsOf<black>(record);
}

ScorePair EvaluateBishops(EvalRecord& record, int side) {
  return side == white ? BishopsOf<white>(record) : BishopsOf<black>(record);
}

ScorePair EvaluateRooks(EvalRecord& record, int side) {
  return side == white ? RooksOf<white>(record) : RooksOf<black>(record);
}

ScorePair EvaluateQueens(EvalRecord& record, int side) {
  return side == white ? QueensOf<white>(record) : QueensOf<black>(record);
}

}  // namespace mirvo
