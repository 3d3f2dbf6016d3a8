// The record of a game under XBoard and its PGN file: eleven tag texts that the front
// end fills in, saved when the result arrives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace mirvo {

/// Bytes of one tag text, terminator included.
inline constexpr std::size_t tagCapacity = 128;

/// Tag texts in the order in which the file lists them. `spare` is not written:
/// the Round tag is always "-". Cleared by "new".
struct GameTags {
  char event[tagCapacity] = "";
  char site[tagCapacity] = "";
  char date[tagCapacity] = "";
  char spare[tagCapacity] = "";
  char white[tagCapacity] = "";
  char black[tagCapacity] = "";
  char result[tagCapacity] = "";
  char whiteElo[tagCapacity] = "";
  char blackElo[tagCapacity] = "";
  char whiteType[tagCapacity] = "";
  char blackType[tagCapacity] = "";
};

inline constexpr std::size_t moveTextBytes = 1048576;

struct FinishedGame {
  const GameTags* tags = nullptr;
  char* moveText = nullptr;  // moveTextBytes, zero-filled; stays empty
  bool headerOpen = false;
  bool movesOpen = false;
  std::FILE* file = nullptr;  // while it is being written
};

/// Room for the header with every tag at its longest.
inline constexpr std::size_t headerCapacity = 2048;

inline constexpr int maxGameFiles = 100000;
inline constexpr std::size_t gamePathCapacity = 64;

/// Begins a record of `tags`, which must outlive it. Releases the previous game's
/// move text.
void StartRecord(FinishedGame& record, const GameTags& tags);

/// Writes the first free name of "base000000.extension", "base000001..." into
/// `path` (gamePathCapacity bytes). A name is free if no such file exists. When all
/// names are taken, writes the last one and returns false.
bool ChooseGameFile(const char* base, const char* extension, char* path);

/// Writes the eleven tag lines into `text` (headerCapacity bytes).
void BuildHeader(const GameTags& tags, char* text);

/// Writes the game to `path`. Removes a new file that cannot be written completely,
/// as on a full disk, because it would use up a number.
void WriteGameFile(FinishedGame& record, const char* path, bool isNew);

/// Saves the game in the working directory if `loggingMode` is not 0. Does not report
/// errors.
void SaveGame(FinishedGame& record, std::int32_t loggingMode);

/// Releases the move text (tests; the engine keeps its last record to the end).
void ReleaseRecord(FinishedGame& record);

}  // namespace mirvo
