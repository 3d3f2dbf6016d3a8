// What the fuzzers do with an input: one function for each reader of text from
// outside. The fuzzers run them on generated inputs, the tests on stored ones.
#pragma once

#include <string_view>

namespace mirvo {

/// Null when every property holds, otherwise a short text that names the one that
/// does not.
using BrokenPromise = const char*;

using ExerciseFunction = BrokenPromise (*)(std::string_view input);

/// Whether every input gets every check. The fuzzers do the slowest checks only in
/// part or for some inputs, because more inputs find more.
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

/// The words of a command line, one per line. Files that they name are replaced by
/// ones in a scratch folder.
BrokenPromise ExerciseCommandLine(std::string_view input);

/// The contents of an EPD suite.
BrokenPromise ExerciseSuite(std::string_view input);

/// Lines that a UCI interface sends: one at each poll of a search, and whenever the
/// engine is idle.
BrokenPromise ExerciseUciLines(std::string_view input);

/// The same from an XBoard interface.
BrokenPromise ExerciseXBoardLines(std::string_view input);

/// Bytes that are decoded into the actions of an interface: which protocol it
/// speaks, what it sends, and at which poll.
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
