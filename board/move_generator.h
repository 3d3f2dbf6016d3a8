// The move-generator interface.
#pragma once

namespace mirvo {

/// Fills a list with the pseudo-legal moves of one side. Castling is only
/// generated over squares that are not attacked; whether another move leaves the
/// own king attacked is for the caller to test after MakeMove.
class MoveGenerator {
 public:
  virtual ~MoveGenerator() = default;
  virtual void GenerateAll() = 0;
  virtual void GenerateNonCaptures() = 0;
  virtual void GenerateCaptures() = 0;
};

}  // namespace mirvo
