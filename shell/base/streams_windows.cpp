#include "shell/base/streams.h"

namespace mirvo {

// The C library keeps the numbers of the standard streams free here.
void OccupyStandardStreams() {}

}  // namespace mirvo
