// Memory of big tables, in large pages where the system has them; one file of
// code for each system. Large pages matter because nearly every access to such a
// table goes to another place, and a processor remembers the addresses of far
// fewer small pages than a table has.
#pragma once

#include <cstddef>

namespace mirvo {

/// Size of a large page, and the unit in which memory is asked for.
inline constexpr std::size_t largePageSize = std::size_t{2} << 20;

/// Reserves zeroed memory, a multiple of largePageSize, that begins at such a
/// multiple where the system has large pages. It costs nothing until it is
/// touched and comes in small pages then. Null when it is refused.
void* ReserveMemory(std::size_t bytes);

/// Gives reserved memory back.
void ReleaseMemory(void* start, std::size_t bytes);

/// Gives back the last `most` bytes of reserved memory, or all of it where the
/// system takes whole blocks only. Returns how many bytes remain.
std::size_t ReleaseMemoryEnd(void* start, std::size_t bytes, std::size_t most);

/// Has the system provide the large page that begins at `start` now, in one piece
/// where that can be had, also what is in use of it already. Contents stay.
void PrefaultLargePage(void* start);

/// Has the system provide memory page by page. Contents stay.
void TouchMemory(void* start, std::size_t bytes);

}  // namespace mirvo
