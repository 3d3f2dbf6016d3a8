// The entry point.
#include "shell/config/config.h"
#include "shell/run_modes.h"
#include "shell/startup.h"

int main(int argc, char** argv) {
  mirvo::StartUp(argc, argv);
  return mirvo::Run(mirvo::engineConfig);
}
