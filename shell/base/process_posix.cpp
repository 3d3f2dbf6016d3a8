#include "shell/base/process.h"

#include <poll.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

namespace mirvo {
namespace {

/// Seconds between two checks whether anybody still reads the output.
constexpr time_t checkInterval = 1;

/// What EndWithClosedPipe replaced.
struct Alarm {
  bool replaced;
  struct sigaction action;
  itimerval interval;
};
Alarm before{};

/// Does what the next write would do: a long perft prints nothing for hours.
void EndIfUnread(int) {
  pollfd printed{STDOUT_FILENO, 0, 0};
  if (poll(&printed, 1, 0) > 0 && (printed.revents & POLLERR) != 0) raise(SIGPIPE);
}

}  // namespace

void PrepareProcess() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
}

void EndWithClosedPipe() {
  signal(SIGPIPE, SIG_DFL);
  struct sigaction action = {};
  action.sa_handler = EndIfUnread;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  const itimerval interval{{checkInterval, 0}, {checkInterval, 0}};
  Alarm replaced{};
  sigaction(SIGALRM, &action, &replaced.action);
  setitimer(ITIMER_REAL, &interval, &replaced.interval);
  if (!before.replaced) before = replaced;
  before.replaced = true;
}

void UndoEndWithClosedPipe() {
  if (!before.replaced) return;
  setitimer(ITIMER_REAL, &before.interval, nullptr);
  sigaction(SIGALRM, &before.action, nullptr);
  signal(SIGPIPE, SIG_IGN);
  before.replaced = false;
}

}  // namespace mirvo
