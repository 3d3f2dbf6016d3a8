#include "epd/epd_reader.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/key_history.h"
#include "board/keys.h"
#include "gtest/gtest.h"

namespace mirvo {
namespace {

constexpr char plainLine[] = "6k1/5ppp/8/8/8/8/8/R6K w - - ";

std::string Line(const char* operations) { return std::string(plainLine) + operations; }

std::string BestTexts(const SuitePosition& position) {
  std::string texts;
  for (const BestMove& best : position.bestMoves) texts += std::string(best.text) + "|";
  return texts;
}

std::string Points(const SuitePosition& position) {
  std::string points;
  for (const PointEntry& entry : position.pointEntries) {
    points += std::to_string(ToSquare(entry.move)) + ":" + std::to_string(MovingKind(entry.move)) +
              "=" + std::to_string(entry.points) + "|";
  }
  return points;
}

/// A file of its own for one test, removed at its end.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content) : path_(FreshPath()) {
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TemporaryFile() { std::filesystem::remove(path_); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  std::string Name() const { return path_.string(); }

 private:
  static std::filesystem::path FreshPath() {
    static int number = 0;
    return std::filesystem::temp_directory_path() /
           ("mirvo_epd_" + std::to_string(std::random_device{}()) + "_" + std::to_string(number++) +
            ".epd");
  }

  std::filesystem::path path_;
};

// --- Cutting the text into pieces ------------------------------------------

TEST(ParseSuite, EmptyTextHasNoPositions) { EXPECT_TRUE(ParseSuite("").empty()); }

TEST(ParseSuite, ALineBecomesOnePositionAndItsOperationsFollowIt) {
  const Suite suite =
      ParseSuite(Line("bm Ra8; id \"first\";\n") + Line("bm Ra7; id \"second\";\n"));
  ASSERT_EQ(suite.size(), 2U);
  EXPECT_EQ(BestTexts(suite[0]), "Ra8|");
  EXPECT_EQ(BestTexts(suite[1]), "Ra7|");
}

TEST(ParseSuite, TextBehindTheLastSemicolonIsNoPiece) {
  EXPECT_EQ(ParseSuite(Line("bm Ra8; ") + Line("bm Ra7")).size(), 1U);
  EXPECT_TRUE(ParseSuite(plainLine).empty());
}

TEST(ParseSuite, IgnoredOperationsStartNoPositionHoweverLong) {
  for (const char* name : {"id", "pv", "acd", "acn", "acs", "ce"}) {
    const Suite suite = ParseSuite(Line("bm Ra8; ") + name + " a long operand of many words;");
    EXPECT_EQ(suite.size(), 1U) << name;
  }
}

TEST(ParseSuite, OperationsAreKnownByTheirFirstCharacters) {
  EXPECT_EQ(ParseSuite(Line("bm Ra8;identity of the position;")).size(), 1U);
  const Suite suite = ParseSuite(Line("bm Ra8;bmRa7 Ra6;"));
  EXPECT_EQ(BestTexts(suite.at(0)), "Ra8|Ra7|Ra6|");
}

TEST(ParseSuite, OperationsAreCaseSensitive) {
  EXPECT_EQ(ParseSuite(Line("bm Ra8; ID \"long enough\";")).size(), 2U);
}

TEST(ParseSuite, UnknownPiecesOfTenCharactersAreIgnoredAndOfElevenStartAPosition) {
  EXPECT_EQ(ParseSuite(Line("bm Ra8;dm 4567 9;")).size(), 1U);   // ten with the semicolon
  EXPECT_EQ(ParseSuite(Line("bm Ra8;dm 4567 90;")).size(), 2U);  // eleven
}

TEST(ParseSuite, LeadingBlanksDoNotCountForTheLength) {
  EXPECT_EQ(ParseSuite(Line("bm Ra8;\r\n\t    dm 4567 9;")).size(), 1U);
  EXPECT_EQ(ParseSuite(Line("bm Ra8;\r\n\t    dm 4567 90;")).size(), 2U);
}

TEST(ParseSuite, ALongUnknownPieceReallyIsThePositionThatLaterOperationsBelongTo) {
  const Suite suite = ParseSuite(Line(R"(bm Ra8; c9 "a comment"; c0 "Ra8=5";)"));
  ASSERT_EQ(suite.size(), 2U);
  EXPECT_EQ(Points(suite[0]), "");
  EXPECT_EQ(Points(suite[1]), "56:3=5|");
}

TEST(ParseSuite, MovesBeforeAnyPositionAreIgnored) {
  const Suite suite = ParseSuite("bm Ra8 Ra7 Ra6; c0 \"Ra8=10, Ra7=3\"; " + Line("bm Ra5;"));
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(BestTexts(suite[0]), "Ra5|");
  EXPECT_EQ(Points(suite[0]), "");
}

TEST(ParseSuite, AByteOrderMarkIsSkipped) {
  const Suite suite = ParseSuite("\xEF\xBB\xBF" + Line("bm Ra8;"));
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(suite[0].pieces[PieceIndex(black, king)], Bit(62));
}

TEST(ParseSuite, LineEndsAndTabsAreBlanks) {
  const Suite suite =
      ParseSuite("\r\n6k1/5ppp/8/8/8/8/8/R6K\tw\r-\n-\tbm\r\nRa8\tRa7;\r\nid \"x\";");
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(suite[0].pieces[PieceIndex(white, rook)], Bit(0));
  EXPECT_EQ(BestTexts(suite[0]), "Ra8|Ra7|");
}

class SuiteCapacity : public testing::TestWithParam<int> {};

TEST_P(SuiteCapacity, KeepsAtMostAThousandPositions) {
  std::string text;
  for (int i = 0; i < GetParam(); ++i) text += Line("bm Ra8; id \"n\";\n");
  EXPECT_EQ(ParseSuite(text).size(), static_cast<std::size_t>(std::min(GetParam(), 1000)));
}
INSTANTIATE_TEST_SUITE_P(Limit, SuiteCapacity, testing::Values(999, 1000, 1001, 2500));

TEST(ParseSuite, PiecesBehindTheThousandthPositionStillBelongToIt) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += Line(";\n");
  text += "bm Ra8; c0 \"Ra8=7\";\n" + Line("bm Rg1;") + "bm Ra5;";
  const Suite suite = ParseSuite(text);
  ASSERT_EQ(suite.size(), 1000U);
  // Reading ends where position 1001 would begin: nothing after that counts.
  EXPECT_EQ(BestTexts(suite[999]), "Ra8|");
  EXPECT_EQ(Points(suite[999]), "56:3=7|");
  EXPECT_EQ(BestTexts(suite[998]), "");
}

// --- The position line ------------------------------------------------------

struct FenCase {
  const char* name;
  const char* placement;
  const char* side;
  const char* castling;
};

class PositionLine : public testing::TestWithParam<FenCase> {};

TEST_P(PositionLine, ReadsItsFieldsLikeTheFenReader) {
  const FenCase& fen = GetParam();
  const auto expected = std::make_unique<Board>();
  SetupFromFen(fen.placement, fen.side, fen.castling, *expected);
  const Suite suite =
      ParseSuite(std::string(fen.placement) + " " + fen.side + " " + fen.castling + " - bm a8;");
  ASSERT_EQ(suite.size(), 1U);
  const auto board = std::make_unique<Board>();
  SetUpSuitePosition(suite[0], *board);
  EXPECT_EQ(std::memcmp(board->pieces, expected->pieces, sizeof board->pieces), 0);
  EXPECT_EQ(board->sideToMove, expected->sideToMove);
  EXPECT_EQ(std::memcmp(&board->castling, &expected->castling, sizeof(CastlingFlags)), 0);
  EXPECT_EQ(board->occupied, expected->occupied);
  EXPECT_EQ(board->occupiedRot90, expected->occupiedRot90);
  EXPECT_EQ(board->occupiedDiagA1H8, expected->occupiedDiagA1H8);
  EXPECT_EQ(board->occupiedDiagA8H1, expected->occupiedDiagA8H1);
  EXPECT_EQ(board->sideOccupancyNoKing[black], expected->sideOccupancyNoKing[black]);
  EXPECT_EQ(KingSquare(*board, white), KingSquare(*expected, white));
  EXPECT_EQ(KingSquare(*board, black), KingSquare(*expected, black));
  EXPECT_EQ(board->hasOverlaps, expected->hasOverlaps);
}
INSTANTIATE_TEST_SUITE_P(
    Fields, PositionLine,
    testing::Values(FenCase{"Start", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "w", "KQkq"},
                    FenCase{"BlackToMove", "r3k2r/8/8/8/8/8/8/R3K2R", "b", "Kq"},
                    FenCase{"SideByFirstLetter", "r3k2r/8/8/8/8/8/8/R3K2R", "black", "-"},
                    FenCase{"CapitalSideIsWhite", "r3k2r/8/8/8/8/8/8/R3K2R", "B", "Qx9k"},
                    FenCase{"NoKings", "8/pppppppp/8/8/8/8/PPPPPPPP/8", "w", "KQkq"},
                    FenCase{"ThirtyQueens", "qqqqqqqk/qqqqqqqq/8/8/8/8/QQQQQQQQ/KQQQQQQQ", "b",
                            "-"},
                    FenCase{"SharedSquares", "k7/ppppppppp/PPPPPPPPP/8/8/8/8/8/K7", "w", "-"},
                    FenCase{"Nonsense", "~!@#$%^&*()_xyz/99999/kK", "?", "????"}),
    [](const auto& test) { return test.param.name; });

TEST(ParseSuite, MissingFieldsMeanWhiteToMoveWithoutRights) {
  const Suite suite = ParseSuite("8/8/8/4k3/8/8/8/4K3;");
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(suite[0].sideToMove, white);
  EXPECT_EQ(suite[0].epFile, noEnPassant);
  EXPECT_EQ(suite[0].castling.kingMoved[white], 1);
  EXPECT_EQ(suite[0].castling.hasCastled[black], 1);
  EXPECT_TRUE(suite[0].bestMoves.empty());
}

struct EnPassantCase {
  const char* name;
  const char* word;
  int file, rank, colour;
};

class EnPassantWord : public testing::TestWithParam<EnPassantCase> {};

TEST_P(EnPassantWord, BelongsToBlackOnEveryRankButTheSeventh) {
  const EnPassantCase& expected = GetParam();
  const Suite suite =
      ParseSuite("4k3/8/8/8/8/8/8/4K3 w - " + std::string(expected.word) + " bm Kd1;");
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(suite[0].epFile, expected.file);
  EXPECT_EQ(suite[0].epRank, expected.rank);
  EXPECT_EQ(suite[0].epColour, expected.colour);
}
INSTANTIATE_TEST_SUITE_P(Words, EnPassantWord,
                         testing::Values(EnPassantCase{"SixthRank", "e6", 4, 5, black},
                                         EnPassantCase{"ThirdRankIsBlackToo", "d3", 3, 2, black},
                                         EnPassantCase{"SeventhRank", "a7", 0, 6, white},
                                         EnPassantCase{"LastFile", "h8", 7, 7, black},
                                         EnPassantCase{"MoreCharacters", "c6xyz", 2, 5, black},
                                         EnPassantCase{"RankOffTheBoardIsMasked", "b9", 1, 0,
                                                       black},
                                         EnPassantCase{"LetterAloneIsMasked", "f", 5, 7, black},
                                         EnPassantCase{"None", "-", 255, 255, 255},
                                         EnPassantCase{"CapitalLetter", "E6", 255, 255, 255},
                                         EnPassantCase{"LetterBehindH", "i6", 255, 255, 255},
                                         EnPassantCase{"Digit", "6", 255, 255, 255}),
                         [](const auto& test) { return test.param.name; });

TEST(ParseSuite, AnOperationInPlaceOfTheEnPassantWordIsTakenForASquare) {
  const Suite suite = ParseSuite("4k3/8/8/8/8/8/8/4K3 w - bm Kd1;");
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(suite[0].epFile, 1);
  EXPECT_TRUE(suite[0].bestMoves.empty());
}

struct OperationCase {
  const char* name;
  const char* operation;
  const char* texts;
};

class LineOperation : public testing::TestWithParam<OperationCase> {};

TEST_P(LineOperation, GivesTheBestMoves) {
  const Suite suite = ParseSuite(Line(GetParam().operation));
  ASSERT_GE(suite.size(), 1U);
  EXPECT_EQ(BestTexts(suite[0]), GetParam().texts);
}
INSTANTIATE_TEST_SUITE_P(
    Operations, LineOperation,
    testing::Values(
        OperationCase{"OneMove", "bm Ra8;", "Ra8|"},
        OperationCase{"Blanks", "bm Ra8  Ra7;", "Ra8|Ra7|"},
        OperationCase{"Commas", "bm Ra8,Ra7, Ra6 ,Ra5;", "Ra8|Ra7|Ra6|Ra5|"},
        OperationCase{"MovesToAvoidAreBestMovesToo", "am Ra8 Kg1;", "Ra8|Kg1|"},
        OperationCase{"BlankBeforeTheEnd", "bm Ra8 ;", "Ra8|"}, OperationCase{"NoMove", "bm ;", ""},
        OperationCase{"OtherOperation", "acd Ra8;", ""}, OperationCase{"Clocks", "0 1 bm Ra8;", ""},
        OperationCase{"CapitalName", "BM Ra8;", ""}, OperationCase{"LongerName", "bmx Ra8;", ""},
        OperationCase{"SecondOperation", "bm Ra8; bm Ra7; am Ra6 Ra5 Ra4;", "Ra8|Ra7|"},
        OperationCase{"FifteenCharacters", "bm 123456789012345;", "123456789012345|"},
        OperationCase{"SixteenAreCut", "bm 1234567890123456;", "123456789012345|"},
        OperationCase{"MarksStayInTheText", "bm Ra8! Ra7!?,Ra6?;", "Ra8!|Ra7!?|Ra6?|"},
        OperationCase{"FormatSigns", "bm %s%n%d;", "%s%n%d|"}),
    [](const auto& test) { return test.param.name; });

TEST(ParseSuite, BestMovesAreReadAsAlgebraicMovesOfTheSideToMove) {
  const Suite suite = ParseSuite("r3k2r/8/8/8/8/8/8/R3K2R b KQkq - bm O-O O-O-O Rxa1+ e8=Q;");
  ASSERT_EQ(suite.at(0).bestMoves.size(), 4U);
  EXPECT_EQ(ToSquare(suite[0].bestMoves[0].move), 62);
  EXPECT_EQ(MovingKind(suite[0].bestMoves[0].move), king);
  EXPECT_EQ(ToSquare(suite[0].bestMoves[1].move), 58);
  EXPECT_EQ(ToSquare(suite[0].bestMoves[2].move), 0);
  EXPECT_EQ(MovingKind(suite[0].bestMoves[2].move), rook);
  EXPECT_EQ(ToSquare(suite[0].bestMoves[3].move), 60);
  EXPECT_EQ(MovingKind(suite[0].bestMoves[3].move), pawn);
}

TEST(ParseSuite, AnnotationMarksAreNoPartOfAMove) {
  const Suite suite = ParseSuite(
      "r3k2r/P7/8/3pP3/8/8/8/R3K2R w KQkq d6 bm Rh8! Rxh8+!? Nf3!, e8=Q+! O-O! exd6e.p.;"
      "bm Ra7?! Rb1!;");
  const struct {
    const char* text;
    int kind;
    int to;
  } expected[] = {{"Rh8!", rook, 63},   {"Rxh8+!?", rook, 63}, {"Nf3!", knight, 21},
                  {"e8=Q+!", pawn, 60}, {"O-O!", king, 6},     {"exd6e.p.", pawn, 43},
                  {"Ra7?!", rook, 48},  {"Rb1!", rook, 1}};
  const std::vector<BestMove>& moves = suite.at(0).bestMoves;
  ASSERT_EQ(moves.size(), std::size(expected));
  for (std::size_t i = 0; i < moves.size(); ++i) {
    EXPECT_STREQ(moves[i].text, expected[i].text);
    EXPECT_EQ(MovingKind(moves[i].move), expected[i].kind) << expected[i].text;
    EXPECT_EQ(ToSquare(moves[i].move), expected[i].to) << expected[i].text;
  }
}

TEST(ParseSuite, MovesToAvoidLoseTheirMarksToo) {
  const Suite suite = ParseSuite(Line("am Rh1??;"));
  ASSERT_EQ(suite.at(0).bestMoves.size(), 1U);
  EXPECT_EQ(ToSquare(suite[0].bestMoves[0].move), 7);
}

TEST(ParseSuite, AWordOfMarksAloneNamesNoMove) {
  const Suite suite = ParseSuite(Line("bm Ra8 ! e.p.; c0 \"!=5, =7\";"));
  EXPECT_EQ(BestTexts(suite.at(0)), "Ra8|!|e.p.|");
  for (const std::size_t i : {1U, 2U}) {
    EXPECT_GT(MovingKind(suite[0].bestMoves.at(i).move), king) << i;
  }
  for (const PointEntry& entry : suite[0].pointEntries) EXPECT_GT(MovingKind(entry.move), king);
}

TEST(ParseSuite, AnyNumberOfMovesIsKept) {
  std::string text = Line("bm");
  for (int i = 0; i < 300; ++i) text += " Ra8";
  text += "; c0 \"";
  for (int i = 0; i < 300; ++i) text += "Ra8=1, ";
  const Suite suite = ParseSuite(text + "\";");
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(suite[0].bestMoves.size(), 300U);
  EXPECT_EQ(suite[0].pointEntries.size(), 300U);
}

// --- Points -----------------------------------------------------------------

struct PointsCase {
  const char* name;
  const char* operation;
  const char* points;  // to-square:kind=points
};

class PointsOperation : public testing::TestWithParam<PointsCase> {};

TEST_P(PointsOperation, GivesPairsOfMoveAndPoints) {
  const Suite suite = ParseSuite(Line("bm Ra8;") + GetParam().operation);
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(Points(suite[0]), GetParam().points);
}
INSTANTIATE_TEST_SUITE_P(
    Pairs, PointsOperation,
    testing::Values(PointsCase{"Quoted", "c0 \"Ra8=10, Kg1=3\";", "56:3=10|6:5=3|"},
                    PointsCase{"Unquoted", "c0 Ra8=10, Kg1=3;", "56:3=10|6:5=3|"},
                    PointsCase{"NoBlank", "c0 \"Ra8=10,Kg1=3\";", "56:3=10|6:5=3|"},
                    PointsCase{"BlanksAroundTheComma", "c0 \" Ra8=10 , Kg1=3 \" ;",
                               "56:3=10|6:5=3|"},
                    PointsCase{"LastEqualsSignCuts", "c0 \"e8=Q=4\";", "60:0=4|"},
                    PointsCase{"Marked", "c0 \"Rh8!=10, Ra7!?=3, Nf3+!=2, O-O?=1\";",
                               "63:3=10|48:3=3|21:1=2|6:5=1|"},
                    PointsCase{"MarkedPromotion", "c0 \"e8=Q+!=4, e8=N!!=2\";", "60:0=4|60:0=2|"},
                    PointsCase{"Negative", "c0 \"Ra8=-2\";", "56:3=-2|"},
                    PointsCase{"NoNumber", "c0 \"Ra8=x\";", "56:3=0|"},
                    PointsCase{"NumberCutAtItsEnd", "c0 \"Ra8=7x\";", "56:3=7|"},
                    PointsCase{"HugeNumber", "c0 \"Ra8=99999999999\";", "56:3=2147483647|"},
                    PointsCase{"WithoutEqualsSign", "c0 \"Ra8 10, Kg1=3\";", "6:5=3|"},
                    PointsCase{"QuotesInside", "c0 \"R\"a8=\"1\"0;", "56:3=10|"},
                    PointsCase{"Empty", "c0 \"\";", ""},
                    PointsCase{"TwoOperations", "c0 \"Ra8=1\"; c0 \"Ra8=2\";", "56:3=1|56:3=2|"}),
    [](const auto& test) { return test.param.name; });

// --- Text of any kind -------------------------------------------------------

TEST(ParseSuite, NulBytesSeparateLikeBlanks) {
  std::string text = Line("bm Ra8 Ra7;");
  for (char& c : text) c = c == ' ' ? '\0' : c;
  const Suite suite = ParseSuite(text);
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(BestTexts(suite[0]), "Ra8|Ra7|");
}

TEST(ParseSuite, SixteenBitTextIsHarmless) {
  std::string text = "\xFF\xFE";
  for (const char c : Line("bm Ra8; id \"x\";\n")) text += {c, '\0'};
  EXPECT_LE(ParseSuite(text).size(), 2U);
}

TEST(ParseSuite, TenMegabytesWithoutASemicolonAreNoPiece) {
  EXPECT_TRUE(ParseSuite(std::string(10'000'000, 'k')).empty());
}

TEST(ParseSuite, TenMegabytesInOneWordAreBounded) {
  const std::string longWord(10'000'000, 'k');
  const Suite placement = ParseSuite(longWord + " w - - bm Kb1;");
  ASSERT_EQ(placement.size(), 1U);
  EXPECT_EQ(BestTexts(placement[0]), "Kb1|");
  const Suite others =
      ParseSuite("8/8/8/8/8/8/8/K6k w " + longWord + " - bm " + longWord + " Kb1;");
  ASSERT_EQ(others.size(), 1U);
  EXPECT_EQ(BestTexts(others[0]), "kkkkkkkkkkkkkkk|Kb1|");
}

TEST(ParseSuite, RandomBytesGiveBoardsThatAgreeWithTheirPieces) {
  std::mt19937 random(20261121);
  const char alphabet[] = "kKqQrRbBnNpP/12345678 -;;; wbm=,\"c0aehx+#O\n\t\r";
  const auto board = std::make_unique<Board>();
  for (int round = 0; round < 300; ++round) {
    std::string text(random() % 2000, '\0');
    for (char& c : text) {
      c = random() % 8 == 0 ? static_cast<char>(random() & 255)
                            : alphabet[random() % (sizeof alphabet - 1)];
    }
    for (const SuitePosition& position : ParseSuite(text)) {
      SetUpSuitePosition(position, *board);
      std::uint64_t all = 0;
      for (const std::uint64_t set : board->pieces) all |= set;
      ASSERT_EQ(board->occupied, all);
      ASSERT_EQ(board->positionKey, ComputeKey(*board));
      ASSERT_TRUE(board->epRank <= 7 || board->epRank == noEnPassant);
      ASSERT_LT(KingSquare(*board, white), nSquares);
    }
  }
}

// --- Files and boards -------------------------------------------------------

TEST(ReadSuite, ReadsAFile) {
  const TemporaryFile file(Line("bm Ra8; id \"one\";\r\n"));
  Suite suite;
  ASSERT_TRUE(ReadSuite(file.Name().c_str(), suite));
  ASSERT_EQ(suite.size(), 1U);
  EXPECT_EQ(BestTexts(suite[0]), "Ra8|");
}

TEST(ReadSuite, AnEmptyFileHasNoPositions) {
  const TemporaryFile file("");
  Suite suite(3);
  EXPECT_TRUE(ReadSuite(file.Name().c_str(), suite));
  EXPECT_TRUE(suite.empty());
}

TEST(ReadSuite, AFileLargerThanWhatIsReadAtATimeIsReadWhole) {
  constexpr int nLines = 900;
  const std::string padding = std::string(200, 'x');
  std::string text;
  for (int i = 0; i < nLines; ++i) text += Line("bm Ra8; id \"") + padding + "\";\n";
  const TemporaryFile file(text);
  Suite suite;
  ASSERT_TRUE(ReadSuite(file.Name().c_str(), suite));
  ASSERT_EQ(suite.size(), std::size_t{nLines});
  for (const SuitePosition& position : suite) ASSERT_EQ(BestTexts(position), "Ra8|");
}

TEST(ReadSuite, AMissingFileAFolderAndAnEmptyNameAreNotRead) {
  Suite suite;
  EXPECT_FALSE(ReadSuite("/nowhere/at/all.epd", suite));
  EXPECT_FALSE(ReadSuite(std::filesystem::temp_directory_path().string().c_str(), suite));
  EXPECT_FALSE(ReadSuite("", suite));
}

TEST(SetUpSuitePosition, BeginsANewGameAtThePosition) {
  const Suite suite = ParseSuite(Line("bm Ra8;"));
  const auto board = std::make_unique<Board>();
  board->epFile = 3;
  board->epRank = 5;
  board->epColour = black;
  board->plyCount = 17;
  board->undoDepth = 9;
  board->historyIndex = 9;
  board->inCheckCache = 1;
  SetUpSuitePosition(suite.at(0), *board);
  EXPECT_FALSE(HasEnPassant(*board));
  EXPECT_EQ(board->plyCount, 0);
  EXPECT_EQ(board->undoDepth, 0);
  EXPECT_EQ(board->historyIndex, 0);
  EXPECT_EQ(board->inCheckCache, -1);
  EXPECT_EQ(board->positionKey, ComputeKey(*board));
  EXPECT_EQ(KeyHistory[0], board->positionKey);
}

TEST(SetUpSuitePosition, KeepsTheEnPassantSquareInTheKey) {
  const Suite suite = ParseSuite("4k3/8/8/3pP3/8/8/8/4K3 w - d6 bm exd6;");
  const auto board = std::make_unique<Board>();
  SetUpSuitePosition(suite.at(0), *board);
  const std::uint64_t key = board->positionKey;
  ClearEnPassant(*board);
  EXPECT_EQ(key ^ ComputeKey(*board), EnPassantKey(3));
}

TEST(SetUpSuitePosition, MarksBoardsWithSharedSquares) {
  const Suite suite = ParseSuite("k7/ppppppppp/PPPPPPPPP/8/8/8/8/8/K7 w - -;");
  const auto board = std::make_unique<Board>();
  SetUpSuitePosition(suite.at(0), *board);
  EXPECT_EQ(board->hasOverlaps, 1);
}

}  // namespace
}  // namespace mirvo
