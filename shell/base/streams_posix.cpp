#include <fcntl.h>
#include <unistd.h>

#include "shell/base/streams.h"

namespace mirvo {

void OccupyStandardStreams() {
  // The system gives out the lowest free number, so the first one behind the
  // standard streams says that they are all taken.
  int descriptor = open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
  if (descriptor >= 0) close(descriptor);
}

}  // namespace mirvo
