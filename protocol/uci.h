// The UCI front end: one line in, replies out.
#pragma once

#include <cstdint>

namespace mirvo {

/// Handles one line (line end allowed). Lines it does not know are ignored.
void HandleUciLine(std::uint8_t& state, const char* line);

}  // namespace mirvo
