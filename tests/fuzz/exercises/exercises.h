// What the fuzzers do with an input: one function for each reader of outside
// text. The fuzzers run them on invented inputs, the tests on stored ones.
#pragma once

#include <string_view>

namespace mirvo {

/// Null when every promise of the engine was kept, otherwise a short text that
/// names the broken one.
using BrokenPromise = const char*;

using ExerciseFunction = BrokenPromise (*)(std::string_view input);

/// Whether every input gets every check. The fuzzers, to whom a great number of
/// inputs says more, have the slowest ones done in part or for a part of them.
extern bool thorough;

/// One line with the fields of a FEN record, through "position fen",
/// "setboard" and the command line.
BrokenPromise ExerciseFen(std::string_view input);

/// A byte that chooses a position, then the tokens of a move list.
BrokenPromise ExerciseCoordinateMoves(std::string_view input);

/// A byte that chooses a position, then words of algebraic text.
BrokenPromise ExerciseAlgebraicMoves(std::string_view input);

/// The contents of config.txt.
BrokenPromise ExerciseConfigFile(std::string_view input);

/// The words of a command line, one a line. Files that they name are replaced
/// by ones of a scratch folder.
BrokenPromise ExerciseCommandLine(std::string_view input);

/// The contents of an EPD suite.
BrokenPromise ExerciseSuite(std::string_view input);

/// Lines that a UCI interface sends: one at each look of a search at its
/// input, and whenever nothing runs.
BrokenPromise ExerciseUciLines(std::string_view input);

/// The same of an XBoard interface.
BrokenPromise ExerciseXBoardLines(std::string_view input);

/// Bytes that are decoded into the acts of an interface: which protocol it
/// speaks, what it says, and at which poll.
BrokenPromise ExerciseProcess(std::string_view input);

struct NamedExercise {
  const char* name;  // of the fuzzer, without "fuzz_", and of the corpus folder
  ExerciseFunction run;
};

inline constexpr NamedExercise exercises[] = {
    {"fen", ExerciseFen},
    {"coordinates", ExerciseCoordinateMoves},
    {"algebraic", ExerciseAlgebraicMoves},
    {"config", ExerciseConfigFile},
    {"command_line", ExerciseCommandLine},
    {"suite", ExerciseSuite},
    {"uci", ExerciseUciLines},
    {"xboard", ExerciseXBoardLines},
    {"process", ExerciseProcess},
};

}  // namespace mirvo
