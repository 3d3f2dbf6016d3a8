#include "protocol/xboard_game.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "board/fen.h"
#include "book/opening_book.h"
#include "protocol/game_board.h"
#include "protocol/xboard_ponder.h"
#include "search/game_counters.h"
#include "search/hash/hash_memory.h"
#include "search/move_order.h"
#include "search/pondering.h"
#include "search/search_flags.h"
#include "shell/base/output.h"
#include "shell/base/text.h"
#include "shell/config/config.h"

namespace mirvo {

constinit XBoardGame xboardGame;

namespace {

/// A book that is not empty is probed again in every new game.
void OpenBookAgain() {
  if (openingBook.count > 0) {
    engineConfig.UseOpeningBook = 1;
    searchFlags.BookInUse = true;
  }
}

void ClearGameState(XBoardGame& game) {
  game.engineColour = black;
  game.force = false;
  game.gameInProgress = false;
  game.clockReceived = false;
  game.computerOpponent = false;
  game.ownRating = 0;
  game.opponentRating = 0;
  game.tags = GameTags{};
  game.gameStarted = false;
}

void WriteRating(char (&tag)[tagCapacity], std::int32_t rating) {
  std::snprintf(tag, tagCapacity, "%d", rating);
}

/// A draw is written as "1/2-1/2", an unfinished game as "*", a win as "1-0".
std::size_t ResultLength(const char* text) {
  if (text[0] == '*') return 1;
  return text[0] != 0 && text[1] == '/' ? 7 : 3;
}

}  // namespace

void BeginXBoardGame(XBoardGame& game) {
  BeginFromStart(gameBoard);
  ClearGameState(game);
  gameCounters = GameCounters{};
  xboardPonder = XBoardPonder{};
  searchFlags.StopSearch = false;
  searchFlags.pondering = false;
  OpenBookAgain();
  ClearHistory();
  HashPrefaultFor(newGamePrefaultTime);
  ponderStats = PonderStats{};
}

void FillGameHeader(XBoardGame& game) {
  if (game.gameStarted) return;
  const bool engineIsWhite = game.engineColour == white;
  GameTags& tags = game.tags;
  auto& ownName = engineIsWhite ? tags.white : tags.black;
  auto& opponentName = engineIsWhite ? tags.black : tags.white;
  std::snprintf(ownName, tagCapacity, "%s %s", engineName, engineVersion);
  CopyText(opponentName, tagCapacity, game.opponentName);
  WriteRating(engineIsWhite ? tags.whiteElo : tags.blackElo, game.ownRating);
  WriteRating(engineIsWhite ? tags.blackElo : tags.whiteElo, game.opponentRating);
  CopyText(engineIsWhite ? tags.whiteType : tags.blackType, tagCapacity, "program");
  CopyText(engineIsWhite ? tags.blackType : tags.whiteType, tagCapacity,
           game.computerOpponent ? "program" : "human");
  StartRecord(game.record, tags);
  game.gameStarted = true;
}

void EndXBoardGame(XBoardGame& game, const char* text) {
  char result[tagCapacity];
  CopyTagText(result, text);
  const std::size_t length = std::min(ResultLength(result), std::strlen(result));
  CopyText(game.tags.result, length + 1, result);
  if (game.gameInProgress) SaveGame(game.record, engineConfig.LoggingMode);
  game.gameInProgress = false;
  game.gameStarted = false;
}

void CopyTagText(char (&tag)[tagCapacity], const char* text) {
  std::size_t length = 0;
  for (; *text != 0 && length + 1 < tagCapacity; ++text) {
    if (*text != '\n' && *text != '\r') tag[length++] = *text;
  }
  tag[length] = 0;
}

}  // namespace mirvo
