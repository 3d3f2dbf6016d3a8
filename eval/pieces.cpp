#include "eval/pieces.h"

#include <algorithm>

#include "board/attack_tables.h"
#include "board/bits.h"
#include "board/geometry_tables.h"
#include "board/occupancy_maps.h"
#include "board/square_sets.h"
#include "eval/eval_tables.h"

namespace mirvo {

namespace {

// The inner four squares of the centre count twice.
static_assert(centreSquare == 2 * ringSquare);

// Ring squares of a set and twice its centre squares, to be multiplied by
// `ringSquare`.
std::int32_t CentreCount(Bitboard set) {
  constexpr Bitboard centreBlock = extendedCentreRing | centreSquares;  // c3 to f6
  return PopCount(set & centreBlock) + PopCount(set & centreSquares);
}

// The sets that the terms of a side's pieces read.
template <int side>
struct PieceView {
  explicit PieceView(const EvalRecord& record)
      : board(*record.board),
        own(board.sideOccupancy[side]),
        pawnAttacks(record.attacks[side][pawn]),
        enemyPawnAttacks(record.attacks[side ^ 1][pawn]),
        unsafe(enemyPawnAttacks & (~board.occupied | PiecesOf(board, side ^ 1)[pawn])),
        enemyIsolated(record.isolated[side ^ 1]),
        enemyZone(record.kingZone[side ^ 1]),
        ownZone(record.kingZone[side]),
        enemyKingDistance(ManhattanDistance[KingSquare(board, side ^ 1)]) {}

  const Board& board;
  const Bitboard own;
  const Bitboard pawnAttacks;
  const Bitboard enemyPawnAttacks;
  const Bitboard unsafe;  // squares an enemy pawn guards and no enemy piece fills
  const Bitboard enemyIsolated;
  const Bitboard enemyZone;
  const Bitboard ownZone;
  const std::int32_t* const enemyKingDistance;  // by square
};

// Sums over the pieces of one kind. Terms with the same weight for all of them are
// mostly counted, and multiplied once in Finish.
template <int side, int kind>
struct KindSums {
  // Adds the common terms of all kinds for one piece, with its direct attacks `mobility`
  // and `xRays`, which includes attacks through own pieces.
  void AddCommon(const PieceView<side>& view, int square, Bitboard mobility, Bitboard xRays) {
    // Seldom any, so a branch is cheaper than a count.
    if (const Bitboard hits = xRays & view.enemyIsolated; hits != 0) {
      both += isolatedPawnHit * PopCount(hits);
    }
    // Some in half of all cases, so a count is cheaper than a mispredicted branch.
    const Bitboard zoneHits = xRays & view.enemyZone;
    both += enemyZoneSquare * PopCount(zoneHits);
    attackers += zoneHits != 0 ? 1 : 0;
    both += ownZoneSquare * PopCount(xRays & view.ownZone);
    centreCount += CentreCount(mobility);
    attacks |= xRays;
    kingDistance += view.enemyKingDistance[square];
  }

  // Writes the sums to the record and returns the score; `pieces` has the pieces of the
  // kind.
  ScorePair Finish(const PieceView<side>& view, EvalRecord& record, Bitboard pieces) {
    const int count = PopCount(pieces);
    record.attacks[side][kind] = attacks;
    record.kingAttackers[side ^ 1] += attackers;
    record.kingAttackWeight[side ^ 1] += attackers * KingAttackWeight[kind];
    record.kingTropism[side ^ 1] += tropismStep[kind] * kingDistance + tropismBase[kind] * count;
    if (const Bitboard hit = pieces & view.enemyPawnAttacks; hit != 0) {
      both += AttackedByPawn[kind] * PopCount(hit);
    }
    both += unsafeSquare * unsafeSquares;
    return {mg + both + ringSquare * centreCount, eg + both};
  }

  std::int32_t both = 0;  // centipawns of both halves, of one half
  std::int32_t mg = 0;
  std::int32_t eg = 0;
  Bitboard attacks = 0;
  std::int32_t attackers = 0;  // pieces that hit the enemy king's zone
  std::int32_t kingDistance = 0;
  std::int32_t unsafeSquares = 0;
  std::int32_t centreCount = 0;
};

// Bishop-like x-ray attacks, through the own pieces in `transparent`. Mostly none of
// them is attacked, and then these are the `plain` attacks.
Bitboard DiagonalXRay(const Board& board, int square, Bitboard plain, Bitboard transparent) {
  if ((plain & transparent) == 0) return plain;
  std::uint64_t diagA1H8 = board.occupiedDiagA1H8;
  std::uint64_t diagA8H1 = board.occupiedDiagA8H1;
  while (transparent != 0) {
    const RotatedBits& bits = RotatedBitsOf[static_cast<std::size_t>(PopHighest(transparent))];
    diagA1H8 &= ~bits.diagA1H8;
    diagA8H1 &= ~bits.diagA8H1;
  }
  return BishopAttacks(square, diagA1H8, diagA8H1);
}

// Rook-like x-ray attacks through the own rooks and queens.
struct LineXRay {
  LineXRay(const Board& board, Bitboard set) : transparent(set), occupied(board.occupied & ~set) {}

  Bitboard Attacks(int square, Bitboard plain) const {
    if ((plain & transparent) == 0) return plain;
    return RankAttacks[square][(occupied >> RankShift[square]) & 255] |
           FileAttacks[square][FileState(occupied, FileOf(square))];
  }

  Bitboard transparent;
  Bitboard occupied;
};

// ------------------------------------------------------------------ knights

// An outpost counts for more when an own pawn supports it and when no enemy
// minor piece can challenge it. The colour of the square is taken from the parity
// of its number, which is wrong on every other rank: a choice that is kept.
template <int side>
std::int32_t OutpostAmount(const PieceView<side>& view, int square) {
  const std::int32_t outpost = KnightOutpost.of[side][square];
  if (outpost == 0 || (view.enemyPawnAttacks & Bit(square)) != 0) return 0;
  std::int32_t amount = outpost;
  if ((view.pawnAttacks & Bit(square)) != 0) amount += outpost / 2;
  const Bitboard* enemy = PiecesOf(view.board, side ^ 1);
  const Bitboard colourSet = (square & 1) == 0 ? lightSquares : darkSquares;
  if (enemy[knight] == 0 && (enemy[bishop] & colourSet) == 0) amount += outpost / 2;
  return amount;
}

template <int side>
ScorePair KnightsOf(const PieceView<side>& view, EvalRecord& record) {
  const Bitboard knights = PiecesOf(view.board, side)[knight];
  KindSums<side, knight> sums;
  for (Bitboard left = knights; left != 0;) {
    const int square = PopHighest(left);
    const Bitboard attacks = KnightAttacks[square];
    const Bitboard mobility = attacks & ~view.own;
    sums.both += KnightSquare.of[side][square] + KnightMobility[PopCount(mobility)] +
                 OutpostAmount<side>(view, square);
    sums.unsafeSquares += PopCount(mobility & view.unsafe);
    sums.AddCommon(view, square, mobility, attacks);
  }
  return sums.Finish(view, record, knights);
}

// ------------------------------------------------------------------ bishops

// Amount for the number of bishops: the pair, or a single one and the pawns on
// squares of its colour.
template <int side>
ScorePair BishopCountAmount(const Board& board, Bitboard bishops) {
  const Bitboard others = bishops & (bishops - 1);
  if (others == 0) {
    const Bitboard colour = (bishops & lightSquares) != 0 ? lightSquares : darkSquares;
    const int pawns = PopCount(PiecesOf(board, side)[pawn] & colour);
    const std::int32_t amount = SingleBishop[std::min(pawns, nPawnCounts - 1)];
    return {amount, amount};
  }
  return (others & (others - 1)) == 0 ? bishopPair : ScorePair{};
}

// A bishop that took the rook pawn and cannot get out: White's on a7 behind
// black pawns on b6 and c7, on h7 behind g6 and f7, Black's mirrored.
template <int side>
bool IsTrappedBishop(const Board& board, int square) {
  constexpr Bitboard a7 = Bit(RelativeSquare(side, rank7, fileA));
  constexpr Bitboard b6c7 =
      Bit(RelativeSquare(side, rank6, fileB)) | Bit(RelativeSquare(side, rank7, fileC));
  constexpr Bitboard h7 = Bit(RelativeSquare(side, rank7, fileH));
  constexpr Bitboard g6f7 =
      Bit(RelativeSquare(side, rank6, fileG)) | Bit(RelativeSquare(side, rank7, fileF));
  const Bitboard here = Bit(square);
  if ((here & (a7 | h7)) == 0) return false;
  const Bitboard cage = here == a7 ? b6c7 : g6f7;
  return (PiecesOf(board, side ^ 1)[pawn] & cage) == cage;
}

template <int side>
ScorePair BishopsOf(const PieceView<side>& view, EvalRecord& record) {
  const Bitboard bishops = PiecesOf(view.board, side)[bishop];
  const Bitboard transparent = PiecesOf(view.board, side)[queen];
  KindSums<side, bishop> sums;
  const ScorePair given = BishopCountAmount<side>(view.board, bishops);
  const int count = PopCount(bishops);
  sums.mg = given.mg + bishopMobilityBase.mg * count;
  sums.eg = given.eg + bishopMobilityBase.eg * count;
  for (Bitboard left = bishops; left != 0;) {
    const int square = PopHighest(left);
    const int rank = RankOf(square);
    const Bitboard plain = BishopAttacks(view.board, square);
    const Bitboard xRays = DiagonalXRay(view.board, square, plain, transparent) & ~view.own;
    const Bitboard mobility = plain & ~view.own;
    // A bishop attacks no square of its own rank: what is not ahead is behind.
    const int ahead = PopCount(mobility & RanksAhead(side, rank));
    const int behind = PopCount(mobility) - ahead;
    sums.both +=
        BishopSquare.of[side][square] + bishopSquareAhead * ahead + bishopSquareBehind * behind;
    sums.unsafeSquares += PopCount(mobility & view.unsafe);
    if (IsTrappedBishop<side>(view.board, square)) sums.both += trappedBishop;
    sums.AddCommon(view, square, mobility, xRays);
  }
  return sums.Finish(view, record, bishops);
}

// -------------------------------------------------------------------- rooks

// A rook on a file with an own pawn, on a half-open or on an open file.
template <int side>
std::int32_t RookFileAmount(const Board& board, int file, std::int32_t nEnemyPawns) {
  const Bitboard squares = FileSet(file);
  if ((PiecesOf(board, side)[pawn] & squares) != 0) return rookBehindOwnPawn;
  if ((PiecesOf(board, side ^ 1)[pawn] & squares) != 0) return nEnemyPawns / 2 + rookHalfOpenFile;
  return nEnemyPawns + rookOpenFile;
}

// Back-rank squares between a king that did not castle and the corner; a rook on
// one of them is trapped.
template <int side>
Bitboard RookCage(const Board& board) {
  constexpr std::uint8_t ab = 0x03;
  constexpr std::uint8_t gh = 0xC0;
  constexpr std::uint8_t byKingFile[8] = {0, ab, ab, 0, 0, gh, gh, 0};
  if (board.castling.hasCastled[side] != 0) return 0;
  const Bitboard cage = byKingFile[board.kingFile[side]];
  return side == white ? cage : cage << 56;
}

// Bonus of a rook on the enemy's second rank; the same for every rook there.
template <int side>
std::int32_t SeventhRankAmount(const Board& board) {
  std::int32_t amount = 0;
  if (RelativeRank(side, board.kingRank[side ^ 1]) == rank8) amount += rookSeventhKing;
  if ((PiecesOf(board, side ^ 1)[pawn] & RelativeRankSet(side, rank7)) != 0) {
    amount += rookSeventhPawns;
  }
  return amount;
}

template <int side>
ScorePair RooksOf(const PieceView<side>& view, const LineXRay& xRay, EvalRecord& record) {
  const Bitboard rooks = PiecesOf(view.board, side)[rook];
  const std::int32_t nEnemyPawns = PopCount(PiecesOf(view.board, side ^ 1)[pawn]);
  KindSums<side, rook> sums;
  sums.both = trappedRook * PopCount(rooks & RookCage<side>(view.board));
  if (const Bitboard seventh = rooks & RelativeRankSet(side, rank7); seventh != 0) {
    sums.both += SeventhRankAmount<side>(view.board) * PopCount(seventh);
  }
  for (Bitboard left = rooks; left != 0;) {
    const int square = PopHighest(left);
    const Bitboard plain = RookAttacks(view.board, square);
    const Bitboard xRays = xRay.Attacks(square, plain) & ~view.own;
    const Bitboard mobility = plain & ~view.own;
    const int count = PopCount(mobility);
    sums.both +=
        RookSquare.of[side][square] + RookFileAmount<side>(view.board, FileOf(square), nEnemyPawns);
    sums.mg += RookMobilityMg[count];
    sums.eg += RookMobilityEg[count];
    sums.unsafeSquares += PopCount(mobility & view.unsafe);
    sums.AddCommon(view, square, mobility, xRays);
  }
  return sums.Finish(view, record, rooks);
}

// ------------------------------------------------------------------- queens

template <int side>
ScorePair QueensOf(const PieceView<side>& view, const LineXRay& xRay, EvalRecord& record) {
  const Bitboard queens = PiecesOf(view.board, side)[queen];
  const Bitboard onDiagonals = queens | PiecesOf(view.board, side)[bishop];
  KindSums<side, queen> sums;
  for (Bitboard left = queens; left != 0;) {
    const int square = PopHighest(left);
    const Bitboard diagonals = BishopAttacks(view.board, square);
    const Bitboard lines = RookAttacks(view.board, square);
    const Bitboard xRays =
        (DiagonalXRay(view.board, square, diagonals, onDiagonals) | xRay.Attacks(square, lines)) &
        ~view.own;
    const Bitboard mobility = (diagonals | lines) & ~view.own;
    // A queen's mobility counts its x-ray attacks too.
    const int count = PopCount(xRays);
    sums.mg += QueenMobilityMg[count];
    sums.eg += QueenMobilityEg[count];
    sums.both += QueenSquare.of[side][square];
    sums.AddCommon(view, square, mobility, xRays);
  }
  return sums.Finish(view, record, queens);
}

template <int side>
ScorePair PiecesOfSide(EvalRecord& record) {
  const PieceView<side> view(record);
  const Bitboard* own = PiecesOf(view.board, side);
  ScorePair* terms = record.terms[side ^ record.side];
  terms[knightsTerm] = own[knight] != 0 ? KnightsOf<side>(view, record) : ScorePair{};
  terms[bishopsTerm] = own[bishop] != 0 ? BishopsOf<side>(view, record) : ScorePair{};
  const LineXRay xRay(view.board, own[rook] | own[queen]);
  terms[rooksTerm] = own[rook] != 0 ? RooksOf<side>(view, xRay, record) : ScorePair{};
  terms[queensTerm] = own[queen] != 0 ? QueensOf<side>(view, xRay, record) : ScorePair{};
  return terms[knightsTerm] + terms[bishopsTerm] + terms[rooksTerm] + terms[queensTerm];
}

}  // namespace

MIRVO_COUNTS_BITS ScorePair EvaluatePieces(EvalRecord& record, int side) {
  return side == white ? PiecesOfSide<white>(record) : PiecesOfSide<black>(record);
}

}  // namespace mirvo
