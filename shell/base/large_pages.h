// Memory for big tables, in large pages where the system has them. Large pages
// matter because nearly every access to such a table goes to another page, and
// the processor caches the addresses of far fewer small pages than a table has.
#pragma once

#include <cstddef>

namespace mirvo {

/// Size of a large page, and the unit in which memory is asked for.
inline constexpr std::size_t largePageSize = std::size_t{2} << 20;

/// Reserves zeroed memory. `bytes` is a multiple of largePageSize; where the
/// system has large pages the block is aligned to one. Memory comes in small
/// pages, each on its first use. Null when the system refuses.
void* ReserveMemory(std::size_t bytes);

/// Releases reserved memory.
void ReleaseMemory(void* start, std::size_t bytes);

/// Releases the last `most` bytes of reserved memory, or all of it where the
/// system can only release whole blocks. Returns how many bytes remain.
std::size_t ReleaseMemoryEnd(void* start, std::size_t bytes, std::size_t most);

/// Has the system provide the large page at `start` now, as one large page if
/// possible, small pages in use included. Keeps the contents.
void PrefaultLargePage(void* start);

/// Has the system provide memory page by page. Keeps the contents.
void TouchMemory(void* start, std::size_t bytes);

}  // namespace mirvo
