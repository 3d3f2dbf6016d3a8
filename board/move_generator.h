// The move-generator interface.
#pragma once

namespace mirvo {

/// Fills a list with the pseudo-legal moves of one side: castling looks at
/// attacked squares, every other move is tested by the caller after MakeMove.
class MoveGenerator {
 public:
  virtual ~MoveGenerator() = default;
  virtual void GenerateAll() = 0;
  virtual void GenerateNonCaptures() = 0;
  virtual void GenerateCaptures() = 0;
};

}  // namespace mirvo
