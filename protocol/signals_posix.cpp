#include <signal.h>
#include <unistd.h>

#include "protocol/signals.h"

namespace mirvo {
namespace {

/// Time for handling the lines that are already waiting.
constexpr unsigned graceSeconds = 1;

volatile sig_atomic_t terminationRequested = 0;

void EndProcess(int) { _exit(0); }

void NoteTermination(int) {
  if (terminationRequested == 0) {
    terminationRequested = 1;
    alarm(graceSeconds);
  }
}

/// Without SA_RESTART, so that a blocking read returns and its caller can check.
void Install(int signalNumber, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signalNumber, &action, nullptr);
}

}  // namespace

void FollowSignals(bool xboard) {
  Install(SIGINT, xboard ? SIG_IGN : SIG_DFL);
  if (xboard) {
    Install(SIGALRM, EndProcess);
    Install(SIGTERM, NoteTermination);
  } else {
    Install(SIGTERM, SIG_DFL);
  }
}

bool TerminationRequested() { return terminationRequested != 0; }

}  // namespace mirvo
