// Position keys with the values of the published Polyglot Random64 table, the
// list of past keys, and the repetition test on it.
#pragma once

#include <cstdint>

#include "board/coding.h"

namespace mirvo {

struct Board;

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

inline constexpr int keyHistoryCapacity = 2048;

/// Keys of the positions after every move that took nothing and moved no
/// pawn; entry 0 is the position set up. One list shared by all boards, each
/// with its own historyIndex. Owner: keys.cpp. Writers: set-up, MakeMove.
extern std::uint64_t KeyHistory[keyHistoryCapacity];

/// The key of the position from scratch.
std::uint64_t ComputeKey(const Board& board);

/// The piece keys of all pawns, from scratch. Without the side to move.
std::uint64_t ComputePawnKey(const Board& board);

/// Whether the current key stands exactly twice in KeyHistory up to
/// historyIndex. Three or more occurrences answer no: the engine treats only
/// the first return to a position as a repetition.
bool IsRepetition(const Board& board);

/// Computes the key and makes it entry 0 of KeyHistory: a game that starts
/// from a set-up position begins its history there.
void StartKeyHistory(Board& board);

}  // namespace mirvo
