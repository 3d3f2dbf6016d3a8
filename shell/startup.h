// The start-up sequence: everything between the entry point and the run mode.
#pragma once

#include <cstdint>

namespace mirvo {

/// Set by start-up and read by nothing; the book's generator has its own state.
/// Kept for debuggers. Owner and writer: startup.cpp.
extern std::uint64_t RandomSeed;

/// Runs the whole sequence once: banner, tables, settings, hash tables, random
/// numbers, settings report. Installs the search hook.
void StartUp(int argc, const char* const* argv);

}  // namespace mirvo
