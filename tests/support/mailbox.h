// A second rules implementation for tests: one character per square, every
// move found by walking and every legal move by trying it. It shares no code
// and no table with the engine.
#pragma once

#include <set>
#include <string>

namespace mirvo::test {

class Mailbox {
 public:
  /// The first four FEN fields; missing ones read as "w", "-" and "-".
  explicit Mailbox(const std::string& fen);

  /// Legal moves as coordinate texts.
  std::set<std::string> LegalMoves() const;

  /// Plays a move that LegalMoves names.
  void Play(const std::string& text);

  /// Whether the side to move is in check.
  bool InCheck() const;

  /// Whether a piece of `attacker` ('w' or 'b') attacks a square (file, rank 0..7).
  bool Attacks(char attacker, int file, int rank) const;

  /// Placement as FEN text.
  std::string Placement() const;

 private:
  char At(int file, int rank) const;
  char& At(int file, int rank);
  bool Own(char piece) const;
  bool Enemy(char piece) const;
  void AddIfLegal(std::set<std::string>& moves, const std::string& text) const;
  void AddPawnMoves(std::set<std::string>& moves, int file, int rank) const;
  void AddPieceMoves(std::set<std::string>& moves, int file, int rank) const;
  void AddCastling(std::set<std::string>& moves) const;
  bool KingAttacked(char owner) const;

  std::string squares;  // 64 letters, a1 first; '.' is empty
  char side;
  /// Castling rights left. One is lost when its king or rook moves. A captured rook
  /// keeps its right, which can be used only with a rook on the corner.
  std::string rights;
  int epFile;  // -1 unless the last move was a double step
  int epRank;
};

}  // namespace mirvo::test
