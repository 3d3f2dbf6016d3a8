// Which protocol the interface speaks. Data only, so that any layer may read it.
#pragma once

#include <cstdint>

namespace mirvo {

enum ProtocolCode : std::uint32_t { noProtocol = 0, xboardProtocol = 1, uciProtocol = 2 };

struct ProtocolMode {
  std::uint32_t mode = noProtocol;
  std::uint8_t uciState = 0;
  std::uint8_t xboardState = 0;
  bool detected = false;  // a protocol word has been seen
};

/// Owner: protocol_mode.cpp. Writer: the dispatcher. Readers: the dispatcher, the
/// search reports.
extern ProtocolMode protocolMode;

}  // namespace mirvo
