// The move word: a move in 32 bits.
//
//   bits  0-5   from-square          bits 18-20  captured kind
//   bits  6-11  to-square            bits 21-23  promotion kind
//   bit   12    colour of the mover  bit  27     mate mark (root search)
//   bit   13    SAN names the file   bit  28     check mark
//   bits 15-17  moving kind          bit  30     promotion flag
//                                    bit  31     capture flag
#pragma once

#include <cstdint>

#include "board/coding.h"

namespace mirvo {

using Move = std::uint32_t;

inline constexpr Move noMove = 0;

inline constexpr int moveToShift = 6;
inline constexpr int moveColourShift = 12;
inline constexpr int moveKindShift = 15;
inline constexpr int moveCapturedShift = 18;
inline constexpr int movePromotionShift = 21;

inline constexpr Move sanFileMark = Move{1} << 13;
inline constexpr Move mateMark = Move{1} << 27;
inline constexpr Move checkMark = Move{1} << 28;
inline constexpr Move promotionFlag = Move{1} << 30;
inline constexpr Move captureFlag = Move{1} << 31;
inline constexpr Move capturedMask = Move{7} << moveCapturedShift;
inline constexpr Move fromToMask = 0xFFF;

/// Fields that identify a move for ordering: from, to, colour and moving kind.
inline constexpr Move sameMoveMask = 0x39FFF;

/// Promotion flag and kind.
constexpr Move PromotionBits(int kind) {
  return promotionFlag | (static_cast<Move>(kind) << movePromotionShift);
}
static_assert(PromotionBits(queen) == 0x40800000);
static_assert(PromotionBits(knight) == 0x40200000);

constexpr int FromSquare(Move move) { return static_cast<int>(move & 63); }
constexpr int ToSquare(Move move) { return static_cast<int>((move >> moveToShift) & 63); }
constexpr int MoveColour(Move move) { return static_cast<int>((move >> moveColourShift) & 1); }
constexpr int MovingKind(Move move) { return static_cast<int>((move >> moveKindShift) & 7); }
constexpr int CapturedKind(Move move) { return static_cast<int>((move >> moveCapturedShift) & 7); }
constexpr int PromotionKind(Move move) {
  return static_cast<int>((move >> movePromotionShift) & 7);
}
constexpr bool IsCapture(Move move) { return (move & captureFlag) != 0; }
constexpr bool IsPromotion(Move move) { return (move & promotionFlag) != 0; }

/// Whether the move neither captures nor moves a pawn.
constexpr bool IsReversible(Move move) { return !IsCapture(move) && MovingKind(move) != pawn; }

/// The fields by which move ordering compares moves; promotion and capture bits
/// are ignored.
constexpr Move Identity(Move move) { return move & sameMoveMask; }
constexpr bool SameMove(Move a, Move b) { return Identity(a) == Identity(b); }

/// Builds a plain move word: no capture, no promotion.
constexpr Move BuildMove(int from, int to, int side, int kind) {
  return static_cast<Move>(from) | (static_cast<Move>(to) << moveToShift) |
         (static_cast<Move>(side) << moveColourShift) | (static_cast<Move>(kind) << moveKindShift);
}

/// The move with its captured-kind field replaced by `kind`.
constexpr Move WithCaptured(Move move, int kind) {
  return (move & ~capturedMask) | (static_cast<Move>(kind) << moveCapturedShift);
}

}  // namespace mirvo
