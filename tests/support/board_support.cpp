#include "tests/support/board_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>

#include "board/attack_tables.h"
#include "board/attacks.h"
#include "board/bb_move_generator.h"
#include "board/fen.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "board/notation.h"

namespace mirvo::test {
namespace {

std::vector<Move> ListOf(const BBMoveGenerator2& generator) {
  return {generator.moves, generator.moves + generator.count};
}

// Index of a square in an ordering by line: `line` numbers the lines, `place`
// orders the squares of a line. Counts the squares that come before.
template <typename LineOf, typename PlaceOf>
int ReadingIndex(int square, LineOf line, PlaceOf place) {
  int index = 0;
  for (int other = 0; other < nSquares; ++other) {
    if (line(other) < line(square)) ++index;
    if (line(other) == line(square) && place(other) < place(square)) ++index;
  }
  return index;
}

int Rank(int square) { return square / 8; }
int File(int square) { return square % 8; }

struct RotatedIndex {
  int rot90;
  int diagA1H8;
  int diagA8H1;
};

const RotatedIndex& RotatedIndexOf(int square) {
  static const std::vector<RotatedIndex> table = [] {
    std::vector<RotatedIndex> result;
    for (int s = 0; s < nSquares; ++s) {
      result.push_back({ReadingIndex(
                            s, [](int x) { return -File(x); }, Rank),
                        ReadingIndex(
                            s, [](int x) { return Rank(x) - File(x); }, Rank),
                        ReadingIndex(
                            s, [](int x) { return Rank(x) + File(x); }, Rank)});
    }
    return result;
  }();
  return table[static_cast<std::size_t>(square)];
}

void ExpectOccupanciesAgree(const Board& board) {
  Bitboard side[nSides] = {0, 0};
  Bitboard noKing[nSides] = {0, 0};
  Bitboard rot90 = 0;
  Bitboard diagA1H8 = 0;
  Bitboard diagA8H1 = 0;
  for (int square = 0; square < nSquares; ++square) {
    const Bitboard bit = Bitboard{1} << square;
    bool taken = false;
    for (int piece = 0; piece < 12; ++piece) {
      if ((board.pieces[piece] & bit) == 0) continue;
      taken = true;
      side[piece / 6] |= bit;
      if (piece % 6 != 5) noKing[piece / 6] |= bit;
    }
    if (!taken) continue;
    rot90 |= Bitboard{1} << RotatedIndexOf(square).rot90;
    diagA1H8 |= Bitboard{1} << RotatedIndexOf(square).diagA1H8;
    diagA8H1 |= Bitboard{1} << RotatedIndexOf(square).diagA8H1;
  }
  for (int colour = 0; colour < nSides; ++colour) {
    EXPECT_EQ(board.sideOccupancy[colour], side[colour]) << "side " << colour;
    EXPECT_EQ(board.sideOccupancyNoKing[colour], noKing[colour]) << "side " << colour;
  }
  EXPECT_EQ(board.occupied, side[white] | side[black]);
  EXPECT_EQ(board.occupiedRot90, rot90);
  EXPECT_EQ(board.occupiedDiagA1H8, diagA1H8);
  EXPECT_EQ(board.occupiedDiagA8H1, diagA8H1);
}

// The highest square that holds the side's king, or -1.
int HighestKing(const Board& board, int side) {
  for (int square = 63; square >= 0; --square) {
    if ((board.pieces[side * 6 + 5] >> square & 1) != 0) return square;
  }
  return -1;
}

// Added to the state for each number.
constexpr std::uint64_t randomStep = 0x9E3779B97F4A7C15ULL;

const std::vector<std::string>& GameStarts() {
  static const std::vector<std::string> starts = {
      startFen,
      kiwipeteFen,
      "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq",
      "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w -",
      "rnbqkbnr/1p1p1p1p/8/P1P1P1P1/p1p1p1p1/8/1P1P1P1P/RNBQKBNR b KQkq",
      "k7/3PPPPP/8/8/8/8/3ppppp/K7 w -",
  };
  return starts;
}

}  // namespace

void PrepareTables() {
  static const bool prepared = [] {
    InitAttackTables();
    return true;
  }();
  (void)prepared;
}

void SetPosition(Board& board, const std::string& fen) {
  PrepareTables();
  std::istringstream fields(fen);
  if (fen.starts_with("startpos")) {
    BeginFromStart(board);
    std::string moves;
    fields >> moves >> moves;
    std::getline(fields, moves);
    if (moves.find("moves") == std::string::npos) Play(board, moves);
    return;
  }
  std::string placement;
  std::string side;
  std::string castling;
  std::string enPassant;
  fields >> placement >> side >> castling >> enPassant;
  BeginFromFen(placement.c_str(), side.c_str(), castling.c_str(), board);
  if (enPassant.size() == 2) {
    const int square = Square(enPassant);
    board.epFile = static_cast<std::uint8_t>(square % 8);
    board.epRank = static_cast<std::uint8_t>(square / 8);
    board.epColour = static_cast<std::uint8_t>(board.sideToMove ^ 1);
    StartKeyHistory(board);
  }
}

Board BoardFrom(const std::string& fen) {
  Board board;
  SetPosition(board, fen);
  return board;
}

int Square(const std::string& name) { return (name.at(0) - 'a') + 8 * (name.at(1) - '1'); }

Bitboard Squares(const std::string& names) {
  std::istringstream words(names);
  Bitboard set = 0;
  for (std::string name; words >> name;) set |= Bitboard{1} << Square(name);
  return set;
}

std::string NamesOf(Bitboard set) {
  std::string names;
  for (int square = 0; square < nSquares; ++square) {
    if ((set >> square & 1) == 0) continue;
    if (!names.empty()) names += ' ';
    names += static_cast<char>('a' + square % 8);
    names += static_cast<char>('1' + square / 8);
  }
  return names;
}

std::vector<Move> AllMoves(Board& board) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  return ListOf(generator);
}

std::vector<Move> Captures(Board& board) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateCaptures();
  return ListOf(generator);
}

std::vector<Move> NonCaptures(Board& board) {
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateNonCaptures();
  return ListOf(generator);
}

std::vector<Move> LegalMoves(Board& board) {
  std::vector<Move> legal;
  for (const Move move : AllMoves(board)) {
    MakeMove(board, move);
    if (!MoverLeftInCheck(board)) legal.push_back(move);
    UnmakeMove(board);
  }
  return legal;
}

std::string TextOf(Move move) {
  char text[moveTextCapacity];
  MoveToCoordinates(move, text);
  return text;
}

std::string TextsOf(const std::vector<Move>& moves) {
  std::string texts;
  for (const Move move : moves) {
    if (!texts.empty()) texts += ' ';
    texts += TextOf(move);
  }
  return texts;
}

Move FindMove(Board& board, const std::string& text) {
  for (const Move move : AllMoves(board)) {
    if (TextOf(move) == text) return move;
  }
  ADD_FAILURE() << "no move " << text;
  return noMove;
}

void Play(Board& board, const std::string& texts) {
  std::istringstream words(texts);
  for (std::string text; words >> text;) {
    const Move move = FindMove(board, text);
    if (move == noMove) return;
    MakeMove(board, move);
  }
}

void ExpectConsistent(const Board& board) {
  ExpectOccupanciesAgree(board);
  for (int side = 0; side < nSides; ++side) {
    const int square = HighestKing(board, side);
    if (square < 0) {
      EXPECT_LT(board.kingFile[side], 8);
      EXPECT_LT(board.kingRank[side], 8);
    } else {
      EXPECT_EQ(board.kingFile[side], square % 8) << "side " << side;
      EXPECT_EQ(board.kingRank[side], square / 8) << "side " << side;
    }
  }
  EXPECT_EQ(board.positionKey, ComputeKey(board));
  EXPECT_EQ(board.pawnKey, ComputePawnKey(board));
  EXPECT_LE(board.sideToMove, black);
  EXPECT_GE(board.undoDepth, 0);
  EXPECT_LE(board.undoDepth, undoCapacity);
  EXPECT_GE(board.historyIndex, 0);
  EXPECT_LT(board.historyIndex, keyHistoryCapacity);
}

std::string PlacementOf(const Board& board) {
  std::string text;
  for (int rank = 7; rank >= 0; --rank) {
    int nEmpty = 0;
    for (int file = 0; file < 8; ++file) {
      char letter = '\0';
      for (int piece = 11; piece >= 0; --piece) {
        if ((board.pieces[piece] >> (rank * 8 + file) & 1) != 0) letter = "PNBRQKpnbrqk"[piece];
      }
      if (letter == '\0') {
        ++nEmpty;
        continue;
      }
      if (nEmpty > 0) text += static_cast<char>('0' + nEmpty);
      nEmpty = 0;
      text += letter;
    }
    if (nEmpty > 0) text += static_cast<char>('0' + nEmpty);
    if (rank > 0) text += '/';
  }
  return text;
}

bool SameFields(const Board& a, const Board& b) {
  const auto same = [](const auto& x, const auto& y) {
    return std::equal(std::begin(x), std::end(x), std::begin(y));
  };
  const auto sameFlags = [](const CastlingFlags& x, const CastlingFlags& y) {
    return std::memcmp(&x, &y, sizeof(CastlingFlags)) == 0;
  };
  const auto sameRecord = [&sameFlags](const UndoRecord& x, const UndoRecord& y) {
    return x.capturedKind == y.capturedKind && x.epRank == y.epRank && x.epFile == y.epFile &&
           x.epColour == y.epColour && x.captured == y.captured &&
           x.castledShort == y.castledShort && x.castledLong == y.castledLong &&
           x.epCapture == y.epCapture && sameFlags(x.castling, y.castling) &&
           x.positionKey == y.positionKey && x.occupiedRot90 == y.occupiedRot90 &&
           x.occupiedDiagA1H8 == y.occupiedDiagA1H8 && x.occupiedDiagA8H1 == y.occupiedDiagA8H1 &&
           x.move == y.move;
  };
  return same(a.pieces, b.pieces) && same(a.sideOccupancy, b.sideOccupancy) &&
         same(a.sideOccupancyNoKing, b.sideOccupancyNoKing) && same(a.kingFile, b.kingFile) &&
         same(a.kingRank, b.kingRank) && a.sideToMove == b.sideToMove &&
         sameFlags(a.castling, b.castling) && a.plyCount == b.plyCount && a.epRank == b.epRank &&
         a.epFile == b.epFile && a.epColour == b.epColour && a.nullMoveMade == b.nullMoveMade &&
         a.hasOverlaps == b.hasOverlaps && a.turnPassed == b.turnPassed &&
         a.occupied == b.occupied && a.occupiedRot90 == b.occupiedRot90 &&
         a.occupiedDiagA1H8 == b.occupiedDiagA1H8 && a.occupiedDiagA8H1 == b.occupiedDiagA8H1 &&
         a.undoDepth == b.undoDepth && a.positionKey == b.positionKey && a.pawnKey == b.pawnKey &&
         a.inCheckCache == b.inCheckCache && a.historyIndex == b.historyIndex &&
         std::equal(a.undoStack, a.undoStack + a.undoDepth, b.undoStack, sameRecord);
}

Snapshot::Snapshot(const Board& board)
    : bytes(sizeof(Board)), keys(KeyHistory, KeyHistory + board.historyIndex + 1) {
  std::memcpy(bytes.data(), &board, sizeof(Board));
}

bool Snapshot::SameAs(const Board& board) const {
  const auto* const begin = reinterpret_cast<const unsigned char*>(&board);
  const auto offset = [begin](const UndoRecord* record) {
    return reinterpret_cast<const unsigned char*>(record) - begin;
  };
  const auto unusedBegin = offset(board.undoStack + board.undoDepth);
  const auto unusedEnd = offset(board.undoStack + undoCapacity);
  return std::equal(begin, begin + unusedBegin, bytes.begin()) &&
         std::equal(begin + unusedEnd, begin + sizeof(Board), bytes.begin() + unusedEnd) &&
         keys == std::vector<std::uint64_t>(KeyHistory, KeyHistory + board.historyIndex + 1);
}

std::uint64_t Random::Next() {
  state += randomStep;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
  return mixed ^ (mixed >> 31);
}

void PlayRandomGames(std::uint64_t seed, int nGames, int maxPlies,
                     const std::function<void(Board&)>& visit) {
  Random random(seed);
  const auto board = std::make_unique<Board>();
  for (int game = 0; game < nGames; ++game) {
    SetPosition(*board, GameStarts()[static_cast<std::size_t>(game) % GameStarts().size()]);
    for (int ply = 0; ply < maxPlies; ++ply) {
      visit(*board);
      if (testing::Test::HasFailure()) {
        ADD_FAILURE() << "seed " << seed << " game " << game << " ply " << ply << ": "
                      << PlacementOf(*board) << (board->sideToMove == white ? " w" : " b");
        return;
      }
      const std::vector<Move> moves = LegalMoves(*board);
      if (moves.empty()) break;
      MakeMove(*board, moves[random.Below(moves.size())]);
    }
  }
}

std::vector<std::string> DataLines(const std::string& name) {
  const std::string path = std::string(MIRVO_SOURCE_DIR "/tests/data/") + name;
  std::ifstream file(path);
  EXPECT_TRUE(file.is_open()) << path;
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  }
  return lines;
}

}  // namespace mirvo::test
