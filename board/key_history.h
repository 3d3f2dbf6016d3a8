// The keys of the positions of a game and its search, for the repetition test, and
// making room for a search.
#pragma once

#include <cstdint>

#include "board/board.h"

namespace mirvo {

inline constexpr int keyHistoryCapacity = 2048;

/// Keys of the positions after every move that took nothing and moved no
/// pawn; entry 0 is the position set up. One list shared by all boards, each
/// with its own historyIndex, so only one board at a time may be played on.
/// Owner: key_history.cpp. Writers: StartKeyHistory, MakeMove, TrimGameHistory.
/// Readers: IsRepetition.
extern std::uint64_t KeyHistory[keyHistoryCapacity];

/// Computes the key and makes it entry 0 of KeyHistory: a game that starts
/// from a set-up position begins its history there.
void StartKeyHistory(Board& board);

/// Whether the current key occurs exactly twice in KeyHistory up to historyIndex. With
/// three or more occurrences the answer is no: the engine treats only the first
/// return to a position as a repetition.
bool IsRepetition(const Board& board);

/// Drops the oldest undo records and history keys so that at least
/// searchPlyRoom more moves fit. Call only between searches.
void TrimGameHistory(Board& board);

}  // namespace mirvo
