// The run-mode switch after start-up.
#pragma once

#include "shell/config/config.h"

namespace mirvo {

/// Loads the engine's book if the settings ask for one. Without the file the book
/// is switched off in the settings and not probed (until "ucinewgame"), so that the
/// first search does not get the double time of one that has just left the book.
void LoadEngineBook(EngineConfig& config);

/// Runs the mode chosen by the settings. Returns the exit status; the engine mode
/// never returns.
int Run(EngineConfig& config);

}  // namespace mirvo
