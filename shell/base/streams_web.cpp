#include "shell/base/streams.h"

namespace mirvo {

// The host never gives a file the number of a standard stream.
void OccupyStandardStreams() {}

}  // namespace mirvo
