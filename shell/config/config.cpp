#include "shell/config/config.h"

namespace mirvo {

EngineConfig engineConfig;

constinit char bookFileOptionText[bookNameCapacity] = "unique2.bin";

}  // namespace mirvo
