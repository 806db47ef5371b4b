// Looks at a ring while a mode without samples fills it, and compares each ping with the message that the
// virtual echosounder sent. Such a mode numbers its pings by its messages, from 1.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "acquisition/ping_ring.h"
#include "platform/sync.h"
#include "tests/sent_account.h"

namespace tw::test {

// What a mode's messages tell; each with what stands before it.
enum class Says : uint8_t { altitude, temperature, attitude };

// Where the pulse of an altitude begins.
inline size_t PulseOf(float altitude_m, float soundSpeed_mps) {
  const double echo_s = static_cast<double>(altitude_m) * 2 / static_cast<double>(soundSpeed_mps);
  return static_cast<size_t>(echo_s / 0.00001);
}

class PulseWatch {
 public:
  PulseWatch(const PingRing& ring, const int32_t& index, Lock& lock)
      : ring_(ring), index_(index), lock_(lock) {}

  Says says = Says::altitude;
  float soundSpeed_mps = 1'500;
  bool lowOfMessage = false;  // the ring shows the second altitude of each message
  uint32_t first = 1;         // the message of the first ping here
  uint32_t step = 1;          // from a ping here to the next one, in messages

  // Takes the newest ping; false when it was there before. Look more often than pings come.
  [[nodiscard]] bool Look(const std::vector<SentMessage>& sent) {
    int32_t index = 0;
    {
      Locked held(lock_);
      index = index_;
    }
    const uint8_t* slot = ring_.slots[index];
    newest_ = LoadPingHeader(slot);
    if (newest_.ping == last_) return false;
    EXPECT_EQ(newest_.ping, last_ == 0 ? first : last_ + step)
        << "a ping was never published, or went to the other channel";
    last_ = newest_.ping;
    ++seen_;
    if (newest_.ping > sent.size()) {
      ADD_FAILURE() << "ping " << newest_.ping << " of " << sent.size();
      return true;
    }
    Compare(sent[newest_.ping - 1].sent, slot);
    return true;
  }

  [[nodiscard]] size_t Seen() const { return seen_; }
  [[nodiscard]] const PingHeader& Newest() const { return newest_; }

 private:
  void Compare(const sim::SentPing& sent, const uint8_t* slot) const {
    const float altitude_m = lowOfMessage ? sent.altitudeLow_m : sent.altitude_m;
    const bool attitude = says == Says::attitude;
    EXPECT_GT(altitude_m, 0.0f) << newest_.ping;
    EXPECT_EQ(newest_.altitude_m, altitude_m) << newest_.ping;
    EXPECT_EQ(newest_.temperature_c, says == Says::altitude ? 0 : sent.temperature_c) << newest_.ping;
    EXPECT_EQ(newest_.pitch_deg, attitude ? sent.pitch_deg : 450.0f) << newest_.ping;
    EXPECT_EQ(newest_.roll_deg, attitude ? sent.roll_deg : 0.0f) << newest_.ping;
    EXPECT_EQ(newest_.samplingFrequency_hz, 100'000u);
    EXPECT_EQ(newest_.sampleCount, 0u);
    const size_t pulse = PulseOf(altitude_m, soundSpeed_mps);
    const auto sample = [&](size_t i) { return slot[728 + 2 * i] | slot[729 + 2 * i] << 8; };
    EXPECT_EQ(pulse == 0 ? 0 : sample(pulse - 1), 0);
    EXPECT_EQ(sample(pulse), 921);
    EXPECT_EQ(sample(pulse + 4), 3685);
    EXPECT_EQ(sample(pulse + 9), 921);
    EXPECT_EQ(sample(pulse + 10), 0);
  }

  const PingRing& ring_;
  const int32_t& index_;
  Lock& lock_;
  PingHeader newest_{};
  uint32_t last_ = 0;
  size_t seen_ = 0;
};

}  // namespace tw::test
