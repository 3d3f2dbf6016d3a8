// The three standard streams as the process finds them. Used once, before the
// first file is opened.
#pragma once

namespace mirvo {

/// Puts a stream that takes and gives nothing in the place of every standard
/// stream that the process was started without. Otherwise the first file that
/// is opened would become standard output, or its own input.
void OccupyStandardStreams();

}  // namespace mirvo
