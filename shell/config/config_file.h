// Reading config.txt and printing the settings.
#pragma once

#include "shell/config/config.h"

namespace mirvo {

inline constexpr char configFileName[] = "config.txt";

/// Reads whitespace-separated key=value tokens into `config`. A missing file
/// is reported on the console and leaves the defaults.
void ReadConfigFile(EngineConfig& config, const char* path);

/// Applies one key=value token; unknown keys and tokens without "=" change
/// nothing.
void ApplyConfigToken(EngineConfig& config, const char* token);

/// Prints the "Config:" report.
void PrintConfig(const EngineConfig& config);

}  // namespace mirvo
