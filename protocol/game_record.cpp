#include "protocol/game_record.h"

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "shell/base/file.h"

namespace mirvo {

void StartRecord(FinishedGame& record, const GameTags& tags) {
  ReleaseRecord(record);
  record.moveText = static_cast<char*>(std::calloc(moveTextBytes, 1));
  record.tags = &tags;
  record.headerOpen = true;
  record.movesOpen = true;
}

void ReleaseRecord(FinishedGame& record) {
  std::free(record.moveText);
  record.moveText = nullptr;
}

namespace {

/// A file that exists but cannot be opened is not free.
bool NameIsFree(const char* path) { return OpenFile(path, "r") == nullptr && errno == ENOENT; }

}  // namespace

bool ChooseGameFile(const char* base, const char* extension, char* path) {
  for (int i = 0; i < maxGameFiles; ++i) {
    std::snprintf(path, gamePathCapacity, "%s%06i.%s", base, i, extension);
    if (NameIsFree(path)) return true;
  }
  return false;
}

void BuildHeader(const GameTags& tags, char* text) {
  std::snprintf(text, headerCapacity,
                "[Event \"%s\"]\n[Site \"%s\"]\n[Date \"%s\"]\n[Round \"-\"]\n[White \"%s\"]\n"
                "[Black \"%s\"]\n[Result \"%s\"]\n[WhiteElo \"%s\"]\n[BlackElo \"%s\"]\n"
                "[WhiteType \"%s\"]\n[BlackType \"%s\"]\n",
                tags.event, tags.site, tags.date, tags.white, tags.black, tags.result,
                tags.whiteElo, tags.blackElo, tags.whiteType, tags.blackType);
}

void WriteGameFile(FinishedGame& record, const char* path, bool isNew) {
  File file = OpenFile(path, "w");
  if (file == nullptr) return;
  record.file = file.get();
  char header[headerCapacity];
  BuildHeader(*record.tags, header);
  std::fprintf(record.file, "%s\n\n", header);
  std::fprintf(record.file, "%s\n\n\n", record.moveText == nullptr ? "" : record.moveText);
  const bool isWhole = CloseWritten(std::move(file));
  record.file = nullptr;
  if (isNew && !isWhole) std::remove(path);
}

void SaveGame(FinishedGame& record, std::int32_t loggingMode) {
  if (loggingMode == 0 || record.tags == nullptr) return;
  char path[gamePathCapacity];
  const bool isNew = ChooseGameFile("game", "pgn", path);
  WriteGameFile(record, path, isNew);
}

}  // namespace mirvo
