#include "platform/virtual/disk_calls.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "platform/virtual/virtual_clock.h"

namespace tw {
namespace {

struct Heard {
  std::atomic<bool> listening = false;
  std::mutex mutex;
  std::vector<DiskCall> calls;
};

Heard& Shared() {
  static Heard* const heard = new Heard;
  return *heard;
}

}  // namespace

void StartDiskCalls() {
  Shared().listening = true;
}

std::vector<DiskCall> TakeDiskCalls() {
  Shared().listening = false;
  const std::lock_guard held(Shared().mutex);
  return std::exchange(Shared().calls, {});
}

bool AreDiskCallsHeard() {
  return Shared().listening;
}

void NoteDiskCall(DiskStep step, std::wstring_view path, uint64_t place, std::span<const char> bytes) {
  if (!AreDiskCallsHeard()) return;
  const std::lock_guard held(Shared().mutex);
  Shared().calls.push_back({step, std::wstring(path), VirtualNow_us(), place, {bytes.begin(), bytes.end()}});
}

}  // namespace tw
