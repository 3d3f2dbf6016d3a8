// The way back into an engine that its host left at a read (host_web.h). Nothing
// of the program is lost then: between two lines the idle loop keeps its state
// in global records, and nothing on the stack owns anything.
#include "protocol/dispatcher.h"
#include "shell/base/protocol_mode.h"

extern "C" __attribute__((used, visibility("default"))) void ResumeEngine() {
  mirvo::RunIdleLoop(mirvo::protocolMode);
}
