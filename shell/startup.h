// The start-up sequence: everything between the entry point and the run mode.
#pragma once

#include <cstdint>

namespace mirvo {

/// A word that start-up sets and nothing reads; the book's generator has a
/// state of its own. Owner and writer: startup.cpp.
extern std::uint64_t RandomSeed;

/// Runs the whole sequence once: banner, tables, settings, hash tables, random
/// generator, settings report. Installs the search hooks.
void StartUp(int argc, const char* const* argv);

}  // namespace mirvo
