// The run-mode switch after start-up.
#pragma once

#include "shell/config.h"

namespace mirvo {

/// Runs the mode that the settings choose. Returns the exit status; the engine
/// mode never returns.
int Run(EngineConfig& config);

}  // namespace mirvo
