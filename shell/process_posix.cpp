#include <signal.h>

#include "shell/process.h"

namespace mirvo {

void PrepareProcess() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
}

}  // namespace mirvo
