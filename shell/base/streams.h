// The three standard streams at start-up. Used once, before the first file is
// opened.
#pragma once

namespace mirvo {

/// Opens the null device for every standard stream that the process was started
/// without. Otherwise the first file that is opened, the log, would become
/// standard input or output.
void OccupyStandardStreams();

}  // namespace mirvo
