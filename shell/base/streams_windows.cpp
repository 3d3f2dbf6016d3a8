#include "shell/base/streams.h"

namespace mirvo {

// On Windows the C library never gives a file the descriptor of a standard stream.
void OccupyStandardStreams() {}

}  // namespace mirvo
