// Memory that the system refuses to those who can do without: allocations that tell their failure.
#pragma once

#include <atomic>
#include <cstddef>

namespace tw::test {

// Blocks above 200,000 bytes that the system still gives; the one after them it refuses. Negative: none is.
extern std::atomic<int> largeBlocks;

// The how-manieth allocation of any size from now on is refused; 0: none.
extern std::atomic<int> refusedAllocation;

// Each allocation of this many bytes is refused; 0: none.
extern std::atomic<size_t> refusedSize;

}  // namespace tw::test
