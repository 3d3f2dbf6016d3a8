// The numbers of position keys, from the published Polyglot Random64 table. Constant
// data.
#pragma once

#include <cstdint>

#include "board/coding.h"

namespace mirvo {

inline constexpr int nRandom64 = 781;
inline constexpr int castlingKeyOffset = 768;  // white short, long, black short, long
inline constexpr int enPassantKeyOffset = 772;
inline constexpr int sideKeyOffset = 780;

/// The 781 published keys, in published order.
extern const std::uint64_t Random64[nRandom64];

/// The 768 piece keys, by side, kind and square.
struct PieceKeyTable {
  std::uint64_t key[nSides][nKinds][nSquares];
};
extern const PieceKeyTable PieceKeys;

inline std::uint64_t PieceKey(int side, int kind, int square) {
  return PieceKeys.key[side][kind][square];
}
inline std::uint64_t ShortCastlingKey(int side) { return Random64[castlingKeyOffset + 2 * side]; }
inline std::uint64_t LongCastlingKey(int side) {
  return Random64[castlingKeyOffset + 2 * side + 1];
}
inline std::uint64_t EnPassantKey(int file) { return Random64[enPassantKeyOffset + (file & 7)]; }

/// Included in the key when White is to move.
inline std::uint64_t SideKey() { return Random64[sideKeyOffset]; }

}  // namespace mirvo
