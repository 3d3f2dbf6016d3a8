#include "book/pgn_reader.h"

#include <cstring>
#include <string>
#include <string_view>

#include "board/bb_move_generator.h"
#include "board/fen.h"
#include "board/make_move.h"
#include "board/san.h"
#include "book/pgn_scanner.h"
#include "shell/base/file.h"
#include "shell/base/output.h"

namespace mirvo {
namespace {

// Tracks which game a token belongs to, and the points of that game's result.
// Shared by counting and reading.
class GameTracker {
 public:
  /// Handles a tag. True when it starts a new game.
  bool TakeTag(const PgnScanner& scanner) {
    const bool newGame = hasMoves;
    if (!inTags) points[white] = points[black] = 0;
    inTags = true;
    hasMoves = false;
    if (scanner.TagHasResult()) {
      points[white] = scanner.WhitePoints();
      points[black] = scanner.BlackPoints();
    }
    return newGame;
  }

  /// Handles a word and returns the text of the move in it, or an empty text.
  std::string_view TakeWord(const PgnScanner& scanner) {
    inTags = false;
    const char* word = MoveInWord(scanner.Word());
    if (word == nullptr) return {};
    // A "$" begins an annotation number that was written without a blank.
    const std::string_view move = MoveTextOf({word, std::strcspn(word, "$")});
    if (!move.empty()) hasMoves = true;
    return move;
  }

  std::int32_t Points(int side) const { return points[side]; }
  bool HasMoves() const { return hasMoves; }

 private:
  std::int32_t points[nSides] = {0, 0};
  bool inTags = true;
  bool hasMoves = false;
};

// Plays the words of one game after another.
struct GamePlayer {
  Board board;
  GameRecord game;

  void Begin() {
    BeginFromStart(board);
    game.plyCount = 0;
  }

  void Append(std::string_view text, const GameTracker& tracker) {
    Move move = noMove;
    const Move matched = MatchSan(board, std::string(text).c_str(), move);
    if (matched != noMove) {
      MakeMove(board, matched);
      move = matched;
    }
    if (game.plyCount >= gamePlyCapacity) return;
    game.moves[game.plyCount] = move;
    game.weights[game.plyCount] = tracker.Points(board.sideToMove ^ 1);
    ++game.plyCount;
  }
};

File OpenGames(const char* path) {
  File file = OpenFile(path, "r");
  if (file == nullptr) Output(output, "Problem reading opening file!!\n");
  return file;
}

// Whether the candidate agrees with the stated origin file. A pawn's text begins
// with its origin file, so "e4" is no capture from another file.
bool ComesFromStatedFile(Move candidate, Move partial, const char* text) {
  const int from = FileOf(FromSquare(candidate));
  if ((partial & sanFileMark) != 0 && from != FileOf(FromSquare(partial))) return false;
  const bool namesFile = IsFileLetter(text[0]);
  if (MovingKind(candidate) == pawn && namesFile && (IsCapture(candidate) || text[1] == 'x')) {
    return from == text[0] - 'a';
  }
  return true;
}

}  // namespace

Move MatchSan(Board& board, const char* text, Move& partial) {
  partial = SanToPartialMove(text, board.sideToMove);
  BBMoveGenerator2 generator(board, board.sideToMove);
  generator.GenerateAll();
  for (std::int32_t i = 0; i < generator.count; ++i) {
    const Move move = generator.moves[i];
    if (ToSquare(move) == ToSquare(partial) && MovingKind(move) == MovingKind(partial) &&
        ComesFromStatedFile(move, partial, text)) {
      return move;
    }
  }
  return noMove;
}

bool ReadPgnGames(const char* path, int plyLimit, GameReceiver receive, void* context,
                  std::int32_t& gameCount) {
  gameCount = 0;
  const File file = OpenGames(path);
  if (file == nullptr) return false;
  PgnScanner scanner(file.get());
  GameTracker tracker;
  static GamePlayer player;
  player.Begin();
  PgnToken token = scanner.Next();
  for (; token != PgnToken::end; token = scanner.Next()) {
    if (token == PgnToken::word) {
      const std::string_view move = tracker.TakeWord(scanner);
      if (!move.empty() && player.game.plyCount < plyLimit) player.Append(move, tracker);
    } else if (tracker.TakeTag(scanner)) {
      ++gameCount;
      receive(context, player.game);
      player.Begin();
    }
  }
  if (tracker.HasMoves()) {
    ++gameCount;
    receive(context, player.game);
  }
  return true;
}

bool CountPgnGames(const char* path, std::int32_t& gameCount) {
  gameCount = 0;
  const File file = OpenGames(path);
  if (file == nullptr) return false;
  PgnScanner scanner(file.get());
  GameTracker tracker;
  for (PgnToken token = scanner.Next(); token != PgnToken::end; token = scanner.Next()) {
    if (token == PgnToken::word) {
      tracker.TakeWord(scanner);
    } else if (tracker.TakeTag(scanner)) {
      ++gameCount;
    }
  }
  if (tracker.HasMoves()) ++gameCount;
  return true;
}

}  // namespace mirvo
