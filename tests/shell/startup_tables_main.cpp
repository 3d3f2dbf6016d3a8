// Prints the start-up tables of this build, one line each as in
// tests/data/startup_tables.txt:
//   mirvo_startup_tables > fresh.txt
#include <cstdio>

#include "tests/shell/startup_tables.h"

int main() {
  for (const auto& [name, folded] : mirvo::test::BuiltTables()) {
    std::printf("%s %s\n", name.c_str(), folded.c_str());
  }
  return 0;
}
