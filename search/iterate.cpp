#include "search/iterate.h"

#include <algorithm>

#include "board/key_history.h"
#include "board/legal_moves.h"
#include "board/make_move.h"
#include "book/book_probe.h"
#include "book/opening_book.h"
#include "search/game_counters.h"
#include "search/hash/hash_table.h"
#include "search/interruption.h"
#include "search/move_order.h"
#include "search/report.h"
#include "search/root.h"
#include "search/search_flags.h"
#include "search/search_stats.h"
#include "search/time_control.h"
#include "shell/base/clock.h"
#include "shell/config/config.h"

namespace mirvo {
namespace {

// No game reaches deeper iterations; the bound keeps the recursion within the stack
// and squared depths within 32 bits.
constexpr std::int32_t maxIterationDepth = 400;

constexpr std::uint32_t ponderWaitSleep = 20;  // ms between two polls of a ponder wait

// State that a search keeps between iterations.
struct Iteration {
  PvLine pv{};
  std::uint32_t previousNodes = 0;  // of the iteration before
  std::uint32_t nodesBefore = 0;    // node counter when the iteration began
  std::int32_t completedDepth = 0;  // of the newest completed iteration
  std::int32_t reportedScore = 0;
  PvLine reportedPv{};
  bool ponderWait = false;  // finished, repeating the last depth until the ponder time ends
  bool endedOnMate = false;
};

bool SameLine(const PvLine& a, const PvLine& b) {
  return a.length == b.length && std::equal(a.moves, a.moves + a.length, b.moves);
}

// Reports an iteration; those repeated during a ponder wait only if score or line have
// changed.
void Report(const SearchRecord& record, Iteration& iteration, std::int32_t score) {
  const bool changed =
      score != iteration.reportedScore || !SameLine(iteration.pv, iteration.reportedPv);
  if (iteration.ponderWait && !changed) return;
  ReportIteration(record, iteration.pv, score);
  iteration.reportedScore = score;
  iteration.reportedPv = iteration.pv;
}

void CountBranching(const SearchRecord& record, Iteration& iteration) {
  const std::uint32_t nodes = record.state.nodeCount - iteration.nodesBefore;
  if (iteration.previousNodes != 0) {
    searchStats.branchingSum +=
        static_cast<float>(nodes) / static_cast<float>(iteration.previousNodes);
    searchStats.branchingCount += 1.0F;
  }
  iteration.previousNodes = nodes;
}

void SavePreviousPv(const PvLine& pv) {
  std::copy(pv.moves, pv.moves + pv.length, previousPv.moves);
  previousPv.length = std::max(previousPv.length, pv.length);
}

bool IsPondering(const SearchState& state) { return searchFlags.pondering && !Stopped(state); }

// One round of waiting for the opponent's move after the search has finished while
// pondering: a poll and a short sleep.
void WaitWhilePondering(SearchState& state, Iteration& iteration) {
  iteration.ponderWait = true;
  PollForInput(state);
  if (IsPondering(state)) SleepMilliseconds(ponderWaitSleep);
}

// Clamped so that for any setting the difference and the negations of the bounds fit
// into 32 bits.
std::int32_t WindowBound(std::int32_t score, std::int64_t distance) {
  constexpr std::int64_t largest = 1000000000;
  return static_cast<std::int32_t>(std::clamp(score + distance, -largest, largest));
}

void Deepen(SearchRecord& record, Iteration& iteration) {
  SearchState& state = record.state;
  const std::int32_t lastDepth = std::min(record.limits.depth, maxIterationDepth);
  std::int32_t depth = std::max(engineConfig.StartIDDepth, 0);
  std::int32_t alpha = -infiniteScore;
  std::int32_t beta = infiniteScore;
  while (depth <= lastDepth && !Stopped(state)) {
    state.iterationDepth = depth;
    state.selectiveDepth = 0;
    iteration.nodesBefore = state.nodeCount;
    CopyBoard(*record.board, *record.gameBoard);
    const std::int32_t score =
        SearchRoot(state, *record.board, NodeInput{alpha, beta, depth}, &iteration.pv);
    if (Stopped(state)) return;
    iteration.completedDepth = depth;
    CountBranching(record, iteration);

    // A mate ends the search, but while pondering only after the opponent's move.
    if (score >= mateThreshold || score <= -mateThreshold) {
      Report(record, iteration, score);
      if (IsPondering(state)) WaitWhilePondering(state, iteration);
      if (!IsPondering(state)) {
        iteration.endedOnMate = !Stopped(state);
        return;
      }
      continue;
    }
    SavePreviousPv(iteration.pv);
    Report(record, iteration, score);

    // A score outside the window is only a bound: repeat the depth with an open window.
    if (score >= beta || score <= alpha) {
      alpha = -infiniteScore;
      beta = infiniteScore;
      continue;
    }
    alpha = WindowBound(score, -std::int64_t{engineConfig.AspirationWindow});
    beta = WindowBound(score, engineConfig.AspirationWindow);
    ++depth;
    if (depth > lastDepth && IsPondering(state)) {
      WaitWhilePondering(state, iteration);
      if (IsPondering(state)) depth = lastDepth;
    }
  }
}

// The expected reply if it is legal, else noMove.
Move LegalReply(Board& board, Move best, Move reply) {
  if (best == noMove || reply == noMove) return noMove;
  MakeMove(board, best);
  const bool legal = IsLegalMove(board, reply);
  UnmakeMove(board);
  return legal ? reply : noMove;
}

SearchResult ChooseResult(Board& board, const Iteration& iteration) {
  const PvLine& pv = iteration.pv;
  SearchResult result{noMove, noMove};
  result.best = pv.length > 0 ? pv.moves[0] : FirstLegalMove(board);
  // Without a reply in this line, use the line of the previous search.
  const PvLine& line = pv.length > 1 ? pv : previousPv;
  if (line.length > 1) result.ponder = LegalReply(board, result.best, line.moves[1]);
  if (iteration.endedOnMate && result.best != noMove) result.best |= mateMark;
  return result;
}

SearchResult Iterate(SearchRecord& record) {
  timeControl.startTime = TickCount();
  record.state = SearchState{};
  record.state.limits = &record.limits;
  CheckStopCommand(record.state);  // a stop may have arrived before the search
  ResetHashCounters();             // evaluations between searches have counted too
  Iteration iteration;
  Deepen(record, iteration);
  CopyBoard(*record.board, *record.gameBoard);
  searchStats.depthSum += static_cast<float>(iteration.completedDepth);
  searchStats.depthCount += 1.0F;
  const SearchResult result = ChooseResult(*record.board, iteration);
  if (result.best != noMove) CountReversibleMove(gameCounters, IsReversible(result.best));
  return result;
}

// Probes the book until its first miss. Then the game is out of book, and the first
// search gets twice the time.
bool AskBook(SearchRecord& record, Move& move) {
  if (!searchFlags.BookInUse) return false;
  if (ProbeBook(openingBook, *record.gameBoard, move)) return true;
  DoubleAllottedTime(record.limits);
  StoreTimeLimits(engineConfig, record.limits);
  searchFlags.BookInUse = false;
  return false;
}

}  // namespace

SearchRecord PrepareSearch(Board& gameBoard) {
  SearchRecord record{};
  record.gameBoard = &gameBoard;
  record.board = &BoardPool[0];
  record.limits = LimitsOf(engineConfig);
  return record;
}

SearchResult Think(SearchRecord& record) {
  searchFlags.searching = true;
  TrimGameHistory(*record.gameBoard);
  SearchResult result{noMove, noMove};
  if (!AskBook(record, result.best)) {
    result = Iterate(record);
    PrintHashReport(engineConfig.Quiet);
    ResetHashCounters();
  }
  searchFlags.ponderMove = result.ponder;
  searchFlags.searching = false;
  return result;
}

}  // namespace mirvo
