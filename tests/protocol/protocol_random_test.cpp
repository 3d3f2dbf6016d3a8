// Random command sequences of both protocols, arriving between and inside real
// searches. Nothing may crash, hang or corrupt the board, and every "go" under
// UCI gets exactly one answer.
#include <random>
#include <string>

#include "search/hash/hash_allocation.h"
#include "search/hash/hash_table.h"
#include "search/iterate.h"
#include "search/search_hooks.h"
#include "tests/protocol/uci_test_kit.h"
#include "tests/support/search_support.h"

namespace mirvo {
namespace {

/// Lines of both protocols, whole, cut and wrong.
constexpr const char* vocabulary[] = {
    "uci",
    "ucinewgame",
    "isready",
    "stop",
    "ponderhit",
    "go depth 2",
    "go depth 3 wtime 10",
    "go",
    "go wtime 40 btime 40",
    "go wtime 500 btime 500 movestogo 40",
    "go infinite",
    "go ponder",
    "go ponder wtime 200",
    "go depth",
    "position startpos",
    "position startpos moves e2e4 e7e5",
    "position startpos moves e2e4 d7d5 e4d5 0000 e1e3 zz",
    "position fen 8/8/8/8/8/8/8/8 w - - 0 1",
    "position fen 6k1/5ppp/8/8/8/8/8/R3K3 w Q - 0 1",
    "position fen 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1",
    "position fen qqqqqqqq/qqqqqqqq/8/8/8/8/8/K6k b",
    "position moves a2a4",
    "setoption name TT Hash Size value 1",
    "setoption name Ponder value false",
    "setoption name Ponder value true",
    "setoption name Use Opening Book value false",
    "eval",
    "xboard",
    "protover 2",
    "new",
    "force",
    "time 100",
    "otim 100",
    "level 40 5 0",
    "hard",
    "easy",
    "e2e4",
    "e7e5",
    "g1f3",
    "a7a8q",
    "setboard 6k1/5ppp/8/8/8/8/8/R3K3 w - -",
    "result 1-0 {mates}",
    "rating 1000",
    "name",
    "accepted",
    "?",
    "",
    "%s%n%d",
    "go\tdepth 1",
};

class RandomLines {
 public:
  explicit RandomLines(unsigned seed) : random(seed) {}

  std::size_t Below(std::size_t limit) { return random() % limit; }

  std::string Next() {
    std::string line = vocabulary[Below(std::size(vocabulary))];
    if (Below(16) == 0 && !line.empty()) line.resize(Below(line.size()));
    if (Below(24) == 0) line += std::string(Below(9000), 'x');
    if (Below(24) == 0) line += static_cast<char>(Below(256));
    return line + (Below(4) == 0 ? "\r\n" : "\n");
  }

 private:
  std::mt19937 random;
};

class RandomProtocol : public UciTest {
 protected:
  void SetUp() override {
    test::SetTableSizes(1);
    test::ColdStart();
    UciTest::SetUp();
    // Searches end by depth, so that nothing depends on the clock.
    engineConfig.DepthSearch = 3;
    uciSession.think = Think;
    xboardGame.think = Think;
    searchHooks.pollInput = SendAndPoll;
    current = this;
  }

  void TearDown() override {
    searchHooks.pollInput = nullptr;
    test::SetDefaultTableSizes();
    for (HashTable* table : {&TranspositionTable, &PawnHashTable, &EvalHashTable}) {
      HashRelease(*table);
    }
    UciTest::TearDown();
  }

  /// At some polls a line arrives, and sometimes one that ends the search, so that
  /// endless ones end too.
  static void SendAndPoll() {
    RandomLines& lines = *current->lines;
    if (lines.Below(8) == 0) fakeInput.bytes += lines.Next();
    if (lines.Below(12) == 0) fakeInput.bytes += "stop\nponderhit\nforce\n";
    if (++current->nPolls > 60) fakeInput.ended = true;
    PollInput();
  }

  void CheckBoard() {
    Board copy = gameBoard;
    RebuildOccupancy(copy);
    RebuildRotated(copy);
    EXPECT_EQ(copy.occupied, gameBoard.occupied);
    EXPECT_EQ(copy.occupiedRot90, gameBoard.occupiedRot90);
    EXPECT_EQ(copy.occupiedDiagA1H8, gameBoard.occupiedDiagA1H8);
    EXPECT_EQ(copy.occupiedDiagA8H1, gameBoard.occupiedDiagA8H1);
  }

  void Converse(unsigned seed) {
    RandomLines random(seed);
    lines = &random;
    Play(random.Below(2) == 0 ? "uci\n" : "xboard\nnew\n");
    for (int i = 0; i < 30; ++i) {
      fakeInput.ended = false;
      nPolls = 0;
      // Delayed best moves are released in one of the pauses.
      fakeInput.afterPause = {"", random.Next(), "ponderhit\n", "stop\n", inputEnds};
      std::string text = random.Next();
      while (random.Below(3) == 0) text += random.Next();
      Play(text);
      CheckBoard();
    }
    fakeInput.ended = true;
    Play("");
    EXPECT_FALSE(searchFlags.searching);
    lines = nullptr;
  }

  RandomLines* lines = nullptr;
  int nPolls = 0;

 private:
  inline static RandomProtocol* current = nullptr;
};

TEST_F(RandomProtocol, ConversationsDoNoHarm) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE(seed);
    fakeInput = FakeInput{};
    SetInputSource(&fakeSource);
    Converse(seed);
  }
}

/// Non-overlapping occurrences of `part`.
int Count(const std::string& text, const std::string& part) {
  int n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

// An interface that follows the rules: it ends the searches that it started and
// waits for the answer; at polls it only sends "isready".
TEST_F(RandomProtocol, EveryGoGetsOneAnswer) {
  std::mt19937 random(7);
  const std::vector<std::string> positions = {"startpos", "startpos moves e2e4 e7e5",
                                              "fen 6k1/5ppp/8/8/8/8/8/R3K3 w Q - 0 1",
                                              "fen 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1"};
  const std::vector<std::string> requests = {"go depth 2\n", "go infinite\nstop\n",
                                             "go ponder\nponderhit\n", "go ponder\nstop\n",
                                             "go wtime 1000000 btime 1000000\nisready\n"};
  searchHooks.pollInput = PollInput;
  for (int i = 0; i < 300; ++i) {
    const std::string line = "position " + positions[random() % positions.size()] + "\n" +
                             requests[random() % requests.size()];
    EXPECT_EQ(Count(PlayUci(line), "bestmove "), 1) << line;
  }
}

}  // namespace
}  // namespace mirvo
