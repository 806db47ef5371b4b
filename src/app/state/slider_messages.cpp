#include "app/state/slider_messages.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace tw {
namespace {

// The blocks that are on their way. A worker posts two each 20 ms, so all are in use when the receivers have
// not come round to theirs for seconds.
constexpr size_t kMaxOnTheirWay = 512;
constinit std::atomic<ProgressBlock*> onTheirWay[kMaxOnTheirWay] = {};

bool Enter(ProgressBlock* block) {
  return std::any_of(std::begin(onTheirWay), std::end(onTheirWay), [&](std::atomic<ProgressBlock*>& place) {
    ProgressBlock* free = nullptr;
    return place.load() == nullptr && place.compare_exchange_strong(free, block);
  });
}

bool Leave(ProgressBlock* block) {
  return std::any_of(std::begin(onTheirWay), std::end(onTheirWay), [&](std::atomic<ProgressBlock*>& place) {
    ProgressBlock* expected = block;
    return place.load() == block && place.compare_exchange_strong(expected, nullptr);
  });
}

}  // namespace

uintptr_t SendProgress(const ProgressBlock& progress) {
  std::unique_ptr<ProgressBlock> block(new (std::nothrow) ProgressBlock(progress));
  if (block == nullptr || !Enter(block.get())) return 0;
  return reinterpret_cast<uintptr_t>(block.release());
}

std::unique_ptr<ProgressBlock> ReceiveProgress(uintptr_t parameter) {
  auto* const block = reinterpret_cast<ProgressBlock*>(parameter);
  return std::unique_ptr<ProgressBlock>(block != nullptr && Leave(block) ? block : nullptr);
}

}  // namespace tw
