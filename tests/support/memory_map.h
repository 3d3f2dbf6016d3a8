// What Linux says of this process's memory.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

namespace mirvo::test {

/// Whether the system knows large pages that a program can ask for.
inline bool KnowsLargePages() { return access("/sys/kernel/mm/transparent_hugepage", F_OK) == 0; }

/// Whether large pages were asked for where `address` lies.
inline bool AsksForLargePages(const void* address) {
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream map("/proc/self/smaps");
  std::string line;
  bool within = false;
  while (std::getline(map, line)) {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    char dash = 0;
    std::istringstream range(line);
    if (range >> std::hex >> begin >> dash >> end && dash == '-') {
      within = begin <= wanted && wanted < end;
    }
    if (!within || line.rfind("VmFlags:", 0) != 0) continue;
    std::istringstream flags(line);
    for (std::string flag; flags >> flag;) {
      if (flag == "hg") return true;
    }
    return false;
  }
  return false;
}

}  // namespace mirvo::test
