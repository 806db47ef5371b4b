#include "platform/virtual/faults.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>
#include <mutex>
#include <vector>

#include "platform/clock.h"
#include "platform/posix/last_error.h"
#include "platform/virtual/fault_points.h"
#include "platform/virtual/serial_peer.h"

namespace tw {
namespace {

static_assert(static_cast<int>(FaultPoint::allocate) + 1 == kFaultPoints);

struct PlacedFault {
  Fault fault;
  uint64_t seen = 0;  // calls that matched
};

struct LineFaults {
  uint64_t delivered = 0;
  uint64_t silentAt = UINT64_MAX;
  uint64_t hungUpAt = UINT64_MAX;
  bool singly = false;
  bool blocked = false;
};

struct Table {
  std::mutex mutex;
  std::vector<PlacedFault> faults;
  std::map<std::wstring, LineFaults, std::less<>> lines;
  uint64_t diskSpace = UINT64_MAX;
  // Looked at without the mutex, so that a long run without faults pays nothing.
  std::atomic<bool> anyFault = false;
  std::atomic<bool> anyLine = false;
  std::atomic<bool> diskLimited = false;
  std::atomic<uint64_t> calls[kFaultPoints] = {};
};

Table& Shared() {
  static Table* const table = new Table;
  return *table;
}

[[nodiscard]] bool Hits(PlacedFault& placed, FaultPoint point, std::wstring_view subject) {
  const Fault& fault = placed.fault;
  if (fault.point != point) return false;
  if (!fault.subject.empty() && subject.find(fault.subject) == std::wstring_view::npos) return false;
  const uint64_t call = ++placed.seen;
  return call >= fault.call && call - fault.call < fault.repeat;
}

[[nodiscard]] uint64_t After(uint64_t delivered, uint64_t bytes) {
  return bytes > UINT64_MAX - delivered ? UINT64_MAX : delivered + bytes;
}

template <typename Change>
void ChangeLine(const wchar_t* name, const Change& change) {
  {
    Table& table = Shared();
    const std::lock_guard held(table.mutex);
    change(table.lines[name]);
    table.anyLine = true;
  }
  WakeSerialLine(name);
}

}  // namespace

void InjectFault(const Fault& fault) {
  Table& table = Shared();
  const std::lock_guard held(table.mutex);
  table.faults.push_back({fault});
  table.anyFault = true;
}

bool FaultAt(FaultPoint point, std::wstring_view subject, uint32_t* taken) {
  Table& table = Shared();
  table.calls[static_cast<int>(point)].fetch_add(1, std::memory_order_relaxed);
  if (!table.anyFault) return false;
  uint32_t held_ms = 0;
  {
    const std::lock_guard held(table.mutex);
    const Fault* hit = nullptr;
    for (PlacedFault& placed : table.faults) {
      if (Hits(placed, point, subject)) hit = &placed.fault;
    }
    if (hit == nullptr) return false;
    held_ms = hit->held_ms;
    if (taken != nullptr) *taken = hit->taken;
    SetSystemError(hit->code);
  }
  if (held_ms == 0) return true;
  SleepMilliseconds(held_ms);
  return false;
}

uint64_t CallCount(FaultPoint point) {
  return Shared().calls[static_cast<int>(point)];
}

void LimitDiskSpace(uint64_t bytes) {
  Table& table = Shared();
  const std::lock_guard held(table.mutex);
  table.diskSpace = bytes;
  table.diskLimited = true;
}

uint32_t TakeDiskSpace(uint32_t size) {
  Table& table = Shared();
  if (!table.diskLimited) return size;
  const std::lock_guard held(table.mutex);
  const uint64_t taken = std::min<uint64_t>(size, table.diskSpace);
  table.diskSpace -= taken;
  return static_cast<uint32_t>(taken);
}

uint64_t DiskSpaceLeft() {
  Table& table = Shared();
  const std::lock_guard held(table.mutex);
  return table.diskSpace;
}

void SilenceLine(const wchar_t* name, uint64_t afterBytes) {
  ChangeLine(name, [&](LineFaults& line) { line.silentAt = After(line.delivered, afterBytes); });
}

void HangUpLine(const wchar_t* name, uint64_t afterBytes) {
  ChangeLine(name, [&](LineFaults& line) { line.hungUpAt = After(line.delivered, afterBytes); });
}

void DeliverSingly(const wchar_t* name) {
  ChangeLine(name, [](LineFaults& line) { line.singly = true; });
}

void BlockLine(const wchar_t* name) {
  ChangeLine(name, [](LineFaults& line) { line.blocked = true; });
}

void RestoreLine(const wchar_t* name) {
  ChangeLine(name, [](LineFaults& line) { line = LineFaults{}; });
}

LineAllowance AllowedOnLine(std::wstring_view name, uint32_t wanted) {
  LineAllowance allowed{wanted, false, false, false};
  Table& table = Shared();
  if (!table.anyLine) return allowed;
  const std::lock_guard held(table.mutex);
  const auto found = table.lines.find(name);
  if (found == table.lines.end()) return allowed;
  const LineFaults& line = found->second;
  allowed.hungUp = line.delivered >= line.hungUpAt;
  allowed.silent = line.delivered >= line.silentAt;
  allowed.blocked = line.blocked;
  uint64_t bytes = std::min(line.hungUpAt, line.silentAt);
  bytes = bytes > line.delivered ? bytes - line.delivered : 0;
  if (line.singly) bytes = std::min<uint64_t>(bytes, 1);
  allowed.bytes = static_cast<uint32_t>(std::min<uint64_t>(bytes, wanted));
  return allowed;
}

void CountDelivered(std::wstring_view name, uint32_t bytes) {
  Table& table = Shared();
  if (!table.anyLine) return;
  const std::lock_guard held(table.mutex);
  const auto found = table.lines.find(name);
  if (found != table.lines.end()) found->second.delivered += bytes;
}

void ClearFaults() {
  Table& table = Shared();
  const std::lock_guard held(table.mutex);
  table.faults.clear();
  table.lines.clear();
  table.diskSpace = UINT64_MAX;
  table.anyFault = false;
  table.anyLine = false;
  table.diskLimited = false;
  for (auto& count : table.calls) count = 0;
}

}  // namespace tw
