#include "protocol/xboard.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "board/fen.h"
#include "board/notation.h"
#include "protocol/game_board.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_play.h"
#include "protocol/xboard_ponder.h"
#include "search/search_flags.h"
#include "shell/base/text.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

constexpr std::int32_t msPerCentisecond = 10;
constexpr std::int32_t msPerSecond = 1000;

/// Room for a word of "level" or "rating"; longer ones are cut.
constexpr std::size_t fieldCapacity = 32;

/// `rest` is the line after the command word.
using Action = void (*)(XBoardGame& game, const char* rest);

struct Command {
  const char* word;
  Action action;
};

void Ignore(XBoardGame&, const char*) {}

void NewGame(XBoardGame& game, const char*) { BeginXBoardGame(game); }

/// What "force" and "result" do to a search: end it, unmake a pondered move, and record
/// a held move without an answer.
void EndSearch() {
  if (searchFlags.pondering) AbandonPondering();
  searchFlags.StopSearch = true;
  xboardPonder.ReplayPonderMove = false;
  xboardPonder.recordOnly = xboardPonder.PendingMove;
}

void Force(XBoardGame& game, const char*) {
  game.force = true;
  EndSearch();
}

/// Ends the process at once: all output is already flushed.
[[noreturn]] void Quit(XBoardGame&, const char*) { std::exit(0); }

std::int32_t ClockMilliseconds(const char* rest) {
  return MultiplySaturated(ReadDecimal(rest), msPerCentisecond);
}

void OwnTime(XBoardGame& game, const char* rest) {
  game.ownTime = ClockMilliseconds(rest);
  game.ownTimeReceived = true;
  game.clockReceived = true;
}

void OpponentTime(XBoardGame& game, const char* rest) {
  game.opponentTime = ClockMilliseconds(rest);
  game.clockReceived = true;
}

void Go(XBoardGame& game, const char*) { StartPlaying(game); }

void PonderOn(XBoardGame&, const char*) { engineConfig.Ponder = 1; }

void PonderOff(XBoardGame&, const char*) { engineConfig.Ponder = 0; }

void ComputerOpponent(XBoardGame& game, const char*) { game.computerOpponent = true; }

void Ratings(XBoardGame& game, const char* rest) {
  char own[fieldCapacity];
  char opponent[fieldCapacity];
  ReadWord(ReadWord(rest, own, sizeof own), opponent, sizeof opponent);
  game.ownRating = ReadDecimal(own);
  game.opponentRating = ReadDecimal(opponent);
}

void EngineIsBlack(XBoardGame& game, const char*) { game.engineColour = black; }

void EngineIsWhite(XBoardGame& game, const char*) { game.engineColour = white; }

/// The text after the word and one blank.
const char* TextOf(const char* rest) { return *rest == 0 ? rest : rest + 1; }

void Site(XBoardGame& game, const char* rest) { CopyTagText(game.tags.site, TextOf(rest)); }

void OpponentName(XBoardGame& game, const char* rest) {
  CopyTagText(game.opponentName, TextOf(rest));
}

void Result(XBoardGame& game, const char* rest) {
  EndXBoardGame(game, TextOf(rest));
  EndSearch();
}

/// Skips moves per session and base time: "time" says what is left.
void Level(XBoardGame& game, const char* rest) {
  char field[fieldCapacity];
  for (int i = 0; i < 3; ++i) rest = ReadWord(rest, field, sizeof field);
  game.ownIncrement = MultiplySaturated(ReadDecimal(field), msPerSecond);
  game.opponentIncrement = game.ownIncrement;
}

void SetBoard(XBoardGame&, const char* rest) {
  char placement[fenWordCapacity];
  char side[fenWordCapacity];
  char castling[fenWordCapacity];
  rest = ReadWord(rest, placement, sizeof placement);
  rest = ReadWord(rest, side, sizeof side);
  ReadWord(rest, castling, sizeof castling);
  BeginFromFen(placement, side, castling, gameBoard);
  PrintGameBoard();
}

/// The first entry that a line starts with decides, so "goodbye" is a "go".
constexpr Command commands[] = {
    {"new", NewGame},
    {"draw", Ignore},
    {"force", Force},
    {"quit", Quit},
    {"time", OwnTime},
    {"otim", OpponentTime},
    {"go", Go},
    {"hard", PonderOn},
    {"easy", PonderOff},
    {"computer", ComputerOpponent},
    {"rating", Ratings},
    {"black", EngineIsBlack},
    {"ics", Site},
    {"white", EngineIsWhite},
    {"accepted", Ignore},
    {"rejected", Ignore},
    {"result", Result},
    {"level", Level},
    {"setboard", SetBoard},
    {"name", OpponentName},
};

}  // namespace

void HandleXBoardLine(std::uint8_t&, const char* line) {
  for (const Command& command : commands) {
    if (StartsWith(line, command.word)) {
      command.action(xboardGame, line + std::strlen(command.word));
      return;
    }
  }
  if (IsCoordinateMove(line)) HandleXBoardMove(xboardGame, line);
}

}  // namespace mirvo
