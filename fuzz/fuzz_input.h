// What the fuzzers share: an input as a file, and silence on standard output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace mirvo {

/// Prepares the tables and sends what the engine prints nowhere. Once.
void PrepareFuzzing();

/// Writes the input to this process's scratch file and returns its path.
const std::string& InputFile(const std::uint8_t* data, std::size_t size);

/// A second scratch file, for what the engine writes.
const std::string& OutputFile();

}  // namespace mirvo
