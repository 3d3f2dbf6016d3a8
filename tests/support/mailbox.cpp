#include "tests/support/mailbox.h"

#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <sstream>
#include <utility>
#include <vector>

namespace mirvo::test {
namespace {

using Steps = std::vector<std::pair<int, int>>;

const Steps rookSteps = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
const Steps bishopSteps = {{1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
const Steps royalSteps = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
const Steps knightSteps = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};

bool OnBoard(int file, int rank) { return file >= 0 && file < 8 && rank >= 0 && rank < 8; }

std::size_t IndexOf(int file, int rank) {
  return static_cast<std::size_t>(rank) * 8 + static_cast<std::size_t>(file);
}

char Lower(char c) { return static_cast<char>(std::tolower(c)); }
char Upper(char c) { return static_cast<char>(std::toupper(c)); }

const Steps& StepsOf(char kind) {
  switch (kind) {
    case 'n':
      return knightSteps;
    case 'b':
      return bishopSteps;
    case 'r':
      return rookSteps;
    default:
      return royalSteps;
  }
}

bool Slides(char kind) { return kind == 'b' || kind == 'r' || kind == 'q'; }

std::string TextOf(int file, int rank, int toFile, int toRank) {
  return {static_cast<char>('a' + file), static_cast<char>('1' + rank),
          static_cast<char>('a' + toFile), static_cast<char>('1' + toRank)};
}

char Other(char side) { return side == 'w' ? 'b' : 'w'; }

bool BelongsTo(char piece, char side) {
  return piece != '.' && (std::isupper(piece) != 0) == (side == 'w');
}

}  // namespace

Mailbox::Mailbox(const std::string& fen) : squares(64, '.'), side('w'), epFile(-1), epRank(-1) {
  std::istringstream fields(fen);
  std::string placement;
  std::string sideWord = "w";
  std::string enPassant = "-";
  fields >> placement >> sideWord >> rights >> enPassant;
  side = sideWord[0];
  int file = 0;
  int rank = 7;
  for (const char c : placement) {
    if (c == '/') {
      file = 0;
      --rank;
    } else if (std::isdigit(c) != 0) {
      file += c - '0';
    } else {
      At(file++, rank) = c;
    }
  }
  if (enPassant.size() == 2) {
    epFile = enPassant[0] - 'a';
    epRank = enPassant[1] - '1';
  }
}

char Mailbox::At(int file, int rank) const { return squares[IndexOf(file, rank)]; }
char& Mailbox::At(int file, int rank) { return squares[IndexOf(file, rank)]; }

bool Mailbox::Own(char piece) const { return BelongsTo(piece, side); }
bool Mailbox::Enemy(char piece) const { return BelongsTo(piece, Other(side)); }

bool Mailbox::Attacks(char attacker, int file, int rank) const {
  for (int fromRank = 0; fromRank < 8; ++fromRank) {
    for (int fromFile = 0; fromFile < 8; ++fromFile) {
      const char piece = At(fromFile, fromRank);
      if (!BelongsTo(piece, attacker)) continue;
      const char kind = Lower(piece);
      if (kind == 'p') {
        const int forward = attacker == 'w' ? 1 : -1;
        if (rank == fromRank + forward && std::abs(file - fromFile) == 1) return true;
        continue;
      }
      for (const auto& [df, dr] : StepsOf(kind)) {
        int f = fromFile + df;
        int r = fromRank + dr;
        while (OnBoard(f, r)) {
          if (f == file && r == rank) return true;
          if (!Slides(kind) || At(f, r) != '.') break;
          f += df;
          r += dr;
        }
      }
    }
  }
  return false;
}

bool Mailbox::KingAttacked(char owner) const {
  const char king = owner == 'w' ? 'K' : 'k';
  for (int rank = 0; rank < 8; ++rank) {
    for (int file = 0; file < 8; ++file) {
      if (At(file, rank) == king && Attacks(Other(owner), file, rank)) return true;
    }
  }
  return false;
}

bool Mailbox::InCheck() const { return KingAttacked(side); }

void Mailbox::AddIfLegal(std::set<std::string>& moves, const std::string& text) const {
  Mailbox after = *this;
  after.Play(text);
  if (!after.KingAttacked(side)) moves.insert(text);
}

void Mailbox::AddPawnMoves(std::set<std::string>& moves, int file, int rank) const {
  const int forward = side == 'w' ? 1 : -1;
  const int home = side == 'w' ? 1 : 6;
  const int to = rank + forward;
  if (to < 0 || to > 7) return;
  std::vector<std::pair<int, int>> targets;
  if (At(file, to) == '.') {
    targets.emplace_back(file, to);
    if (rank == home && At(file, to + forward) == '.') targets.emplace_back(file, to + forward);
  }
  for (const int toFile : {file - 1, file + 1}) {
    if (toFile < 0 || toFile > 7) continue;
    const char victim = At(toFile, to);
    const bool enPassant = toFile == epFile && to == epRank && victim == '.' &&
                           Lower(At(toFile, rank)) == 'p' && Enemy(At(toFile, rank));
    if (enPassant || (Enemy(victim) && Lower(victim) != 'k')) targets.emplace_back(toFile, to);
  }
  for (const auto& [toFile, toRank] : targets) {
    const std::string text = TextOf(file, rank, toFile, toRank);
    if (toRank == 0 || toRank == 7) {
      for (const char promotion : {'q', 'r', 'b', 'n'}) AddIfLegal(moves, text + promotion);
    } else {
      AddIfLegal(moves, text);
    }
  }
}

void Mailbox::AddPieceMoves(std::set<std::string>& moves, int file, int rank) const {
  const char kind = Lower(At(file, rank));
  for (const auto& [df, dr] : StepsOf(kind)) {
    int f = file + df;
    int r = rank + dr;
    while (OnBoard(f, r) && !Own(At(f, r))) {
      if (Lower(At(f, r)) != 'k') AddIfLegal(moves, TextOf(file, rank, f, r));
      if (!Slides(kind) || At(f, r) != '.') break;
      f += df;
      r += dr;
    }
  }
}

void Mailbox::AddCastling(std::set<std::string>& moves) const {
  const int rank = side == 'w' ? 0 : 7;
  const char own = side;
  const auto piece = [own](char kind) { return own == 'w' ? Upper(kind) : kind; };
  if (At(4, rank) != piece('k') || Attacks(Other(side), 4, rank)) return;
  const bool mayShort = rights.find(piece('k')) != std::string::npos && At(7, rank) == piece('r') &&
                        At(5, rank) == '.' && At(6, rank) == '.';
  const bool mayLong = rights.find(piece('q')) != std::string::npos && At(0, rank) == piece('r') &&
                       At(1, rank) == '.' && At(2, rank) == '.' && At(3, rank) == '.';
  if (mayShort && !Attacks(Other(side), 5, rank)) AddIfLegal(moves, TextOf(4, rank, 6, rank));
  if (mayLong && !Attacks(Other(side), 3, rank)) AddIfLegal(moves, TextOf(4, rank, 2, rank));
}

std::set<std::string> Mailbox::LegalMoves() const {
  std::set<std::string> moves;
  for (int rank = 0; rank < 8; ++rank) {
    for (int file = 0; file < 8; ++file) {
      if (!Own(At(file, rank))) continue;
      if (Lower(At(file, rank)) == 'p') {
        AddPawnMoves(moves, file, rank);
      } else {
        AddPieceMoves(moves, file, rank);
      }
    }
  }
  AddCastling(moves);
  return moves;
}

void Mailbox::Play(const std::string& text) {
  const int file = text[0] - 'a';
  const int rank = text[1] - '1';
  const int toFile = text[2] - 'a';
  const int toRank = text[3] - '1';
  const char piece = At(file, rank);
  const char kind = Lower(piece);
  const auto dropRight = [this](char right) {
    const std::size_t at = rights.find(right);
    if (at != std::string::npos) rights.erase(at, 1);
  };
  if (kind == 'p' && file != toFile && At(toFile, toRank) == '.') At(toFile, rank) = '.';
  if (kind == 'k') {
    dropRight(side == 'w' ? 'K' : 'k');
    dropRight(side == 'w' ? 'Q' : 'q');
    if (std::abs(toFile - file) == 2) {
      const int rookFile = toFile > file ? 7 : 0;
      At(toFile > file ? 5 : 3, rank) = At(rookFile, rank);
      At(rookFile, rank) = '.';
    }
  }
  if (kind == 'r' && rank == (side == 'w' ? 0 : 7)) {
    if (file == 0) dropRight(side == 'w' ? 'Q' : 'q');
    if (file == 7) dropRight(side == 'w' ? 'K' : 'k');
  }
  At(file, rank) = '.';
  At(toFile, toRank) = piece;
  if (text.size() > 4) At(toFile, toRank) = side == 'w' ? Upper(text[4]) : text[4];
  const bool doubleStep = kind == 'p' && std::abs(toRank - rank) == 2;
  epFile = doubleStep ? file : -1;
  epRank = doubleStep ? (rank + toRank) / 2 : -1;
  side = Other(side);
}

std::string Mailbox::Placement() const {
  std::string text;
  for (int rank = 7; rank >= 0; --rank) {
    int nEmpty = 0;
    for (int file = 0; file < 8; ++file) {
      if (At(file, rank) == '.') {
        ++nEmpty;
        continue;
      }
      if (nEmpty > 0) text += static_cast<char>('0' + nEmpty);
      nEmpty = 0;
      text += At(file, rank);
    }
    if (nEmpty > 0) text += static_cast<char>('0' + nEmpty);
    if (rank > 0) text += '/';
  }
  return text;
}

}  // namespace mirvo::test
