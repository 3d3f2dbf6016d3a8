#include "protocol/uci.h"

#include "search/hash/hash_allocation.h"
#include "search/hash/hash_memory.h"
#include "search/hash/hash_table.h"
#include "search/move_order.h"
#include "tests/protocol/uci_test_kit.h"
#include "tests/support/hash_support.h"

namespace mirvo {
namespace {

using UciCommands = UciTest;

TEST_F(UciCommands, UciListsIdentificationAndOptions) {
  // The book's name is the test's own: it follows the settings file.
  std::snprintf(bookFileOptionText, sizeof bookFileOptionText, "unique2.bin");
  EXPECT_EQ(Play("uci\n"),
            "id name Mirvo 0.2.7_d\n"
            "id author Tavelin\n"
            "option name Use Opening Book type check default true\n"
            "option name Book File type string default unique2.bin\n"
            "option name Pawn Hash Size type spin default 30 min 1 max 100\n"
            "option name Eval Hash Size type spin default 100 min 1 max 100\n"
            "option name TT Hash Size type spin default 100 min 1 max 100\n"
            "option name Ponder type check default true\n"
            "uciok\n");
}

TEST_F(UciCommands, OptionDefaultsFollowTheTableNotTheSettings) {
  std::snprintf(bookFileOptionText, sizeof bookFileOptionText, "mine.bk");
  engineConfig.TTHashSize = 7;
  engineConfig.Ponder = 0;
  const std::string printed = Play("uci\n");
  EXPECT_NE(printed.find("TT Hash Size type spin default 100 "), std::string::npos);
  EXPECT_NE(printed.find("Ponder type check default true\n"), std::string::npos);
  EXPECT_NE(printed.find("Book File type string default mine.bk\n"), std::string::npos);
  std::snprintf(bookFileOptionText, sizeof bookFileOptionText, "unique2.bin");
}

TEST_F(UciCommands, AnyLineThatBeginsWithUciIdentifies) {
  EXPECT_NE(Play("ucix\n").find("uciok\n"), std::string::npos);
}

TEST_F(UciCommands, IsreadyIsAnswered) { EXPECT_EQ(PlayUci("isready\n"), "readyok\n"); }

TEST_F(UciCommands, WordsAreComparedAtTheBeginningOnly) {
  EXPECT_EQ(PlayUci("isreadyandwaiting\n"), "readyok\n");
  EXPECT_EQ(PlayUci(" isready\nISREADY\nisread\n"), "");
}

TEST_F(UciCommands, UnknownLinesAreIgnored) {
  EXPECT_EQ(PlayUci("debug on\nregister later\nsetoption Ponder\nponderx\n%s%n\n"), "");
}

TEST_F(UciCommands, OnlyAGoChangesWhatStopAndPonderhitAreFor) {
  bool hasGo = false;
  for (const char* line : {"isready\n", "position startpos\n", "nonsense\n", "\n", "stop\n"}) {
    ClassifyUciLine(line, hasGo);
    EXPECT_FALSE(hasGo) << line;
  }
  EXPECT_EQ(ClassifyUciLine("stop\n", hasGo), LineTiming::atOnce);
  EXPECT_EQ(ClassifyUciLine("go depth 3\n", hasGo), LineTiming::afterSearch);
  EXPECT_TRUE(hasGo);
  EXPECT_EQ(ClassifyUciLine("stop\n", hasGo), LineTiming::afterSearch);
  EXPECT_EQ(ClassifyUciLine("ponderhit\n", hasGo), LineTiming::afterSearch);
  EXPECT_EQ(ClassifyUciLine("isready\n", hasGo), LineTiming::atOnce);
}

TEST_F(UciCommands, UrgentLinesNeedNoBoardAndDoNotSwitch) {
  for (const char* line : {"isready\n", "stop\n", "ponderhit\n", "ponderhi", "quit\n", "quitx"}) {
    EXPECT_TRUE(UciLineIsUrgent(line)) << line;
  }
  for (const char* line :
       {"uci\n", "ucix\n", "ucinewgame\n", "position startpos\n", "go\n", "eval\n",
        "setoption name Ponder value true\n", "nonsense\n", "\n", ""}) {
    EXPECT_FALSE(UciLineIsUrgent(line)) << line;
  }
}

TEST_F(UciCommands, QuitEndsTheProcessWithStatus0) {
  std::uint8_t state = 0;
  EXPECT_EXIT(HandleUciLine(state, "quit\n"), ::testing::ExitedWithCode(0), "");
}

TEST_F(UciCommands, QuitInsideASearchEndsTheProcessToo) {
  script = {{{"position startpos\ngo\nquit\n"}, "e2e4"}};
  protocolMode.mode = uciProtocol;
  fakeInput.bytes = "go infinite\n";
  EXPECT_EXIT(RunIdle(), ::testing::ExitedWithCode(0), "");
}

TEST_F(UciCommands, QuitBehindASwitchOfProtocolEndsTheProcess) {
  script = {{{"xboard\nquit\n"}, "e2e4"}};
  protocolMode.mode = uciProtocol;
  fakeInput.bytes = "go\n";
  EXPECT_EXIT(RunIdle(), ::testing::ExitedWithCode(0), "");
}

TEST_F(UciCommands, StopWithoutASearchIsSilentAndDoesNotReachTheNextOne) {
  script = {{{}, "e2e4"}};
  EXPECT_EQ(PlayUci("stop\n"), "");
  EXPECT_TRUE(searchFlags.StopSearch);
  PlayUci("go\n");
  ASSERT_EQ(searches.size(), 1U);
  EXPECT_FALSE(searches[0].stoppedAtStart);
}

TEST_F(UciCommands, UcinewgameForgetsTheGame) {
  TranspositionTable.size = 1;
  HashAllocate(TranspositionTable);
  const std::uint64_t key = 0x123456789abcdef;
  HashStore(TranspositionTable, key, 77, 5, exactBound, 3);
  for (std::uint32_t* count : {&TranspositionTable.hits, &TranspositionTable.misses,
                               &TranspositionTable.conflicts, &TranspositionTable.stores}) {
    *count = 4;
  }
  HistoryTable[white][12][28] = 50;
  HistoryTable[black][52][36] = -50;
  engineConfig.UseOpeningBook = 0;
  searchFlags.BookInUse = false;
  PlayUci("position startpos moves e2e4 e7e5\nucinewgame\n");
  EXPECT_EQ(gameBoard.positionKey, 0x463b96181691fc9cU);
  EXPECT_EQ(gameBoard.plyCount, 0);
  EXPECT_FALSE(HasEnPassant(gameBoard));
  EXPECT_EQ(HistoryTable[white][12][28], 0);
  EXPECT_EQ(HistoryTable[black][52][36], 0);
  EXPECT_EQ(HashSlot(TranspositionTable, key).key, 0U);
  EXPECT_EQ(HashSlot(TranspositionTable, key).move, noMove);
  EXPECT_EQ(TranspositionTable.hits, 0U);
  EXPECT_EQ(TranspositionTable.misses, 0U);
  EXPECT_EQ(TranspositionTable.conflicts, 0U);
  EXPECT_EQ(TranspositionTable.stores, 0U);
  EXPECT_TRUE(searchFlags.BookInUse);
  EXPECT_EQ(engineConfig.UseOpeningBook, 0);
  engineConfig.UseOpeningBook = 1;
  HashRelease(TranspositionTable);
}

// At least a few large pages, before the answer that the interface waits for.
TEST_F(UciCommands, MemoryOfTheTablesIsPrefaultedWhereTheInterfaceWaits) {
  for (const char* command : {"uci\n", "isready\n", "ucinewgame\n"}) {
    test::AllocateAfresh(TranspositionTable, 2000);
    const std::size_t nMissing = TranspositionTable.nMissing;
    PlayUci(command);
    EXPECT_LT(TranspositionTable.nMissing, nMissing) << command;
    EXPECT_TRUE(HashMemoryMissing()) << command;
  }
  HashRelease(TranspositionTable);
}

TEST_F(UciCommands, NoMemoryIsPrefaultedForAnAnswerDuringASearch) {
  test::AllocateAfresh(TranspositionTable, 100);
  const std::size_t nMissing = TranspositionTable.nMissing;
  searchFlags.searching = true;
  PlayUci("uci\nisready\n");
  searchFlags.searching = false;
  EXPECT_EQ(TranspositionTable.nMissing, nMissing);
  HashRelease(TranspositionTable);
}

TEST_F(UciCommands, UcinewgameForgetsEnPassant) {
  // After b4 Black's pawn on c4 may take en passant on b3.
  PlayUci("position startpos moves c7c4 e2e3 a7a6 b2b4\nucinewgame\n");
  EXPECT_FALSE(HasEnPassant(gameBoard));
}

TEST_F(UciCommands, EvalPrintsTheScoreOfTheGameBoard) {
  for (HashTable* table : {&EvalHashTable, &PawnHashTable}) {
    table->size = 1;
    HashAllocate(*table);
  }
  // Bare kings are worth nothing to either side.
  EXPECT_EQ(PlayUci("position fen 4k3/8/8/8/8/8/8/4K3 b - - 0 1\neval\n"), "Full eval: 0\n");
  for (HashTable* table : {&EvalHashTable, &PawnHashTable}) HashRelease(*table);
}

}  // namespace
}  // namespace mirvo
