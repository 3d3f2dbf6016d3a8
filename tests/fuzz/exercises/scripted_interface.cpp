#include "tests/fuzz/exercises/scripted_interface.h"

#include <algorithm>
#include <cstring>

#include "protocol/dispatcher.h"
#include "protocol/game_board.h"
#include "protocol/input.h"
#include "protocol/uci_session.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_ponder.h"
#include "search/interruption.h"
#include "search/iterate.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "shell/base/protocol_mode.h"
#include "shell/base/text.h"
#include "shell/config/config.h"
#include "tests/fuzz/exercises/board_checks.h"
#include "tests/fuzz/exercises/engine_kit.h"

namespace mirvo {
namespace {

/// How far a search goes: deep enough for a line with an expected reply. The
/// interface stops a search that has counted so many moves or polled so often.
struct Effort {
  std::int32_t depth;
  std::uint32_t nodes;
  int nPolls;
};
constexpr Effort fullEffort{2, 150, 200};

/// Once the searches of a session have counted so many moves, later ones do only
/// what they need for a few polls and an answer.
constexpr std::uint32_t nodesOfFullEffort = 300;
constexpr Effort leastEffort{1, 12, 200};

/// Counted moves between two polls inside the tree. The engine's own interval is
/// thousands; with this one it can be stopped anywhere.
constexpr std::uint32_t pollInterval = 16;

/// Turns without a line after which a session counts as hung. The front end's own
/// lines and delayed best moves end long before.
constexpr int turnLimit = 100000;

struct Session {
  ScriptedInterface* interface = nullptr;
  std::string bytes;    // sent and not read
  bool ended = false;   // the interface has closed the input
  bool ranDry = false;  // the idle engine has met the end of its input
  int nPolls = 0;       // of the running search
  int nTurns = 0;
  std::uint32_t nNodes = 0;  // of all searches that are over
  SearchRecord* search = nullptr;
  SessionCounts counts;
  BrokenPromise broken = nullptr;
};

Session session;

void Break(BrokenPromise promise) {
  if (session.broken == nullptr) session.broken = promise;
}

// ---- The engine's input ----

void Receive(bool (ScriptedInterface::*say)(std::string&)) {
  std::string text;
  if (session.ended || !(session.interface->*say)(text)) {
    session.ended = true;
    return;
  }
  session.bytes += text;
}

std::uint32_t Waiting() {
  if (session.bytes.empty()) return session.ended ? 1 : 0;
  return static_cast<std::uint32_t>(session.bytes.size());
}

int Read(char* buffer, std::size_t size, bool wait) {
  if (session.bytes.empty() && wait) Receive(&ScriptedInterface::SayWhileIdle);
  const std::size_t n = std::min(size, session.bytes.size());
  // Bytes, not a text. NOLINTNEXTLINE(bugprone-not-null-terminated-result)
  std::memcpy(buffer, session.bytes.data(), n);
  session.bytes.erase(0, n);
  if (n > 0) return static_cast<int>(n);
  session.ranDry = session.ranDry || (wait && session.ended);
  return session.ended ? inputEnded : nothingToRead;
}

bool ParentExited() { return false; }

bool OutputClosed() { return false; }

void Pause(std::uint32_t) {
  if (++session.nTurns > turnLimit) Break("the engine waits for ever");
  if (session.broken != nullptr) session.ended = true;
  Receive(&ScriptedInterface::SayDuringSearch);
}

constexpr InputSource source{Waiting, Read, ParentExited, OutputClosed, Pause};

const Effort& EffortNow() { return session.nNodes < nodesOfFullEffort ? fullEffort : leastEffort; }

void Poll() {
  Receive(&ScriptedInterface::SayDuringSearch);
  PollInput();
  if (session.search == nullptr) return;
  const Effort& effort = EffortNow();
  SearchState& state = session.search->state;
  const bool impatient = ++session.nPolls > effort.nPolls || state.nodeCount > effort.nodes;
  if (impatient) searchFlags.StopSearch = true;
  state.nextInputPoll = state.nodeCount + pollInterval;
  // Every other poll, and the first one of a stopped search, is made overdue, so
  // that the quiescence search polls.
  if (searchFlags.StopSearch || session.nPolls % 2 == 0) state.nextInputPoll -= quiescencePollDelay;
}

// ---- Searches ----

bool IsAmong(const std::vector<Move>& moves, Move move) {
  return std::any_of(moves.begin(), moves.end(), [move](Move legal) {
    return SameMove(legal, move) && IsPromotion(legal) == IsPromotion(move) &&
           PromotionKind(legal) == PromotionKind(move);
  });
}

/// Moves of a search are legal, and there is one whenever there can be.
BrokenPromise JudgeResult(Board& board, const SearchResult& result) {
  const std::vector<Move> legal = LegalMovesOf(board);
  if (result.best == noMove) return legal.empty() ? nullptr : "a search found no move";
  return IsAmong(legal, result.best & ~mateMark) ? nullptr : "a search found an illegal move";
}

SearchResult ShortThink(SearchRecord& record) {
  static Board before;
  ++session.counts.nSearches;
  session.nPolls = 0;
  session.search = &record;
  record.limits.depth = std::min(record.limits.depth, EffortNow().depth);
  CopyInUse(before, *record.gameBoard);
  if (const BrokenPromise broken = session.interface->JudgePosition(before)) Break(broken);
  const SearchResult result = Think(record);
  session.search = nullptr;
  session.nNodes += record.state.nodeCount;
  if (!SamePosition(before, *record.gameBoard)) Break("a search changed the game");
  if (const BrokenPromise broken = JudgeResult(before, result)) Break(broken);
  return result;
}

// ---- Between two lines ----

void CheckIdleState() {
  if (searchFlags.searching || searchFlags.pondering) Break("a search is left over");
  if (xboardPonder.searchAbandoned) Break("an abandoned search is left over");
  if (xboardPonder.ponderMiss != xboardPonder.PendingMove) Break("a missed move was forgotten");
  if (const BrokenPromise broken = CheckDerivedFields(gameBoard)) Break(broken);
}

void CountReplies(const std::string& text) {
  session.counts.nAnswers = CountLines(text, "bestmove ");
  session.counts.nReady = CountLines(text, "readyok");
  session.counts.nMoves = CountLines(text, "move ");
}

}  // namespace

BrokenPromise RunSession(ScriptedInterface& interface, std::uint32_t protocol,
                         SessionCounts& counts) {
  FreshEngine();
  const PrintedText printed;
  session = Session{};
  session.interface = &interface;
  protocolMode.mode = protocol;
  uciSession.think = ShortThink;
  xboardGame.think = ShortThink;
  searchHooks.pollInput = Poll;
  SetInputSource(&source);
  while (!session.ranDry && session.broken == nullptr) {
    Dispatch(protocolMode, false);
    CheckIdleState();
    if (++session.nTurns > turnLimit) Break("the session has no end");
  }
  CountReplies(printed.Text());
  SetInputSource(nullptr);
  counts = session.counts;
  return session.broken;
}

int SearchesBegun() { return session.counts.nSearches; }

std::string HarmlessLine(std::string line) {
  for (std::size_t at; (at = line.find("quit")) != std::string::npos;) line[at] = 'k';
  constexpr std::string_view hash = "Hash Size";
  const std::size_t at = line.find(hash);
  if (line.starts_with("setoption name") && at != std::string::npos) {
    // Larger tables only make the sessions slower.
    line.replace(at + hash.size(), std::string::npos, " value 1\n");
  }
  return line;
}

}  // namespace mirvo
