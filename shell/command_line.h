// The command-line options.
#pragma once

#include "shell/config/config.h"

namespace mirvo {

/// Scans the arguments in order and writes the settings; book tools run at
/// once. Unknown words are skipped, missing option arguments read as empty.
void ParseCommandLine(EngineConfig& config, int argc, const char* const* argv);

}  // namespace mirvo
