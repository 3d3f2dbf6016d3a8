// Cutting PGN text into tags and words. Comments, variations and encodings
// that games in the wild come with are dealt with here; no chess is known.
#pragma once

#include <cstdint>

#include "book/byte_reader.h"

namespace mirvo {

/// Longest word kept, terminator included; the rest of a longer one is skipped.
inline constexpr int pgnWordCapacity = 64;

enum class PgnToken { tag, word, end };

/// Reads an open file from its beginning. Memory does not depend on the file:
/// comments, variations and tags of any length are passed through.
class PgnScanner {
 public:
  explicit PgnScanner(std::FILE* file) : bytes(file) {}

  /// Reads up to the next tag or word; `end` for ever after the last one.
  PgnToken Next();

  /// The word just read.
  const char* Word() const { return word; }

  /// Whether the tag just read speaks of a result, and the points it gives:
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

/// The move in a word: behind a move number that is written together with it
/// ("12.Nf3", "12...Nf6"). Null when no letter stands there: a bare number, a
/// result, a "*", a "$5".
const char* MoveInWord(const char* word);

}  // namespace mirvo
