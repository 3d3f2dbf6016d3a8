// A whole process and its interface: bytes decide what the interface does next, so
// that every input is a session, mostly a sensible one.
#include <iterator>
#include <memory>
#include <string>

#include "board/fen.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "protocol/game_board.h"
#include "protocol/xboard_ponder.h"
#include "search/search_flags.h"
#include "shell/base/protocol_mode.h"
#include "tests/fuzz/exercises/board_checks.h"
#include "tests/fuzz/exercises/exercises.h"
#include "tests/fuzz/exercises/scripted_interface.h"

namespace mirvo {
namespace {

constexpr const char* fens[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R b KQkq",
    "4k3/P6P/8/8/8/8/p6p/4K3 w -",
    "6k1/5ppp/8/8/8/8/8/R3K3 w Q",
    "7k/5Q2/6K1/8/8/8/8/8 b -",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w -",
    "8/8/8/8/8/5k2/4p3/4K3 w -",
};

/// The bytes of the input, one per decision; zeros after its end.
class Decisions {
 public:
  explicit Decisions(std::string_view input) : bytes(input) {}
  bool Done() const { return bytes.empty(); }
  std::size_t Below(std::size_t limit) {
    if (bytes.empty()) return 0;
    const auto byte = static_cast<unsigned char>(bytes[0]);
    bytes.remove_prefix(1);
    return byte % limit;
  }
  template <std::size_t size>
  std::string OneOf(const char* const (&texts)[size]) {
    return texts[Below(size)];
  }

 private:
  std::string_view bytes;
};

std::string TextOf(Move move) {
  char text[moveTextCapacity];
  MoveToCoordinates(move, text);
  return text;
}

// ---- A UCI interface that follows the rules ----

constexpr const char* goTexts[] = {"go depth 1",
                                   "go depth 2",
                                   "go wtime 300 btime 400",
                                   "go wtime 40 btime 40 winc 20 binc 20",
                                   "go wtime 1000 btime 1000 movestogo 3",
                                   "go infinite",
                                   "go ponder wtime 300 btime 300",
                                   "go ponder",
                                   "go depth 3",
                                   "go"};

constexpr const char* settings[] = {"setoption name Ponder value true",
                                    "setoption name Ponder value false",
                                    "setoption name TT Hash Size value 1",
                                    "setoption name Use Opening Book value false",
                                    "ucinewgame",
                                    "uci",
                                    "eval",
                                    "isready"};

/// Sends commands only when they are allowed, and keeps the game on its own board.
class PoliteUci : public ScriptedInterface {
 public:
  /// `board` is the interface's own; it begins with a new game.
  PoliteUci(Decisions& source, Board& board) : decisions(source), believed(board) {
    BeginFromStart(believed);
  }

  bool SayWhileIdle(std::string& text) override {
    const bool answered = SearchesBegun() == nGo;
    if (!answered) {
      // The "go ponder" was declined: its answer comes with "stop" or "ponderhit".
      text = Release();
      return true;
    }
    if (released) pondering = released = false;
    if (decisions.Done()) return false;
    switch (decisions.Below(4)) {
      case 0:
        text = Setting();
        break;
      case 1:
        text = Position() + Go();
        break;
      default:
        text = Position() + "isready\n" + Go();
        ++nReadyAsked;
        break;
    }
    return true;
  }

  bool SayDuringSearch(std::string& text) override {
    const std::size_t act = decisions.Done() ? releaseAct : decisions.Below(16);
    if (act == releaseAct) {
      // Without patience left no best move is delayed for ever.
      text = Release();
    } else if (act < 4) {
      ++nReadyAsked;
      text = "isready\n";
    } else if (act == 4 && pondering) {
      text = PonderHit();
    }
    return true;
  }

  BrokenPromise JudgePosition(const Board& board) override {
    return SamePosition(board, believed) ? nullptr : "the engine searches another position";
  }

  int nGo = 0;
  int nReadyAsked = 0;

 private:
  static constexpr std::size_t releaseAct = 5;

  std::string Setting() {
    const std::string text = decisions.OneOf(settings);
    if (text == "isready") ++nReadyAsked;
    if (text == "ucinewgame") BeginFromStart(believed);
    return text + "\n";
  }

  /// A position with some legal moves from it.
  std::string Position() {
    const std::size_t choice = decisions.Below(std::size(fens) + 1);
    std::string text = "position startpos";
    BeginFromStart(believed);
    if (choice > 0) {
      text = std::string("position fen ") + fens[choice - 1] + " - 0 1";
      SetUpFen(fens[choice - 1]);
    }
    std::string moves;
    for (std::size_t n = decisions.Below(8); n > 0; --n) {
      const std::vector<Move> legal = LegalMovesOf(believed);
      if (legal.empty()) break;
      const Move move = legal[decisions.Below(legal.size())];
      moves += ' ';
      moves += TextOf(move);
      MakeMove(believed, move);
    }
    if (!moves.empty()) text += " moves";
    return text + moves + "\n";
  }

  void SetUpFen(const std::string& fen) {
    const std::size_t first = fen.find(' ');
    BeginFromFen(fen.c_str(), fen.c_str() + first, fen.c_str() + first + 3, believed);
  }

  std::string Go() {
    const std::string text = decisions.OneOf(goTexts);
    pondering = text.find("ponder") != std::string::npos;
    ++nGo;
    return text + "\n";
  }

  std::string PonderHit() {
    pondering = false;
    released = true;
    return "ponderhit\n";
  }

  std::string Release() {
    if (pondering && decisions.Below(2) == 1) return PonderHit();
    released = true;
    return "stop\n";
  }

  Decisions& decisions;
  Board& believed;
  bool pondering = false;
  bool released = false;
};

BrokenPromise TalkPolitely(Decisions& decisions) {
  static Board board;
  PoliteUci interface(decisions, board);
  SessionCounts counts;
  if (const BrokenPromise broken = RunSession(interface, uciProtocol, counts)) return broken;
  if (counts.nAnswers != interface.nGo) return "a go has none or two answers";
  if (counts.nReady != interface.nReadyAsked) return "isready has none or two answers";
  return nullptr;
}

// ---- Anything at any time ----

/// Lines of both protocols, whole, cut and wrong. An empty one stands for a
/// move.
constexpr const char* vocabulary[] = {
    "isready",
    "stop",
    "ponderhit",
    "go",
    "go depth 2",
    "go infinite",
    "go ponder wtime 200 btime 200",
    "go wtime 60 btime 60",
    "position startpos",
    "position startpos moves e2e4 e7e5",
    "position fen 6k1/5ppp/8/8/8/8/8/R3K3 w Q - 0 1",
    "position fen 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1 moves h8g8",
    "ucinewgame",
    "setoption name Ponder value true",
    "eval",
    "new",
    "force",
    "time 100",
    "otim 100",
    "time 2",
    "level 40 5 12",
    "hard",
    "easy",
    "?",
    "result 1-0 {mates}",
    "result 1/2-1/2",
    "setboard r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "setboard 7k/5Q2/6K1/8/8/8/8/8 b - -",
    "white",
    "black",
    "computer",
    "rating 1000 2000",
    "name Rival",
    "undo",
    "",
    "",
    "",
    "",
    "",
    "",
};

constexpr const char* switches[] = {"uci", "xboard"};

/// The game board without the pondered move.
const Board& RealPosition() {
  static Board board;
  CopyInUse(board, gameBoard);
  if (searchFlags.pondering && board.undoDepth > 0) UnmakeMove(board);
  return board;
}

class AnyInterface : public ScriptedInterface {
 public:
  AnyInterface(Decisions& source, bool switchesProtocol)
      : decisions(source), changes(switchesProtocol) {}

  bool SayWhileIdle(std::string& text) override {
    if (decisions.Done()) return false;
    text = Line();
    return true;
  }

  bool SayDuringSearch(std::string& text) override {
    if (decisions.Done()) return false;
    if (pollsToWait > 0) {
      --pollsToWait;
      return true;
    }
    pollsToWait = decisions.Below(5);
    text = Line();
    return true;
  }

 private:
  std::string Line() {
    const std::size_t choice = decisions.Below(std::size(vocabulary) + 3);
    if (choice < std::size(vocabulary)) {
      const std::string line = vocabulary[choice];
      return (line.empty() ? MoveText() : line) + "\n";
    }
    if (changes && choice == std::size(vocabulary)) return decisions.OneOf(switches) + "\n";
    return Fragment();
  }

  /// Mostly a legal move, the expected one while pondering, or two squares.
  std::string MoveText() {
    static Board board;
    const std::size_t kind = decisions.Below(8);
    if (kind < 3 && searchFlags.pondering && protocolMode.mode == xboardProtocol) {
      return TextOf(xboardPonder.expectedMove);
    }
    CopyInUse(board, RealPosition());
    const std::vector<Move> legal = LegalMovesOf(board);
    if (kind == 7 || legal.empty()) {
      return TextOf(static_cast<Move>(decisions.Below(64) | decisions.Below(64) << moveToShift));
    }
    return TextOf(legal[decisions.Below(legal.size())]);
  }

  /// Part of a line, possibly without its end.
  std::string Fragment() {
    std::string line = vocabulary[decisions.Below(std::size(vocabulary))];
    line.resize(line.empty() ? 0 : decisions.Below(line.size()));
    return line + (decisions.Below(2) == 0 ? "\n" : "");
  }

  Decisions& decisions;
  bool changes;
  std::size_t pollsToWait = 0;
};

BrokenPromise TalkFreely(Decisions& decisions, std::uint32_t protocol, bool mayChange) {
  AnyInterface interface(decisions, mayChange);
  SessionCounts counts;
  if (const BrokenPromise broken = RunSession(interface, protocol, counts)) return broken;
  if (mayChange) return nullptr;
  const int nAnswers = protocol == uciProtocol ? counts.nAnswers : counts.nMoves;
  if (nAnswers > counts.nSearches) return "an answer has no search";
  if (protocol == uciProtocol && nAnswers != counts.nSearches) return "a search has no answer";
  return nullptr;
}

}  // namespace

BrokenPromise ExerciseProcess(std::string_view input) {
  Decisions decisions(input);
  switch (decisions.Below(8)) {
    case 0:
      return TalkFreely(decisions, uciProtocol, false);
    case 1:
    case 2:
      return TalkFreely(decisions, xboardProtocol, false);
    case 3:
      return TalkFreely(decisions, noProtocol, true);
    case 4:
      return TalkFreely(decisions, uciProtocol, true);
    default:
      return TalkPolitely(decisions);
  }
}

}  // namespace mirvo
