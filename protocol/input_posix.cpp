#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

#include "protocol/input.h"
#include "shell/base/clock.h"

namespace mirvo {
namespace {

/// A waiting read returns to its caller this often, so that a signal that arrived just
/// before the wait is noticed too.
constexpr int waitSlice = 250;  // ms

pid_t parentPid = 0;

/// Whether standard input can be read, or has ended, within `milliseconds`.
bool Readable(int milliseconds) {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, milliseconds) > 0;
}

std::uint32_t BytesWaiting() {
  if (!Readable(0)) return 0;
  int nBytes = 0;
  const bool known = ioctl(STDIN_FILENO, FIONREAD, &nBytes) == 0 && nBytes > 0;
  return known ? static_cast<std::uint32_t>(nBytes) : 1;
}

int ReadBytes(char* buffer, std::size_t size, bool wait) {
  if (!Readable(wait ? waitSlice : 0)) return nothingToRead;
  const ssize_t nBytes = read(STDIN_FILENO, buffer, size);
  if (nBytes >= 0) return static_cast<int>(nBytes);
  return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK ? nothingToRead : inputEnded;
}

/// When its parent has ended, a process gets another parent.
bool ParentExited() { return getppid() != parentPid; }

/// poll reports a closed pipe without a write.
bool OutputClosed() {
  pollfd printed{STDOUT_FILENO, 0, 0};
  return poll(&printed, 1, 0) > 0;
}

constexpr InputSource systemInput{BytesWaiting, ReadBytes, ParentExited, OutputClosed,
                                  SleepMilliseconds};

}  // namespace

const InputSource& SystemInput() {
  if (parentPid == 0) parentPid = getppid();
  return systemInput;
}

}  // namespace mirvo
