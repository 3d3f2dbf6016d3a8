// The XBoard front end: one line in, replies out.
#pragma once

#include <cstdint>

namespace mirvo {

/// Handles one line (line end allowed); ignores unknown ones.
void HandleXBoardLine(std::uint8_t& state, const char* line);

}  // namespace mirvo
