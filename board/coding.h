// Coding shared by every part of the engine: squares, sides, piece kinds and
// their letters. Constant data only; nothing here changes at run time.
#pragma once

#include <cstdint>

namespace mirvo {

/// A set of squares; bit n is square n (a1 = 0, h1 = 7, a8 = 56, h8 = 63).
using Bitboard = std::uint64_t;

inline constexpr int nSquares = 64;

// Sides. The opponent of a side is side ^ 1.
inline constexpr int white = 0;
inline constexpr int black = 1;
inline constexpr int nSides = 2;

// Piece kinds. `noPiece` is the answer "nothing there"; `unknownKind` in a
// move word asks the board to look the kind up on the from-square.
inline constexpr int pawn = 0;
inline constexpr int knight = 1;
inline constexpr int bishop = 2;
inline constexpr int rook = 3;
inline constexpr int queen = 4;
inline constexpr int king = 5;
inline constexpr int nKinds = 6;
inline constexpr int nPieces = nSides * nKinds;
inline constexpr int noPiece = -1;
inline constexpr int unknownKind = 7;

/// Piece letters, indexed by side * nKinds + kind.
inline constexpr char pieceLetters[] = "PNBRQKpnbrqk";

/// Value of the en-passant rank and file fields when there is no such square.
inline constexpr std::uint8_t noEnPassant = 255;

// Files and ranks by their numbers.
inline constexpr int fileA = 0;
inline constexpr int fileB = 1;
inline constexpr int fileC = 2;
inline constexpr int fileD = 3;
inline constexpr int fileE = 4;
inline constexpr int fileF = 5;
inline constexpr int fileG = 6;
inline constexpr int fileH = 7;
inline constexpr int rank1 = 0;
inline constexpr int rank2 = 1;
inline constexpr int rank3 = 2;
inline constexpr int rank4 = 3;
inline constexpr int rank5 = 4;
inline constexpr int rank6 = 5;
inline constexpr int rank7 = 6;
inline constexpr int rank8 = 7;

constexpr int SquareAt(int rank, int file) { return rank * 8 + file; }
constexpr int RankOf(int square) { return square >> 3; }
constexpr int FileOf(int square) { return square & 7; }

// Files and ranks by the characters of move and position texts.
constexpr char FileLetter(int square) { return static_cast<char>('a' + FileOf(square)); }
constexpr char RankDigit(int square) { return static_cast<char>('1' + RankOf(square)); }
constexpr bool IsFileLetter(char c) { return c >= 'a' && c <= 'h'; }
constexpr bool IsRankDigit(char c) { return c >= '1' && c <= '8'; }

/// The set that holds only `square` (0..63).
constexpr Bitboard Bit(int square) { return Bitboard{1} << square; }

/// Index of a piece in the twelve bitboards of a board.
constexpr int PieceIndex(int side, int kind) { return side * nKinds + kind; }

/// The same square seen from the other side of the board (a1 <-> a8).
constexpr int Flip(int square) { return square ^ 56; }

}  // namespace mirvo
