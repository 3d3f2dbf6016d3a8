// Records of the search: node input, state of a search slot, principal variation, and
// the record of a whole search.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "board/move.h"
#include "search/search_limits.h"

namespace mirvo {

/// Bounds of an open window, and the score before any move.
inline constexpr std::int32_t infiniteScore = 1000000;
/// A mate scores this minus a depth.
inline constexpr std::int32_t mateScore = 32768;
/// Scores from here on (in absolute value) end iterative deepening.
inline constexpr std::int32_t mateThreshold = 31000;

inline constexpr int pvCapacity = 100;

/// A line of moves, best move first. Moves from index `length` on are not initialised,
/// unless the line was value-initialised ("{}"), which nodes do not do for speed.
struct PvLine {
  std::int32_t length = 0;
  Move moves[pvCapacity];
};

/// Input of one node of the main or root search.
struct NodeInput {
  std::int32_t alpha;
  std::int32_t beta;
  std::int32_t depth;         // plies to the horizon
  Move excluded = noMove;     // a move to skip; every caller passes none
  bool afterCapture = false;  // the move that led here was a capture
};

/// Why a search unwinds.
enum class StopCause : std::uint8_t {
  none,               // it does not
  time,               // the time for the move is up
  command,            // a front end has set searchFlags.StopSearch
  abandonedExchange,  // either, within an endless exchange: the quiescence search unwinds too
};

/// State of one search slot. Zeroed at the start of each search; the selective
/// depth also at the start of each iteration.
struct SearchState {
  StopCause stopCause = StopCause::none;
  std::uint32_t nodeCount = 0;      // moves counted by all kinds of search
  std::int32_t selectiveDepth = 0;  // largest quiescence ply entered
  std::int32_t extensions = 0;      // on the current path
  std::int32_t extensionLimit = 0;
  std::int32_t iterationDepth = 0;          // of the running iteration
  std::uint32_t clockPolls = 0;             // node entries since the clock was read
  std::uint32_t nextInputPoll = 0;          // node count at which input is polled next
  std::uint32_t movesAtLook = 0;            // node count at the last check while memory was missing
  const SearchLimits* limits = &unlimited;  // the record's, while Think runs
};

/// One search, owned by the caller: made by PrepareSearch, used by Think.
struct SearchRecord {
  Board* gameBoard;  // the position to search; not changed
  Board* board;      // the search's copy (a board of BoardPool), unchanged afterwards
  SearchLimits limits;
  SearchState state;
};

/// The result of a search. `best` is noMove when there is no legal move; its mateMark
/// says that the search ended on a mate score.
struct SearchResult {
  Move best;
  Move ponder;  // expected reply, noMove when unknown or not legal after best
};

}  // namespace mirvo
