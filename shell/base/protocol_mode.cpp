#include "shell/base/protocol_mode.h"

namespace mirvo {

constinit ProtocolMode protocolMode;

}  // namespace mirvo
