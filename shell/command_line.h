// The command-line options.
#pragma once

#include "shell/config/config.h"

namespace mirvo {

/// Reads the arguments in order and writes the settings; book tools run at once.
/// Skips unknown words and reads missing option arguments as empty.
void ParseCommandLine(EngineConfig& config, int argc, const char* const* argv);

}  // namespace mirvo
