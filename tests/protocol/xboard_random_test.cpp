// Random command sequences against the XBoard front end with the real search:
// lines arrive while it is idle, thinks and ponders, one at every poll.
#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "protocol/game_board.h"
#include "protocol/xboard.h"
#include "protocol/xboard_game.h"
#include "protocol/xboard_ponder.h"
#include "search/search_flags.h"
#include "search/search_hooks.h"
#include "shell/base/clock.h"
#include "shell/config/config.h"
#include "tests/support/repetitions.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

/// The clock advances by 1 ms at every reading, so that timed searches end at the
/// same node on every machine.
std::uint32_t ticks = 0;
std::uint32_t CountTicks() { return ++ticks; }

std::vector<std::string> LegalMoveTexts(const Board& position) {
  static Board board;
  CopyBoard(board, position);
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  std::vector<std::string> texts;
  for (int i = 0; i < generator.count; ++i) {
    MakeMove(board, generator.moves[i]);
    const bool legal = !MoverLeftInCheck(board);
    UnmakeMove(board);
    if (legal) texts.push_back(test::MoveText(generator.moves[i]));
  }
  return texts;
}

/// The game board without the pondered move.
const Board& RealPosition() {
  static Board board;
  CopyBoard(board, gameBoard);
  if (searchFlags.pondering && board.undoDepth > 0) UnmakeMove(board);
  return board;
}

constexpr const char* commandLines[] = {"go",
                                        "hard",
                                        "computer",
                                        "rating 2000 1900",
                                        "black",
                                        "ics freechess.org",
                                        "white",
                                        "draw",
                                        "accepted setboard",
                                        "rejected ics",
                                        "level 0 1 0",
                                        "level 40 5 12",
                                        "name Rival",
                                        "time 100",
                                        "otim 100",
                                        "time 3",
                                        "hint",
                                        "?",
                                        "post",
                                        "xboard",
                                        "undo",
                                        "time 400",
                                        "otim 300",
                                        "hard",
                                        ""};

/// Lines that change the course of a game, sent less often.
constexpr const char* turningPoints[] = {
    "new",
    "force",
    "easy",
    "result 1-0 {x}",
    "result 1/2-1/2",
    "result *",
    "go",
    "setboard r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "setboard 8/5k2/8/8/8/8/1Q6/4K3 b - -",
    "setboard 7k/5Q2/6K1/8/8/8/8/8 b - -"};

class RandomLines {
 public:
  RandomLines(unsigned seed, int nLines, bool wellFormed)
      : random(seed), left(nLines), onlyLegal(wellFormed) {}

  bool Done() const { return left == 0; }

  std::string Next() {
    --left;
    // Mostly lines that act at once: moves would only pile up during the search.
    if (searchFlags.searching && !searchFlags.pondering && Pick(30) != 0) {
      return commandLines[Pick(std::size(commandLines))] + std::string("\n");
    }
    const unsigned kind = Pick(onlyLegal ? 7 : 10);
    if (Pick(20) == 0) return turningPoints[Pick(std::size(turningPoints))] + std::string("\n");
    if (kind < 4) return LegalLine();
    if (kind < 7) return commandLines[Pick(std::size(commandLines))] + std::string("\n");
    return kind < 9 ? AnyMoveLine() : Garbage();
  }

  unsigned Pick(std::size_t n) { return static_cast<unsigned>(random() % n); }

 private:
  std::string LegalLine() {
    if (searchFlags.pondering && Pick(2) == 0) {
      return test::MoveText(xboardPonder.expectedMove) + "\n";
    }
    const std::vector<std::string> texts = LegalMoveTexts(RealPosition());
    return texts.empty() ? "new\n" : texts[Pick(texts.size())] + "\n";
  }

  /// A well-formed move that is mostly illegal.
  std::string AnyMoveLine() {
    std::string text;
    for (int i = 0; i < 2; ++i) {
      text += static_cast<char>('a' + Pick(8));
      text += static_cast<char>('1' + Pick(8));
    }
    if (Pick(4) == 0) text += "qrbnQx"[Pick(6)];
    return text + "\n";
  }

  /// A command or setboard line with bytes changed, or any bytes at all.
  std::string Garbage() {
    std::string text = commandLines[Pick(std::size(commandLines))];
    if (Pick(4) == 0) text = std::string(Pick(4090), static_cast<char>(1 + Pick(255)));
    for (unsigned n = Pick(6); n > 0 && !text.empty(); --n) {
      text[Pick(text.size())] = static_cast<char>(1 + Pick(255));
    }
    // A line that ends the process would end the test.
    return text.starts_with("quit") ? "q\n" : text + "\n";
  }

  std::mt19937 random;
  int left;
  bool onlyLegal;
};

/// Takes lines like the dispatcher: own lines first, then deferred ones, then new.
class RandomSession {
 public:
  RandomSession(unsigned seed, int nLines, bool wellFormed, unsigned pollGap)
      : lines(seed, nLines, wellFormed), onlyLegal(wellFormed), gap(pollGap) {
    current = this;
    ticks = 0;
    SetTickSource(CountTicks);
    searchHooks.pollInput = Poll;
  }

  ~RandomSession() {
    searchHooks.pollInput = nullptr;
    SetTickSource(nullptr);
    current = nullptr;
  }

  void Run() {
    for (const char* line : {"new\n", "hard\n", "time 500\n", "go\n"}) Handle(line);
    while (XBoardHasOwnLine() || !waiting.empty() || !lines.Done()) {
      Handle(NextIdleLine());
      CheckIdleState();
      if (testing::Test::HasFatalFailure()) return;
    }
  }

 private:
  std::string NextIdleLine() {
    if (XBoardHasOwnLine()) {
      char line[32];
      TakeXBoardOwnLine(line, sizeof line);
      return line;
    }
    if (waiting.empty()) return lines.Next();
    std::string line = waiting.front();
    waiting.pop_front();
    return line;
  }

  static void Handle(const std::string& line) {
    std::uint8_t state = 0;
    HandleXBoardLine(state, line.c_str());
  }

  static void Poll() { current->PollOnce(); }

  void PollOnce() {
    if (++nPolls % gap != 0 && !searchFlags.pondering) return;
    if (lines.Done()) {
      XBoardInputEnded();
      return;
    }
    const std::string line = lines.Next();
    if (ClassifyXBoardLine(line.c_str()) == LineTiming::afterSearch) {
      waiting.push_back(line);
    } else {
      Handle(line);
    }
  }

  /// Between two lines no search runs and no state of one is left.
  void CheckIdleState() const {
    ASSERT_FALSE(searchFlags.pondering);
    ASSERT_FALSE(searchFlags.searching);
    ASSERT_FALSE(xboardPonder.searchAbandoned);
    ASSERT_EQ(xboardPonder.ponderMiss, xboardPonder.PendingMove);
    // After illegal moves the key may be wrong.
    if (onlyLegal) {
      ASSERT_EQ(gameBoard.positionKey, ComputeKey(gameBoard));
    }
    ASSERT_GE(gameBoard.undoDepth, 0);
    Bitboard all = 0;
    for (const Bitboard pieces : gameBoard.pieces) all |= pieces;
    ASSERT_EQ(gameBoard.occupied, all);
  }

  RandomLines lines;
  std::deque<std::string> waiting;
  bool onlyLegal;
  unsigned gap;
  unsigned nPolls = 0;
  inline static RandomSession* current = nullptr;
};

class XBoardRandomLines : public testing::Test {
 protected:
  void SetUp() override {
    test::SetTableSizes(1);
    test::ColdStart();
    engineConfig.Quiet = true;
    engineConfig.Ponder = 1;
    engineConfig.LoggingMode = 0;
    engineConfig.DepthSearch = 3;
    searchFlags.NoInputPolling = false;
    xboardGame = XBoardGame{};
    xboardPonder = XBoardPonder{};
    BeginFromStart(gameBoard);
    testing::internal::CaptureStdout();
  }

  void TearDown() override {
    printed = testing::internal::GetCapturedStdout();
    if (HasFailure()) std::fputs(printed.c_str(), stderr);
    std::construct_at(&engineConfig, saved);
    ReleaseRecord(xboardGame.record);
    xboardGame = XBoardGame{};
    EXPECT_NE(printed.find("PONDERING"), std::string::npos);
    EXPECT_NE(printed.find("PONDER HIT"), std::string::npos);
    EXPECT_NE(printed.find("PONDER NOT HIT"), std::string::npos);
  }

  std::string printed;

 private:
  EngineConfig saved = engineConfig;
};

// Sessions of each kind.
constexpr unsigned nSessions = test::Repetitions(10, 3);

TEST_F(XBoardRandomLines, SensibleOnesAtEveryPoll) {
  for (unsigned seed = 1; seed < 1 + nSessions; ++seed) RandomSession(seed, 600, true, 1).Run();
}

TEST_F(XBoardRandomLines, SensibleOnesNowAndThen) {
  for (unsigned seed = 11; seed < 11 + nSessions; ++seed) RandomSession(seed, 300, true, 40).Run();
}

TEST_F(XBoardRandomLines, AnythingAtEveryPoll) {
  for (unsigned seed = 21; seed < 21 + nSessions; ++seed) RandomSession(seed, 600, false, 1).Run();
}

TEST_F(XBoardRandomLines, AnythingNowAndThen) {
  for (unsigned seed = 31; seed < 31 + nSessions; ++seed) RandomSession(seed, 300, false, 40).Run();
}

}  // namespace
}  // namespace mirvo
