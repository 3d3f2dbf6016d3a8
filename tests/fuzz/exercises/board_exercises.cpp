// Positions and moves from text.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/key_history.h"
#include "board/make_move.h"
#include "board/notation.h"
#include "board/san.h"
#include "book/pgn_reader.h"
#include "protocol/game_board.h"
#include "protocol/uci_position.h"
#include "protocol/xboard.h"
#include "shell/base/process.h"
#include "shell/base/text.h"
#include "shell/command_line.h"
#include "shell/config/config.h"
#include "tests/fuzz/exercises/board_checks.h"
#include "tests/fuzz/exercises/engine_kit.h"
#include "tests/fuzz/exercises/exercises.h"

namespace mirvo {
namespace {

/// Longest line that the engine reads as one.
constexpr std::size_t longestLine = 4000;

/// Positions to play moves in: castling, promotions, en passant, checks, a side
/// without a king, squares with two pieces.
constexpr const char* positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 b kq",
    "rnbqkbnr/1p1p1p1p/8/P1P1P1P1/p1p1p1p1/8/1P1P1P1P/RNBQKBNR w KQkq",
    "4k3/P6P/8/8/8/8/p6p/4K3 b -",
    "4r2k/8/8/8/8/8/3PPP2/3QKB2 w -",
    "8/8/4R3/8/8/3n4/8/8 w -",
    "pppppppp/8P/8p/8k8K/8/8/8/RRR w KQkq",
};

/// The input as a C string of one line.
std::string OneLine(std::string_view input) {
  input = input.substr(0, input.find('\0'));
  input = input.substr(0, input.find('\n'));
  return std::string(input.substr(0, longestLine));
}

const char* ChoosePosition(std::string_view& input) {
  if (input.empty()) return positions[0];
  const auto choice = static_cast<unsigned char>(input[0]);
  input.remove_prefix(1);
  return positions[choice % std::size(positions)];
}

std::vector<std::string> WordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::string word(line.size() + 1, '\0');
  for (const char* rest = line.c_str();;) {
    rest = ReadWord(rest, word.data(), word.size());
    if (word[0] == '\0') return words;
    words.emplace_back(word.c_str());
  }
}

/// "-test" with those of the first three fields that exist.
void SetUpByCommandLine(const std::vector<std::string>& fields) {
  std::vector<const char*> words = {"mirvo", "-test"};
  for (std::size_t i = 0; i < fields.size() && i < 3; ++i) words.push_back(fields[i].c_str());
  ParseCommandLine(engineConfig, static_cast<int>(words.size()), words.data());
  UndoEndWithClosedPipe();
}

void HandleXBoard(const std::string& line) {
  std::uint8_t state = 0;
  HandleXBoardLine(state, line.c_str());
}

/// Plays the tokens under XBoard in force mode, which must lead to the same
/// position as the UCI move list.
BrokenPromise PlayUnderXBoard(const char* position, const std::vector<std::string>& tokens,
                              const Board& expected) {
  for (const std::string& token : tokens) {
    // Other words are commands under XBoard and pass the turn under UCI.
    if (!IsCoordinateMove(token.c_str())) return nullptr;
  }
  HandleXBoard("new");
  HandleXBoard("force");
  HandleXBoard(std::string("setboard ") + position);
  for (const std::string& token : tokens) HandleXBoard(token);
  if (!SamePosition(gameBoard, expected)) return "the protocols play a move differently";
  return CheckDerivedFields(gameBoard);
}

/// The part of a move list that the front end reads.
bool IsListText(const std::string& line) {
  return std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= 'z'; });
}

}  // namespace

BrokenPromise ExerciseFen(std::string_view input) {
  FreshEngine();
  const Silence silence;
  const std::string line = OneLine(input);
  static Board board;
  SetUpPosition(uciSession, board, ("fen " + line).c_str());
  // Room for the moves that the checks make, should moves follow the fields.
  TrimGameHistory(board);
  if (const BrokenPromise broken = CheckPosition(board)) return broken;
  HandleXBoard("setboard " + line);
  if (const BrokenPromise broken = CheckPosition(gameBoard)) return broken;
  const std::vector<std::string> fields = WordsOf(line);
  SetUpByCommandLine(fields);
  if (const BrokenPromise broken = CheckPosition(engineConfig.CommandLineBoard)) return broken;
  const bool hasMoves = line.find("moves") != std::string::npos;
  if (!hasMoves && !SamePosition(board, gameBoard)) return "the protocols read a FEN differently";
  if (!fields.empty() && !SamePosition(gameBoard, engineConfig.CommandLineBoard)) {
    return "the command line reads a FEN differently";
  }
  return nullptr;
}

BrokenPromise ExerciseCoordinateMoves(std::string_view input) {
  FreshEngine();
  const Silence silence;
  const char* position = ChoosePosition(input);
  const std::string line = OneLine(input);
  static Board board;
  SetUpPosition(uciSession, board,
                (std::string("fen ") + position + " - 0 1 moves " + line).c_str());
  if (const BrokenPromise broken = CheckDerivedFields(board)) return broken;
  if (IsListText(line)) {
    if (const BrokenPromise broken = PlayUnderXBoard(position, WordsOf(line), board)) return broken;
  }
  TrimGameHistory(board);
  return CheckPosition(board);
}

BrokenPromise ExerciseAlgebraicMoves(std::string_view input) {
  FreshEngine();
  const Silence silence;
  static Board board;
  SetUpPosition(uciSession, board, (std::string("fen ") + ChoosePosition(input)).c_str());
  for (const std::string& word : WordsOf(OneLine(input))) {
    for (const int side : {white, black}) {
      if (MovingKind(SanToPartialMove(word.c_str(), side)) > king) return "a text names no piece";
    }
    Move partial = noMove;
    const Move move = MatchSan(board, word.c_str(), partial);
    if (move == noMove) continue;
    if (ToSquare(move) != ToSquare(partial) || MovingKind(move) != MovingKind(partial)) {
      return "a text was matched with another move";
    }
    MakeMove(board, move);
    if (const BrokenPromise broken = CheckDerivedFields(board)) return broken;
    TrimGameHistory(board);
  }
  return CheckPosition(board);
}

}  // namespace mirvo
