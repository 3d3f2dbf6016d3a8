// The run-mode switch after start-up.
#pragma once

#include "shell/config/config.h"

namespace mirvo {

/// Loads the engine's book when the settings want one. A missing file switches
/// the book off for good, in the settings too, so that the first move takes no
/// more than its time.
void LoadEngineBook(EngineConfig& config);

/// Runs the mode that the settings choose. Returns the exit status; the engine
/// mode never returns.
int Run(EngineConfig& config);

}  // namespace mirvo
