// Every number of the evaluation, in centipawns: weights that are single
// numbers here, tables in eval_tables.cpp. Data only.
#pragma once

#include <cstdint>

#include "board/coding.h"
#include "eval/score.h"

namespace mirvo {

/// One value per side and square, ready to read without mirroring.
struct SquareValues {
  std::int16_t of[nSides][nSquares];
};

// ---------------------------------------------------------- phase and stage

/// 1 / 7800: non-pawn material of both sides that makes the phase 1.
inline constexpr float phasePerCentipawn = 0.00012820512F;

/// Below this non-pawn material of either side the end-game stage begins.
inline constexpr std::int32_t endgameMaterial = 1101;
/// Last ply at which the opening stage is possible.
inline constexpr std::int32_t openingPlies = 20;

// ------------------------------------------------- piece-square and outposts

extern const SquareValues PawnSquareMg;
extern const SquareValues PawnSquareEg;
extern const SquareValues KnightSquare;
extern const SquareValues BishopSquare;
extern const SquareValues RookSquare;
extern const SquareValues QueenSquare;           // not mirrored for Black
extern const SquareValues KingOpeningSquare;     // both halves
extern const SquareValues KingMiddlegameSquare;  // negative entries doubled already
extern const SquareValues KingEndgameSquare;     // not mirrored for Black
extern const SquareValues KnightOutpost;

// ------------------------------------------------------------------- pawns

/// Entries of tables indexed by a number of pawns; larger counts use the last.
inline constexpr int nPawnCounts = 9;

extern const std::int16_t DoubledByCount[nPawnCounts];
extern const std::int16_t IsolatedByFile[8];
inline constexpr std::int32_t doubledWithoutRook = -5;
inline constexpr std::int32_t doubledBehindEnemy = -10;
inline constexpr std::int32_t doubledAdvanced = -5;
inline constexpr std::int32_t protectedPawn = 10;
inline constexpr std::int32_t doubledIsolated = -10;
inline constexpr std::int32_t unopposedDoubled = 3;
inline constexpr std::int32_t unopposedPawn = 10;
inline constexpr std::int32_t unopposedNotIsolated = 10;
inline constexpr ScorePair backwardPawn = {-10, -20};

// ------------------------------------------------------------ passed pawns

/// By relative rank less one: 0 on the second rank, 5 on the seventh.
inline constexpr int nPassedRanks = 6;
extern const ScorePair PassedByRank[nPassedRanks];
inline constexpr std::int32_t ownMajorInFront = -20;
inline constexpr std::int32_t ownMajorBehind = 15;
inline constexpr std::int32_t enemyMajorBehind = -15;
inline constexpr std::int32_t ownBlocker = -4;
inline constexpr std::int32_t enemyBlocker = -2;
inline constexpr ScorePair wonRace = {10, 20};
inline constexpr std::int32_t pathControl = 5;
/// Most enemy non-pawn material for the rook-pawn bonus (one minor piece).
inline constexpr std::int32_t rookPawnMaterial = 400;
inline constexpr std::int32_t rookPawnFree = 10;
inline constexpr std::int32_t rookPawnOpposed = -10;

// ------------------------------------------------------------------ pieces

/// Indexed by kind, knight to queen.
extern const std::int16_t AttackedByPawn[nKinds];
extern const std::int16_t KingAttackWeight[nKinds];
inline constexpr std::int32_t unsafeSquare = -4;
inline constexpr std::int32_t isolatedPawnHit = 10;
inline constexpr std::int32_t ringSquare = 5;
inline constexpr std::int32_t centreSquare = 10;
inline constexpr std::int32_t enemyZoneSquare = 4;
inline constexpr std::int32_t ownZoneSquare = 2;

// Mobility by number of squares; the range is what the geometry allows.
extern const std::int16_t KnightMobility[9];
extern const std::int16_t RookMobilityMg[16];
extern const std::int16_t RookMobilityEg[16];
extern const std::int16_t QueenMobilityMg[28];
extern const std::int16_t QueenMobilityEg[28];

extern const std::int16_t SingleBishop[nPawnCounts];
inline constexpr ScorePair bishopPair = {30, 50};
inline constexpr ScorePair bishopMobilityBase = {-12, -20};
inline constexpr std::int32_t bishopSquareAhead = 5;
inline constexpr std::int32_t bishopSquareBehind = 3;
inline constexpr std::int32_t trappedBishop = -80;

inline constexpr std::int32_t rookBehindOwnPawn = -5;
inline constexpr std::int32_t rookHalfOpenFile = 6;  // plus half the enemy pawns
inline constexpr std::int32_t rookOpenFile = 16;     // plus the enemy pawns
inline constexpr std::int32_t trappedRook = -20;
inline constexpr std::int32_t rookSeventhKing = 15;
inline constexpr std::int32_t rookSeventhPawns = 10;

// -------------------------------------------------------------------- king

/// The danger table of king.h: so many points, and a fraction of their square.
inline constexpr int nKingDanger = 100;
inline constexpr float kingDangerScale = 0.05F;
inline constexpr std::int32_t dangerPerZoneSquare = 3;

inline constexpr std::int32_t shelterPawn = 5;
inline constexpr std::int32_t shelterBase = -15;
inline constexpr std::int32_t shelterScale = 4;
inline constexpr std::int32_t fullShelter = 3;
inline constexpr std::int32_t shelterAdvanced = 10;
inline constexpr std::int32_t shelterMissing = -20;

inline constexpr std::int32_t lostCastling = -50;
inline constexpr std::int32_t uncastledEg = -35;
inline constexpr std::int32_t uncastledPawn = 10;
inline constexpr std::int32_t uncastledBase = -95;
inline constexpr std::int32_t uncastledWingPawns = 6;
inline constexpr std::int32_t uncastledHole = -5;

inline constexpr std::int32_t kingFileOpen = -30;
inline constexpr std::int32_t kingNeighbourFileOpen = -15;

/// Tropism by kind: so much per step of Manhattan distance to the enemy king,
/// from such a base.
inline constexpr std::int32_t tropismStep[nKinds] = {0, 2, 1, 1, 5, 0};
inline constexpr std::int32_t tropismBase[nKinds] = {0, -28, -14, -14, -70, 0};

inline constexpr std::int32_t backRankWeakness = -10;
inline constexpr int presenceRadius = 3;
inline constexpr std::int32_t zonePresence = 5;
inline constexpr std::int32_t pawnStorm = -10;

/// A king off its back rank has a zone of this Manhattan radius.
inline constexpr int kingZoneRadius = 2;

// ------------------------------------------------- the driver's own amounts

inline constexpr std::int32_t centreBlockade = -10;
inline constexpr std::int32_t wingPawnsEg = 20;
inline constexpr std::int32_t minorAtHome = -15;
inline constexpr std::int32_t minorAtHomeQueenOut = -5;
inline constexpr std::int32_t noCornerRook = -50;

/// Rows: attacker pawn to queen; columns: victim pawn to queen.
extern const std::int16_t Threat[king][king];

/// Sum of Threat over a set of attacker kinds (bit 0 is the pawn), by victim.
struct ThreatSums {
  std::int16_t of[king][1 << king];
};
extern const ThreatSums ThreatsBy;

}  // namespace mirvo
