#include "board/bits.h"

namespace mirvo {

std::uint8_t PopCount16[nChunks16];
std::uint8_t HighBit16[nChunks16];
Bitboard SquareBit[nSquares];
Bitboard SquareClear[nSquares];

void BuildHighBit16() {
  HighBit16[0] = 63;
  for (int value = 1; value < nChunks16; ++value) {
    HighBit16[value] = static_cast<std::uint8_t>(48 + HighestSquare(static_cast<Bitboard>(value)));
  }
}

void BuildPopCount16() {
  PopCount16[0] = 0;
  PopCount16[1] = 1;
  // Each block of the next power of two repeats all before it, one bit more.
  for (int power = 2; power < nChunks16; power *= 2) {
    for (int low = 0; low < power; ++low) {
      PopCount16[power + low] = static_cast<std::uint8_t>(PopCount16[low] + 1);
    }
  }
}

void BuildSquareBit() {
  for (int square = 0; square < nSquares; ++square) SquareBit[square] = Bit(square);
}

void BuildSquareClear() {
  for (int square = 0; square < nSquares; ++square) SquareClear[square] = ~Bit(square);
}

}  // namespace mirvo
