// Runs the search over the positions of an EPD test suite and scores it.
#pragma once

#include <cstdint>

#include "epd/epd_reader.h"

namespace mirvo {

/// Analyses `count` positions of `file` from index `first` on and prints the
/// results. Reports a missing file and returns.
void RunSuite(const char* file, std::int32_t first, std::int32_t count);

/// The same with positions already read; `name` is only printed.
void RunSuite(const Suite& suite, const char* name, std::int32_t first, std::int32_t count);

}  // namespace mirvo
