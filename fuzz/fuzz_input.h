// Helpers for the fuzzers: an input as a file, and no output on the console.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace mirvo {

/// Builds the tables and silences the engine's output, once.
void PrepareFuzzing();

/// Writes the input to this process's scratch file and returns its path.
const std::string& InputFile(const std::uint8_t* data, std::size_t size);

/// A second scratch file, for what the engine writes.
const std::string& OutputFile();

}  // namespace mirvo
