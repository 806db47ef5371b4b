#include "acquisition/record_queue.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace tw {

static_assert(std::is_trivially_copyable_v<RecordEntry>);

bool RecordQueue::Put(RecordEntry entry, std::span<const char> ping) {
  const size_t bound = entry.step == RecordStep::ping ? kRecordQueueBound : kCapacity;
  const size_t needed = sizeof entry + ping.size();
  if (ping.size() > kMaxRecordSize || used_ > bound || needed > bound - used_) return false;
  if (used_ == 0) begin_ = 0;  // the same pages again
  entry.size_bytes = static_cast<uint32_t>(ping.size());
  CopyIn(&entry, sizeof entry);
  CopyIn(ping.data(), ping.size());
  return true;
}

bool RecordQueue::Take(RecordEntry& entry, std::span<char, kMaxRecordSize> ping) {
  if (used_ == 0) return false;
  CopyOut(&entry, sizeof entry);
  CopyOut(ping.data(), entry.size_bytes);
  return true;
}

void RecordQueue::CopyIn(const void* from, size_t size) {
  if (size == 0) return;
  const size_t at = (begin_ + used_) % kCapacity;
  const size_t first = std::min(size, kCapacity - at);
  std::memcpy(bytes_ + at, from, first);
  std::memcpy(bytes_, static_cast<const char*>(from) + first, size - first);
  used_ += size;
}

void RecordQueue::CopyOut(void* to, size_t size) {
  const size_t first = std::min(size, kCapacity - begin_);
  std::memcpy(to, bytes_ + begin_, first);
  std::memcpy(static_cast<char*>(to) + first, bytes_, size - first);
  begin_ = (begin_ + size) % kCapacity;
  used_ -= size;
}

}  // namespace tw
