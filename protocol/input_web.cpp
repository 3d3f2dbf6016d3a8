#include "protocol/input.h"
#include "shell/base/host_web.h"

namespace mirvo {
namespace {

std::uint32_t BytesWaiting() { return HostInputWaiting(); }

int ReadBytes(char* buffer, std::size_t size, bool wait) {
  return HostReadInput(buffer, size, wait ? 1 : 0);
}

/// Asked only after the end of input: then nobody can reach the engine, and
/// there is no parent whose end would be noticed later.
bool ParentExited() { return true; }

bool OutputClosed() { return HostOutputClosed() != 0; }

void Pause(std::uint32_t milliseconds) { HostPauseInput(milliseconds); }

constexpr InputSource systemInput{BytesWaiting, ReadBytes, ParentExited, OutputClosed, Pause};

}  // namespace

const InputSource& SystemInput() { return systemInput; }

}  // namespace mirvo
