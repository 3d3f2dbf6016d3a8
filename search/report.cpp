#include "search/report.h"

#include <cstdio>
#include <cstring>

#include "board/legal_moves.h"
#include "board/notation.h"
#include "board/san.h"
#include "search/search_flags.h"
#include "search/search_stats.h"
#include "search/time_control.h"
#include "shell/base/clock.h"
#include "shell/base/output.h"
#include "shell/base/protocol_mode.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

constexpr std::uint32_t rootMoveInterval = 1000;  // ms between root-move lines

// Tick count of the newest root-move line, over all searches of the process.
std::uint32_t lastRootMoveLine = 0;

void FormatMove(Move move, bool san, char* text) {
  if (san) {
    MoveToSan(move, text);
  } else {
    MoveToCoordinates(move, text);
  }
}

// The text of a whole line, which is printed at once.
struct PvText {
  char text[(pvCapacity + 2) * moveTextCapacity] = "";
  std::size_t length = 0;

  void Append(const char* part) {
    const std::size_t size = std::strlen(part);
    if (length + size >= sizeof(text)) return;
    std::memcpy(text + length, part, size + 1);
    length += size;
  }
  void AppendMove(Move move, bool san) {
    char moveText[moveTextCapacity];
    FormatMove(move, san, moveText);
    Append(moveText);
  }
};

void AppendPv(PvText& text, const PvLine& pv, bool san) {
  if (searchFlags.pondering && searchFlags.ponderMove != noMove) {
    text.Append("(");
    text.AppendMove(searchFlags.ponderMove, san);
    text.Append(") ");
  }
  for (int i = 0; i < pv.length; ++i) {
    text.AppendMove(pv.moves[i], san);
    text.Append(" ");
  }
}

// Count per second of elapsed time, in single precision; 0 in the first
// millisecond.
float PerSecond(float count, std::int32_t elapsed) {
  if (elapsed <= 0) return 0.0F;
  return count / (static_cast<float>(elapsed) * 0.001F);
}

std::int32_t Truncated(float value) {
  constexpr float largest = 2147483520.0F;  // greatest float below 2^31
  return static_cast<std::int32_t>(value < largest ? value : largest);
}

void ReportForXBoard(const SearchRecord& record, const PvLine& pv, std::int32_t score,
                     std::int32_t elapsed) {
  PvText line;
  AppendPv(line, pv, true);
  Output(output, "%2d %6d %6d %8d %s\n", record.state.iterationDepth, score, elapsed / 10,
         static_cast<std::int32_t>(record.state.nodeCount), line.text);
}

// Prints two lines; the first has only the depths.
void ReportForUci(const SearchRecord& record, const PvLine& pv, std::int32_t score,
                  std::int32_t elapsed) {
  const std::int32_t depth = record.state.iterationDepth;
  const std::uint32_t nodes = record.state.nodeCount;
  PvText line;
  AppendPv(line, pv, false);
  Output(output, "info depth %d\n", depth);
  Output(output, "info depth %d seldepth %d time %d score cp %d nodes %d nps %d pv %s\n", depth,
         depth + record.state.selectiveDepth, elapsed, score, static_cast<std::int32_t>(nodes),
         Truncated(PerSecond(static_cast<float>(nodes), elapsed)), line.text);
}

void ReportForConsole(const SearchRecord& record, const PvLine& pv, std::int32_t score,
                      std::int32_t elapsed) {
  const bool blackToMove = record.gameBoard->sideToMove == black;
  const auto nodes = static_cast<std::int32_t>(static_cast<std::uint32_t>(searchStats.nNodes) +
                                               static_cast<std::uint32_t>(searchStats.nQSNodes));
  const std::int32_t knps = Truncated(PerSecond(static_cast<float>(nodes), elapsed) * 0.001F);
  char timeText[moveTextCapacity];
  ElapsedText(static_cast<std::uint32_t>(elapsed), timeText);
  const float pawns = static_cast<float>(blackToMove ? -score : score) * 0.01F;
  Output(output, "%2d %s %+.2f ", record.state.iterationDepth, timeText,
         static_cast<double>(pawns));
  int halfMove = 0;
  if (blackToMove) {
    Output(output, "1... ");
    halfMove = 1;
  }
  for (int i = 0; i < pv.length; ++i, ++halfMove) {
    // Move numbers go to the console only, not to the log.
    if (halfMove % 2 == 0) PrintToConsole("%d.", halfMove / 2 + 1);
    char moveText[moveTextCapacity];
    MoveToSan(pv.moves[i], moveText);
    Output(output, "%s ", moveText);
  }
  Output(output, " (%d/%d)\n", nodes, knps);
}

}  // namespace

void PrintPV(const PvLine& pv, bool san) {
  PvText line;
  AppendPv(line, pv, san);
  Output(output, "%s", line.text);
}

void ReportIteration(const SearchRecord& record, const PvLine& pv, std::int32_t score) {
  std::int32_t elapsed = ElapsedSince(timeControl.startTime);
  if (elapsed < 0) elapsed = 0;
  const bool quiet = engineConfig.Quiet;
  if (record.limits.reportStyle == ReportStyle::console) {
    if (!quiet) ReportForConsole(record, pv, score, elapsed);
  } else if (protocolMode.mode == xboardProtocol) {
    ReportForXBoard(record, pv, score, elapsed);
  } else if (!quiet) {
    ReportForUci(record, pv, score, elapsed);
  }
}

void ReportRootMove(ReportStyle style, Board& board, Move move, int number) {
  if (engineConfig.Quiet) return;
  const bool forConsole = style == ReportStyle::console;
  if (!forConsole && protocolMode.mode != uciProtocol) return;
  const std::uint32_t now = TickCount();
  if (now - lastRootMoveLine <= rootMoveInterval) return;
  lastRootMoveLine = now;
  char text[moveTextCapacity];
  FormatMove(move, forConsole, text);
  if (forConsole) {
    Output(output, "Pondering: %s (%d/%d)\n", text, number, CountLegalMoves(board));
  } else {
    Output(output, "info currmove %s currmovenumber %d\n", text, number);
  }
}

}  // namespace mirvo
