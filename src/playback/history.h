// Where a playback has been: the way back for its step buttons. The worker that plays owns it; one thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace tw {

// How far a channel's ring is.
struct ChannelPlace {
  bool begun;  // a ping has come
  int32_t ringIndex;
  uint32_t remainder_ms;  // of the ring's pacing
  int64_t latest_ms;      // recorded time of the newest ping
};

struct PlayedPlace {
  std::array<ChannelPlace, 2> channels;  // with the ping
  uint64_t position;                     // of the ping's first byte in the file
  int64_t recorded_ms;                   // its recorded time
  uint32_t number;                       // its number
};

class PlaybackHistory {
 public:
  static constexpr size_t kCapacity = 10'000;

  // False when there was no memory; nothing is kept then.
  [[nodiscard]] bool Prepare();

  // Remembers a place; the oldest one goes when all are in use. The newest place played again is no new one.
  void Add(const PlayedPlace& place);

  // The place `steps` entries before the newest, the first one when there are fewer; what lies behind it is
  // forgotten. Nothing when nothing is kept.
  [[nodiscard]] std::optional<PlayedPlace> StepBack(size_t steps);

  // The same with the newest place that is not later than a time.
  [[nodiscard]] std::optional<PlayedPlace> StepBackTo(int64_t recorded_ms);

  [[nodiscard]] size_t Size() const { return count_; }
  void Clear() { count_ = 0; }

 private:
  [[nodiscard]] PlayedPlace& At(size_t i) const { return places_[(first_ + i) % kCapacity]; }

  std::unique_ptr<PlayedPlace[]> places_;
  size_t first_ = 0;
  size_t count_ = 0;
};

}  // namespace tw
