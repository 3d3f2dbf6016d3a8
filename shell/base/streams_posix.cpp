#include <fcntl.h>
#include <unistd.h>

#include "shell/base/streams.h"

namespace mirvo {

void OccupyStandardStreams() {
  // The system uses the lowest free descriptor, so the first one above the
  // standard streams shows that all three are taken.
  int descriptor = open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
  if (descriptor >= 0) close(descriptor);
}

}  // namespace mirvo
