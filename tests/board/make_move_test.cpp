#include "board/make_move.h"

#include <gtest/gtest.h>

#include "board/key_history.h"
#include "board/keys.h"
#include "tests/support/board_support.h"

namespace mirvo {
namespace {

using test::BoardFrom;
using test::ExpectConsistent;
using test::kiwipeteFen;
using test::Play;
using test::startFen;

constexpr std::uint64_t whiteShort = 768;
constexpr std::uint64_t whiteLong = 769;
constexpr std::uint64_t blackShort = 770;
constexpr std::uint64_t blackLong = 771;
constexpr std::uint64_t sideEntry = 780;

struct PlacementCase {
  const char* name;
  const char* fen;
  const char* move;
  const char* placement;
};

void PrintTo(const PlacementCase& c, std::ostream* out) { *out << c.name; }

class MakeMovePlacement : public testing::TestWithParam<PlacementCase> {};

TEST_P(MakeMovePlacement, MovesThePiecesAndUnmakeBringsThemBack) {
  Board board = BoardFrom(GetParam().fen);
  const Move move = test::FindMove(board, GetParam().move);
  board.inCheckCache = -1;
  const test::Snapshot before(board);
  MakeMove(board, move);
  EXPECT_EQ(test::PlacementOf(board), GetParam().placement);
  ExpectConsistent(board);
  UnmakeMove(board);
  EXPECT_TRUE(before.SameAs(board));
}

const PlacementCase placementCases[] = {
    {"QuietMove", startFen, "g1f3", "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R"},
    {"DoubleStep", startFen, "e2e4", "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR"},
    {"Capture", "4k3/8/8/3n4/8/8/8/3RK3 w -", "d1d5", "4k3/8/8/3R4/8/8/8/4K3"},
    {"CaptureByTheKing", "4k3/8/8/8/8/8/3n4/4K3 w -", "e1d2", "4k3/8/8/8/8/8/3K4/8"},
    {"WhiteShortCastling", "4k3/8/8/8/8/8/8/R3K2R w KQ", "e1g1", "4k3/8/8/8/8/8/8/R4RK1"},
    {"WhiteLongCastling", "4k3/8/8/8/8/8/8/R3K2R w KQ", "e1c1", "4k3/8/8/8/8/8/8/2KR3R"},
    {"BlackShortCastling", "r3k2r/8/8/8/8/8/8/4K3 b kq", "e8g8", "r4rk1/8/8/8/8/8/8/4K3"},
    {"BlackLongCastling", "r3k2r/8/8/8/8/8/8/4K3 b kq", "e8c8", "2kr3r/8/8/8/8/8/8/4K3"},
    {"WhiteEnPassant", "4k3/8/8/2pP4/8/8/8/4K3 w - c6", "d5c6", "4k3/8/2P5/8/8/8/8/4K3"},
    {"BlackEnPassant", "4k3/8/8/8/2Pp4/8/8/4K3 b - c3", "d4c3", "4k3/8/8/8/8/2p5/8/4K3"},
    {"Promotion", "8/4P3/8/8/8/8/k7/2K5 w -", "e7e8q", "4Q3/8/8/8/8/8/k7/2K5"},
    {"UnderPromotion", "8/8/8/8/8/k7/4p3/2K5 b -", "e2e1n", "8/8/8/8/8/k7/8/2K1n3"},
    {"PromotionWithCapture", "r3k3/1P6/8/8/8/8/8/4K3 w -", "b7a8b", "B3k3/8/8/8/8/8/8/4K3"},
};

INSTANTIATE_TEST_SUITE_P(MakeMove, MakeMovePlacement, testing::ValuesIn(placementCases),
                         [](const auto& test) { return std::string(test.param.name); });

// Key, counters and turn.

TEST(MakeMove, PassesTheTurnAndCounts) {
  Board board = BoardFrom(startFen);
  Play(board, "e2e4 e7e5 g1f3");
  EXPECT_EQ(board.sideToMove, black);
  EXPECT_EQ(board.plyCount, 3);
  EXPECT_EQ(board.undoDepth, 3);
  EXPECT_EQ(board.historyIndex, 1);
  EXPECT_EQ(KeyHistory[1], board.positionKey);
}

TEST(MakeMove, RecordsWhatTheMoveTook) {
  Board board = BoardFrom("4k3/8/8/3n4/8/8/8/3RK3 w -");
  Play(board, "d1d5");
  const UndoRecord& undo = board.undoStack[0];
  EXPECT_EQ(undo.captured, 1);
  EXPECT_EQ(undo.capturedKind, knight);
  EXPECT_EQ(undo.epCapture, 0);
  EXPECT_EQ(CapturedKind(undo.move), knight);
  EXPECT_TRUE(IsCapture(undo.move));
}

TEST(MakeMove, TheStoredCapturedKindReplacesAnOlderOne) {
  Board board = BoardFrom("4k3/8/8/3n4/8/8/8/3RK3 w -");
  const Move move = test::FindMove(board, "d1d5");
  MakeMove(board, WithCaptured(move, queen));
  EXPECT_EQ(CapturedKind(board.undoStack[0].move), knight);
  UnmakeMove(board);
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/3n4/8/8/8/3RK3");
}

TEST(MakeMove, AnEnPassantRecordNamesAPawn) {
  Board board = BoardFrom("4k3/8/8/2pP4/8/8/8/4K3 w - c6");
  MakeMove(board, WithCaptured(test::FindMove(board, "d5c6"), rook));
  const UndoRecord& undo = board.undoStack[0];
  EXPECT_EQ(undo.captured, 1);
  EXPECT_EQ(undo.epCapture, 1);
  EXPECT_EQ(undo.capturedKind, pawn);
  EXPECT_EQ(CapturedKind(undo.move), pawn);
}

TEST(MakeMove, RecordsCastling) {
  Board board = BoardFrom("r3k2r/8/8/8/8/8/8/R3K2R w KQkq");
  Play(board, "e1g1 e8c8");
  EXPECT_EQ(board.undoStack[0].castledShort, 1);
  EXPECT_EQ(board.undoStack[0].castledLong, 0);
  EXPECT_EQ(board.undoStack[1].castledShort, 0);
  EXPECT_EQ(board.undoStack[1].castledLong, 1);
  EXPECT_EQ(board.undoStack[0].captured, 0);
}

TEST(MakeMove, KeepsThePositionBeforeTheMoveInItsRecord) {
  Board board = BoardFrom(kiwipeteFen);
  const Board before = board;
  Play(board, "e1c1");
  const UndoRecord& undo = board.undoStack[0];
  EXPECT_EQ(undo.positionKey, before.positionKey);
  EXPECT_EQ(undo.occupiedRot90, before.occupiedRot90);
  EXPECT_EQ(undo.occupiedDiagA1H8, before.occupiedDiagA1H8);
  EXPECT_EQ(undo.occupiedDiagA8H1, before.occupiedDiagA8H1);
  EXPECT_EQ(undo.epFile, 255);
  EXPECT_EQ(undo.castling.kingMoved[white], 0);
}

TEST(MakeMove, TheVictimIsLookedForAmongBishopsBeforeKnights) {
  Board board = BoardFrom("4k3/8/8/3n4/8/8/8/3RK3 w -");
  const Bitboard d5 = test::Squares("d5");
  const int order[] = {queen, rook, knight, bishop, pawn};
  for (const int kind : order) {
    board.pieces[PieceIndex(black, kind)] |= d5;
    DetectOverlaps(board);
    RebuildOccupancy(board);
    const Move move = test::FindMove(board, "d1d5");
    MakeMove(board, move);
    EXPECT_EQ(board.undoStack[0].capturedKind, kind == queen || kind == rook ? knight : kind);
    UnmakeMove(board);
  }
}

TEST(MakeMove, LooksUpAKindThatTheWordLeavesOpen) {
  Board board = BoardFrom(startFen);
  const Move move = BuildMove(6, 21, white, unknownKind);
  MakeMove(board, move);
  EXPECT_EQ(test::PlacementOf(board), "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R");
  // The stored word keeps kind 7, "unknown".
  EXPECT_EQ(MovingKind(board.undoStack[0].move), unknownKind);
  ExpectConsistent(board);
}

// Kinds 6 and 7 with nothing on the origin square.
TEST(MakeMove, AWordThatMovesNothingPassesTheTurn) {
  for (const int side : {white, black}) {
    for (const Move word :
         {BuildMove(28, 36, side, unknownKind), BuildMove(12, 28, side, unknownKind - 1)}) {
      Board board = BoardFrom("4k3/4p3/8/8/8/8/4P3/4K3 w -");
      if (side == black) MakeNullMove(board);
      const std::uint64_t key = board.positionKey;
      board.inCheckCache = 0;
      MakeMove(board, word);
      EXPECT_EQ(test::PlacementOf(board), "4k3/4p3/8/8/8/8/4P3/4K3");
      EXPECT_EQ(board.sideToMove, side ^ 1);
      EXPECT_EQ(board.positionKey, key ^ SideKey());
      EXPECT_EQ(board.undoDepth, 0);
      EXPECT_EQ(board.historyIndex, 0);
      EXPECT_EQ(board.inCheckCache, -1);
    }
  }
}

TEST(MakeMove, FindsTheVictimOfAWordWithoutCaptureFlag) {
  Board board = BoardFrom("4k3/8/8/3n4/8/8/8/3RK3 w -");
  MakeMove(board, BuildMove(3, 35, white, rook));
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/3R4/8/8/8/4K3");
  EXPECT_FALSE(IsCapture(board.undoStack[0].move));
  EXPECT_EQ(board.undoStack[0].captured, 1);
  EXPECT_EQ(board.historyIndex, 0);
  ExpectConsistent(board);
}

// Castling flags.

struct FlagsCase {
  const char* name;
  const char* fen;
  const char* moves;
  const char* set;  // flags that stand at 1: c, k, q, r for White, upper case for Black
  std::vector<std::uint64_t> keysLeft;
};

void PrintTo(const FlagsCase& c, std::ostream* out) { *out << c.name; }

std::string FlagLetters(const CastlingFlags& flags) {
  std::string letters;
  for (int side = 0; side < nSides; ++side) {
    const char* const names = side == white ? "ckqr" : "CKQR";
    if (flags.hasCastled[side] != 0) letters += names[0];
    if (flags.kingMoved[side] != 0) letters += names[1];
    if (flags.queenRookMoved[side] != 0) letters += names[2];
    if (flags.kingRookMoved[side] != 0) letters += names[3];
  }
  return letters;
}

// The key without its castling part.
std::uint64_t KeyOfPiecesAndSide(const Board& board) {
  std::uint64_t key = board.sideToMove == white ? Random64[sideEntry] : 0;
  for (int piece = 0; piece < nPieces; ++piece) {
    for (int square = 0; square < nSquares; ++square) {
      if ((board.pieces[piece] >> square & 1) != 0) {
        key ^= PieceKey(piece / nKinds, piece % nKinds, square);
      }
    }
  }
  return key;
}

class CastlingFlagsAfter : public testing::TestWithParam<FlagsCase> {};

TEST_P(CastlingFlagsAfter, TheMovesAreSetAndTheKeyFollows) {
  Board board = BoardFrom(GetParam().fen);
  Play(board, GetParam().moves);
  EXPECT_EQ(FlagLetters(board.castling), GetParam().set);
  std::uint64_t castlingKeys = 0;
  for (const std::uint64_t entry : GetParam().keysLeft) castlingKeys ^= Random64[entry];
  EXPECT_EQ(board.positionKey, KeyOfPiecesAndSide(board) ^ castlingKeys);
  ExpectConsistent(board);
}

constexpr char rooksFen[] = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq";

const FlagsCase flagsCases[] = {
    {"ShortCastling", rooksFen, "e1g1", "ckqr", {blackShort, blackLong}},
    {"LongCastling", rooksFen, "e1c1", "ckqr", {blackShort, blackLong}},
    {"BothCastle", rooksFen, "e1c1 e8g8", "ckqrCKQR", {}},
    {"CastlingWithOneRightGone",
     "r3k2r/8/8/8/8/8/8/R3K2R w Kkq",
     "e1g1",
     "ckqr",
     {blackShort, blackLong}},
    {"KingMove", rooksFen, "e1e2", "k", {blackShort, blackLong}},
    {"KingMoveWithOneRightGone",
     "r3k2r/8/8/8/8/8/8/R3K2R w Qkq",
     "e1e2",
     "kr",
     {blackShort, blackLong}},
    {"BlackKingMove", rooksFen, "e1e2 e8e7", "kK", {}},
    {"RookLeavesA1", rooksFen, "a1b1", "q", {whiteShort, blackShort, blackLong}},
    {"RookLeavesH1", rooksFen, "h1g1", "r", {whiteLong, blackShort, blackLong}},
    {"RookLeavesA8", rooksFen, "e1e2 a8b8", "kQ", {blackShort}},
    {"RookLeavesH8", rooksFen, "e1e2 h8g8", "kR", {blackLong}},
    {"RookLeavesAfterTheKing", rooksFen, "e1e2 e8e7 a1b1", "kqK", {}},
    {"AnotherRookLeavesTheCornerLater", rooksFen, "a1b1 e8e7 b1a1 e7e8 a1b1", "qK", {whiteShort}},
    {"ARookTakenOnItsCornerKeepsItsRight",
     rooksFen,
     "h1h8",
     "r",
     {whiteLong, blackShort, blackLong}},
    {"OtherRooksChangeNothing",
     "4k3/8/8/8/8/8/3R4/R3K2R w KQ",
     "d2d3",
     "CKQR",
     {whiteShort, whiteLong}},
    {"ABlackRookOnA1ChangesNothing",
     "r3k2r/8/8/8/8/8/8/r3K2R b Kkq",
     "a1b1",
     "q",
     {whiteShort, blackShort, blackLong}},
};

INSTANTIATE_TEST_SUITE_P(MakeMove, CastlingFlagsAfter, testing::ValuesIn(flagsCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(MakeMove, UpdatesTheKingSquare) {
  Board board = BoardFrom(rooksFen);
  Play(board, "e1g1 e8d7");
  EXPECT_EQ(KingSquare(board, white), test::Square("g1"));
  EXPECT_EQ(KingSquare(board, black), test::Square("d7"));
  UnmakeMove(board);
  UnmakeMove(board);
  EXPECT_EQ(KingSquare(board, white), test::Square("e1"));
  EXPECT_EQ(KingSquare(board, black), test::Square("e8"));
}

// En-passant fields.

TEST(MakeMove, ADoubleStepWithoutEnemyPawnBesideItSetsNoSquare) {
  Board board = BoardFrom(startFen);
  Play(board, "e2e4");
  EXPECT_EQ(board.epFile, 255);
  EXPECT_EQ(board.epRank, 255);
  EXPECT_EQ(board.positionKey, 0x823C9B50FD114196ULL);
}

TEST(MakeMove, ADoubleStepBesideAnEnemyPawnSetsTheSquareAndItsKey) {
  Board board = BoardFrom("4k3/8/8/8/3p4/8/4P3/4K3 w -");
  Play(board, "e2e4");
  EXPECT_EQ(board.epFile, 4);
  EXPECT_EQ(board.epRank, 2);
  EXPECT_EQ(board.epColour, white);
  EXPECT_EQ(board.positionKey, KeyOfPiecesAndSide(board) ^ Random64[772 + 4]);
}

TEST(MakeMove, ABlackDoubleStepSetsTheSquareBehindIt) {
  Board board = BoardFrom("4k3/1p6/8/2P5/8/8/8/4K3 b -");
  Play(board, "b7b5");
  EXPECT_EQ(board.epFile, 1);
  EXPECT_EQ(board.epRank, 5);
  EXPECT_EQ(board.epColour, black);
}

TEST(MakeMove, EnemyPawnsCountOnTheRankOfTheDoubleStepOnly) {
  const char* const fens[] = {
      "4k3/8/8/3p4/8/3p4/4P3/4K3 w -",  // d5 and d3
      "4k3/8/8/8/3n4/8/4P3/4K3 w -",    // a knight
      "4k3/8/8/8/3P4/8/4P3/4K3 w -",    // an own pawn
      "4k3/8/8/8/2p5/8/4P3/4K3 w -",    // two files away
  };
  for (const char* fen : fens) {
    Board board = BoardFrom(fen);
    Play(board, "e2e4");
    EXPECT_EQ(board.epFile, 255) << fen;
  }
}

TEST(MakeMove, EdgeFilesHaveOneNeighbourEach) {
  // The pawn on the other edge is next by square number, but not on the board.
  Board board = BoardFrom("4k3/8/8/7p/7p/8/P7/4K3 w -");
  Play(board, "a2a4");
  EXPECT_EQ(board.epFile, 255);
  Board other = BoardFrom("4k3/8/8/p7/p7/8/7P/4K3 w -");
  Play(other, "h2h4");
  EXPECT_EQ(other.epFile, 255);
  Board near = BoardFrom("4k3/8/8/8/1p6/8/P7/4K3 w -");
  Play(near, "a2a4");
  EXPECT_EQ(near.epFile, 0);
}

TEST(MakeMove, TheNextMoveForgetsTheSquare) {
  for (const char* reply : {"e8e7", "d4d3", "d4e3", "h8h7", "e8g8"}) {
    Board board = BoardFrom("4k2r/8/8/8/3p4/8/4P3/4K3 w k");
    Play(board, "e2e4");
    ASSERT_EQ(board.epFile, 4);
    Play(board, reply);
    ExpectConsistent(board);
    // An en-passant capture keeps the square for one more move.
    EXPECT_EQ(board.epFile, std::string(reply) == "d4e3" ? 4 : 255) << reply;
  }
}

TEST(MakeMove, AnEnPassantCaptureKeepsTheSquareUntilTheNextMove) {
  Board board = BoardFrom("4k3/8/8/8/3p4/8/4P3/4K3 w -");
  Play(board, "e2e4 d4e3");
  EXPECT_EQ(board.epFile, 4);
  EXPECT_EQ(board.epRank, 2);
  EXPECT_EQ(board.epColour, white);
  EXPECT_EQ(board.positionKey, KeyOfPiecesAndSide(board) ^ Random64[772 + 4]);
  Play(board, "e1f1");
  EXPECT_EQ(board.epFile, 255);
  ExpectConsistent(board);
}

TEST(MakeMove, ADoubleStepThatSetsNoSquareKeepsAnOlderOne) {
  Board board = BoardFrom("4k3/7p/8/8/3p4/8/4P3/4K3 w -");
  Play(board, "e2e4 h7h5");
  EXPECT_EQ(board.epFile, 4);
  EXPECT_EQ(board.epRank, 2);
  EXPECT_EQ(board.epColour, white);
  EXPECT_EQ(board.positionKey, KeyOfPiecesAndSide(board) ^ Random64[772 + 4]);
}

TEST(MakeMove, ADoubleStepThatSetsASquareReplacesAnOlderOne) {
  Board board = BoardFrom("4k3/7p/8/6P1/3p4/8/4P3/4K3 w -");
  Play(board, "e2e4 h7h5");
  EXPECT_EQ(board.epFile, 7);
  EXPECT_EQ(board.epRank, 5);
  EXPECT_EQ(board.epColour, black);
  ExpectConsistent(board);
}

// The pawn moves diagonally to a stale en-passant square: it captures nothing.
TEST(MakeMove, AMoveOntoAStaleSquareIsOrdinary) {
  Board board = BoardFrom("4k3/7p/8/8/3p4/8/P3P3/4K3 w -");
  Play(board, "e2e4 h7h5 a2a4");
  ASSERT_EQ(board.epFile, 4);
  MakeMove(board, BuildMove(test::Square("d4"), test::Square("e3"), black, pawn));
  EXPECT_EQ(test::PlacementOf(board), "4k3/8/8/7p/P3P3/4p3/8/4K3");
  EXPECT_EQ(board.undoStack[3].captured, 0);
  EXPECT_EQ(board.epFile, 255);
  ExpectConsistent(board);
}

TEST(EnPassantAvailable, FollowsTheNewestMove) {
  Board board = BoardFrom("4k3/7p/8/8/3p4/8/4P3/4K3 w -");
  EXPECT_FALSE(EnPassantAvailable(board));
  Play(board, "e2e4");
  EXPECT_TRUE(EnPassantAvailable(board));
  Play(board, "h7h5");
  EXPECT_FALSE(EnPassantAvailable(board));
  UnmakeMove(board);
  EXPECT_TRUE(EnPassantAvailable(board));
}

TEST(EnPassantAvailable, HoldsForAPositionSetUpWithTheSquare) {
  EXPECT_TRUE(EnPassantAvailable(BoardFrom("4k3/8/8/2pP4/8/8/8/4K3 w - c6")));
  // A corner, where no game has a pawn.
  EXPECT_TRUE(EnPassantAvailable(BoardFrom("4k3/8/8/8/8/8/8/pP2K3 w - a2")));
  EXPECT_FALSE(EnPassantAvailable(BoardFrom("4k3/8/8/3P4/8/8/8/4K3 w - c6")));
  EXPECT_FALSE(EnPassantAvailable(BoardFrom("4k3/8/2n5/2pP4/8/8/8/4K3 w - c6")));
}

TEST(EnPassantAvailable, NeedsAFieldOnTheBoardAndAPawnThatJustMovedTwoSquares) {
  Board board = BoardFrom("4k3/8/8/8/3p4/8/4P3/4K3 w -");
  Play(board, "e2e4");
  struct Change {
    const char* what;
    void (*make)(Board& board);
  };
  constexpr Change changes[] = {
      {"no file", [](Board& b) { b.epFile = 8; }},
      {"no rank", [](Board& b) { b.epRank = 8; }},
      {"no side", [](Board& b) { b.epColour = 2; }},
      {"a knight", [](Board& b) { b.undoStack[0].move = BuildMove(12, 28, white, knight); }},
      {"one square", [](Board& b) { b.undoStack[0].move = BuildMove(20, 28, white, pawn); }},
      {"another file", [](Board& b) { b.undoStack[0].move = BuildMove(11, 27, white, pawn); }},
  };
  EXPECT_TRUE(EnPassantAvailable(board));
  for (const Change& change : changes) {
    Board changed = board;
    change.make(changed);
    EXPECT_FALSE(EnPassantAvailable(changed)) << change.what;
  }
}

// File 8 of rank 2 is a3 by square number, but not on the board.
TEST(EnPassantAvailable, IsNotForFieldsOffTheBoard) {
  Board board = BoardFrom("4k3/8/8/8/P7/8/8/4K3 b - a3");
  EXPECT_TRUE(EnPassantAvailable(board));
  board.epRank = 1;
  board.epFile = 8;
  EXPECT_FALSE(EnPassantAvailable(board));
}

// Null moves and passes.

TEST(NullMove, PassesTheTurnAndIsTakenBack) {
  Board board = BoardFrom("4k3/8/8/8/3p4/8/4P3/4K3 w -");
  Play(board, "e2e4");
  const test::Snapshot before(board);
  MakeNullMove(board);
  EXPECT_EQ(board.sideToMove, white);
  EXPECT_EQ(board.plyCount, 2);
  EXPECT_EQ(board.nullMoveMade, 1);
  EXPECT_EQ(board.inCheckCache, -1);
  EXPECT_EQ(board.undoDepth, 1);
  EXPECT_EQ(board.epFile, 4);
  ExpectConsistent(board);
  UnmakeNullMove(board);
  EXPECT_TRUE(before.SameAs(board));
}

TEST(PassTurn, ChangesSideAndKeyOnly) {
  Board board = BoardFrom(startFen);
  board.inCheckCache = 0;
  PassTurn(board);
  EXPECT_EQ(board.sideToMove, black);
  EXPECT_EQ(board.plyCount, 0);
  EXPECT_EQ(board.undoDepth, 0);
  EXPECT_EQ(board.inCheckCache, -1);
  ExpectConsistent(board);
}

}  // namespace
}  // namespace mirvo
