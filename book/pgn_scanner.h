// Splits PGN text into tags and words. Handles comments, variations and the
// encodings of real files; knows nothing of chess.
#pragma once

#include <cstdint>

#include "book/byte_reader.h"

namespace mirvo {

/// Room for a word and its terminator; the rest of a longer word is skipped.
inline constexpr int pgnWordCapacity = 64;

enum class PgnToken { tag, word, end };

/// Reads an open file from its beginning. Its memory does not depend on the file:
/// comments, variations and tags may have any length.
class PgnScanner {
 public:
  explicit PgnScanner(std::FILE* file) : bytes(file) {}

  /// Reads the next tag or word; after the last one always returns `end`.
  PgnToken Next();

  /// The word just read.
  const char* Word() const { return word; }

  /// Whether the tag just read contains "Result", and the points of that result:
  /// 2 for a win, 1 for a draw, else 0.
  bool TagHasResult() const { return tagHasResult; }
  std::int32_t WhitePoints() const { return whitePoints; }
  std::int32_t BlackPoints() const { return blackPoints; }

 private:
  int NextCharacter();
  int PeekCharacter();
  void SkipMark();
  void SkipComment();
  void SkipLine();
  void SkipVariation();
  void ReadTag();
  void ReadWordText(int first);

  ByteReader bytes;
  bool atStart = true;
  char word[pgnWordCapacity] = "";
  bool tagHasResult = false;
  std::int32_t whitePoints = 0;
  std::int32_t blackPoints = 0;
};

/// The move in a word, after an attached move number ("12.Nf3", "12...Nf6"). Null
/// if no letter follows: a bare number, a result, a "*", a "$5".
const char* MoveInWord(const char* word);

}  // namespace mirvo
