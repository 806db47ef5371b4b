#include "tests/app/run/refused_memory.h"

#include <new>

namespace tw::test {

std::atomic<int> largeBlocks = -1;
std::atomic<int> refusedAllocation = 0;
std::atomic<size_t> refusedSize = 0;

namespace {

bool IsRefused(size_t size) {
  if (refusedSize != 0 && size == refusedSize) return true;
  constexpr size_t kLarge = 200'000;
  if (size > kLarge && largeBlocks >= 0 && largeBlocks-- == 0) return true;
  return refusedAllocation > 0 && --refusedAllocation == 0;
}

}  // namespace
}  // namespace tw::test

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return tw::test::IsRefused(size) ? nullptr : ::operator new(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return tw::test::IsRefused(size) ? nullptr : ::operator new[](size);
}
