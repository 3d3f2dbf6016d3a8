// State of the game under XBoard: which side the engine plays, the clocks, and the data
// for the game record.
#pragma once

#include <cstdint>

#include "board/coding.h"
#include "protocol/game_record.h"
#include "search/iterate.h"

namespace mirvo {

struct XBoardGame {
  // Cleared by "new".
  std::int32_t engineColour = black;  // the side the engine plays
  bool force = false;                 // moves are recorded, not answered
  bool gameInProgress = false;        // the engine is a player
  bool clockReceived = false;         // a "time" or "otim" has arrived
  bool computerOpponent = false;
  std::int32_t ownRating = 0;
  std::int32_t opponentRating = 0;
  GameTags tags;
  bool gameStarted = false;  // the header is filled

  // Kept between games. Times in ms.
  char opponentName[tagCapacity] = "";
  std::int32_t ownTime = 0;
  bool ownTimeReceived = false;  // a "time" has arrived
  std::int32_t opponentTime = 0;
  std::int32_t ownIncrement = 0;
  std::int32_t opponentIncrement = 0;
  std::int32_t movesToGo = 0;    // no command sets it
  bool LastMoveFlagged = false;  // the last search ended on a mate score
  FinishedGame record;
  SearchLimits* running = nullptr;  // limits of the search; null when none is running

  /// The search; tests install their own.
  SearchResult (*think)(SearchRecord&) = Think;
};

/// Owner: xboard_game.cpp. Writers: the XBoard front end.
extern XBoardGame xboardGame;

/// "new": the engine has Black and waits for White's first move. Keeps the clocks and
/// the opponent's name.
void BeginXBoardGame(XBoardGame& game);

/// Fills in names, ratings and player types by colour and starts the record, unless
/// this game already has its header.
void FillGameHeader(XBoardGame& game);

/// "result": fills the Result tag from `text`, saves a game in progress and
/// ends it.
void EndXBoardGame(XBoardGame& game, const char* text);

/// Copies `text` without line ends into a tag text, cut at its capacity.
void CopyTagText(char (&tag)[tagCapacity], const char* text);

}  // namespace mirvo
