// This process's memory as Linux reports it.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace mirvo::test {

/// Bytes of the system's small pages: 4096 on x86-64, up to 65536 on ARM.
inline std::size_t SmallPageSize() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

/// Whether the system supports large pages on request.
inline bool KnowsLargePages() { return access("/sys/kernel/mm/transparent_hugepage", F_OK) == 0; }

/// Whether large pages were requested for the memory at `address`.
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

/// How many small pages that lie wholly within the bytes the system has not
/// provided yet.
inline std::size_t MissingPages(const void* start, std::size_t bytes) {
  const std::uintptr_t page = SmallPageSize();
  const auto address = reinterpret_cast<std::uintptr_t>(start);
  const std::uintptr_t first = (address + page - 1) / page * page;
  const std::uintptr_t last = (address + bytes) / page * page;
  std::vector<unsigned char> present((last - first) / page);
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  if (mincore(reinterpret_cast<void*>(first), last - first, present.data()) != 0) return SIZE_MAX;
  std::size_t nMissing = 0;
  for (const unsigned char flags : present) nMissing += (flags & 1) == 0 ? 1 : 0;
  return nMissing;
}

}  // namespace mirvo::test
