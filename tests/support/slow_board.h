// A second implementation of making move words: one flag per side, kind and
// square, every field set by its rule and every key computed from scratch. Plays
// any word, legal or not, and shares only the published keys with the engine.
#pragma once

#include <cstdint>
#include <vector>

#include "board/board.h"

namespace mirvo::test {

class SlowBoard {
 public:
  /// Copies the position, counters and key history of a board, and its newest undo
  /// record.
  explicit SlowBoard(const Board& board);

  /// Plays a word of kind pawn to king or of unknown kind.
  void Play(Move word);

  /// Fails the test unless `board` has the same pieces, state, counters, key
  /// history and, after Play, the same newest record.
  void ExpectSame(const Board& board) const;

 private:
  struct State {
    bool stands[nSides][nKinds][nSquares] = {};
    CastlingFlags castling = {};
    std::uint8_t epRank = 0;
    std::uint8_t epFile = 0;
    std::uint8_t epColour = 0;
    std::uint8_t nullMoveMade = 0;
    int side = white;
  };

  /// The expected undo record of the newest move.
  struct Record {
    Move word = noMove;
    bool captured = false;
    int capturedKind = pawn;
    bool castledShort = false;
    bool castledLong = false;
    bool epCapture = false;
    State before;
  };

  static std::uint64_t KeyOf(const State& state);
  bool Occupied(int square) const;
  int KindOn(int square, int side, const int* order, int nOrder) const;
  bool EnPassantIsOpen() const;
  void TakeOn(int square, int kind);
  void Land(int from, int to, int kind, int landed);
  void Castle(int from, int to);
  void SetEnPassant(int kind, int from, int to);

  State state;
  bool hasOverlaps;
  int plyCount;
  int undoDepth;
  std::vector<std::uint64_t> keys;
  bool played = false;
  Record record;
};

}  // namespace mirvo::test
