// The start-up sequence.
#pragma once

namespace mirvo {

/// Runs the whole sequence once: banner, tables, settings, hash tables, random
/// generator, settings report. Installs the search hooks.
void StartUp(int argc, const char* const* argv);

}  // namespace mirvo
