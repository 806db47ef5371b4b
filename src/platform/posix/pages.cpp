#include "platform/posix/pages.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "base/text_scan.h"
#include "platform/memory.h"
#include "platform/posix/last_error.h"

namespace tw {

void* posix::AllocateZeroed(size_t size_bytes) {
  constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
  void* const block = mmap(nullptr, size_bytes, PROT_READ | PROT_WRITE, kFlags, -1, 0);
  if (block != MAP_FAILED) return block;
  FailWithErrno();
  return nullptr;
}

void FreeZeroed(void* block, size_t size_bytes) {
  if (block != nullptr) munmap(block, size_bytes);
}

size_t ResidentBytes() {
  const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  if (file < 0) return 0;
  char text[128];
  const ssize_t got = read(file, text, sizeof(text));
  close(file);
  if (got <= 0) return 0;
  // "total resident …", in pages; the total may exceed 32 bits.
  std::string_view rest(text, static_cast<size_t>(got));
  rest.remove_prefix(std::min(rest.find(' '), rest.size()));
  uint32_t residentPages = 0;
  if (!ScanUint(rest, residentPages)) return 0;
  return size_t{residentPages} * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace tw
