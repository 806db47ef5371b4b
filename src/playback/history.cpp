#include "playback/history.h"

#include <algorithm>
#include <new>

namespace tw {

bool PlaybackHistory::Prepare() {
  places_.reset(new (std::nothrow) PlayedPlace[kCapacity]);
  return places_ != nullptr;
}

void PlaybackHistory::Add(const PlayedPlace& place) {
  if (places_ == nullptr) return;
  if (count_ != 0 && At(count_ - 1).position == place.position) {
    At(count_ - 1) = place;
    return;
  }
  if (count_ == kCapacity) {
    first_ = (first_ + 1) % kCapacity;
    --count_;
  }
  At(count_) = place;
  ++count_;
}

std::optional<PlayedPlace> PlaybackHistory::StepBack(size_t steps) {
  if (count_ == 0) return std::nullopt;
  count_ -= std::min(steps, count_ - 1);
  return At(count_ - 1);
}

std::optional<PlayedPlace> PlaybackHistory::StepBackTo(int64_t recorded_ms) {
  if (count_ == 0) return std::nullopt;
  while (count_ > 1 && At(count_ - 1).recorded_ms > recorded_ms) --count_;
  return At(count_ - 1);
}

}  // namespace tw
