// What came of a stream, as rings showed it and as record files hold it. The device samples at 25,000 Hz.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "acquisition/ping_record.h"
#include "acquisition/ping_ring.h"
#include "base/bytes.h"
#include "platform/sync.h"
#include "tests/sent_account.h"

namespace tw::test {

inline constexpr size_t kRepeat = 4;          // a sample on the grid
inline constexpr size_t kPulseReach = 1'000;  // samples in which a pulse is looked for

// A ping that was on view, or a frame of a file.
struct Shown {
  PingHeader header;
  std::vector<uint16_t> samples;
};

inline std::vector<uint16_t> SamplesAt(const uint8_t* bytes, size_t count) {
  std::vector<uint16_t> samples(count);
  LoadLeNumbers(std::span(samples), bytes);
  return samples;
}

// Splits off the message, which stands before the position and in NMEA behind a frequency line of the
// program's; empty when there is none.
inline std::string_view TakeMessage(std::string_view& record) {
  if (record.starts_with("#F ")) record.remove_prefix(std::min(record.find('\n') + 1, record.size()));
  const size_t position = record.rfind("$GPGGA,");
  if (position == record.npos) return {};
  const std::string_view message = record.substr(0, position);
  record.remove_prefix(position);
  return message;
}

// Whether a record is this message, whole.
inline bool Holds(std::string_view record, const SentMessage& message) {
  const sim::SentPing& sent = message.sent;
  if (!record.starts_with("TR57")) {
    const std::string_view text = TakeMessage(record);
    return text.size() == sent.size &&
           sim::HashOf({reinterpret_cast<const uint8_t*>(text.data()), text.size()}) == sent.hash;
  }
  const auto* const frame = reinterpret_cast<const uint8_t*>(record.data());
  const size_t count = kRepeat * message.samples.size();
  if (record.size() != 88 + 2 * count) return false;
  const PingHeader header = LoadPingHeader(frame);
  if (header.ping != sent.number || header.altitude_m != sent.altitude_m ||
      header.temperature_c != sent.temperature_c || header.pitch_deg != sent.pitch_deg ||
      header.roll_deg != sent.roll_deg || header.txFrequency_hz != sent.txFrequency_hz ||
      header.deviceSeconds != sent.deviceTime_s) {
    return false;
  }
  size_t i = 0;
  const std::vector<uint16_t> samples = SamplesAt(frame + 88, count);
  return std::all_of(samples.begin(), samples.end(),
                     [&](uint16_t sample) { return sample == message.samples[i++ / kRepeat]; });
}

// Collects what a ring shows, as long as it is looked at more often than pings come. `repeat` is how often a
// counted sample stands in the slot; 0 where a pulse is drawn.
class RingWatch {
 public:
  RingWatch(const PingRing& ring, const int32_t& index, Lock& lock, size_t repeat)
      : ring_(ring), index_(index), lock_(lock), repeat_(repeat), last_(Newest(), kSlotSamples) {}

  void Look() {
    const std::string_view newest(Newest(), kSlotSamples);
    if (newest == last_) return;
    last_ = newest;
    const auto* const slot = reinterpret_cast<const uint8_t*>(newest.data());
    const PingHeader header = LoadPingHeader(slot);
    const size_t count = repeat_ == 0 ? kPulseReach : std::min(repeat_ * header.sampleCount, kMaxSlotSamples);
    seen.push_back({header, SamplesAt(slot + kSlotSamples, count)});
  }

  std::vector<Shown> seen;

 private:
  [[nodiscard]] const char* Newest() const {
    Locked held(lock_);
    return reinterpret_cast<const char*>(ring_.slots[index_]);
  }

  const PingRing& ring_;
  const int32_t& index_;
  Lock& lock_;
  const size_t repeat_;
  std::string last_;
};

}  // namespace tw::test
