// The figures of a recording, gathered ping by ping: how it was taken, how regularly, where and how far.
// Pure; one thread.
//
// Times are those of the pings, UTC; where a recording tells none, rate, gaps and duration are not known. A
// track over 180 degrees and a clock that was set back are nothing special: each step counts by itself.
#pragma once

#include <cstdint>
#include <optional>

#include "playback/ping_source.h"
#include "tools/echotool/checking.h"
#include "tools/echotool/ping_clock.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {

inline constexpr int64_t kLongestPause_ms = 2'000;  // between two pings; beyond it there is a gap
inline constexpr double kShortestStep_m = 5.0;      // of the distance run: what is less may be the receiver's
inline constexpr double kFastestBoat_mps = 50.0;    // a position that is further off than that is a jump

// The lowest and the highest of the values that are numbers.
struct Extent {
  double low = 0;
  double high = 0;
  double sum = 0;
  uint64_t count = 0;
  void Add(double value);
  void Add(const Extent& other);
  [[nodiscard]] double Mean() const { return count == 0 ? 0.0 : sum / static_cast<double>(count); }
};

struct RecordingFigures {
  uint64_t pings = 0;
  uint64_t channelPings[2] = {};
  uint32_t firstNumber = 0;
  uint32_t lastNumber = 0;
  uint32_t longestTrace = 0;
  Extent frequency_hz[2];
  Extent sampling_hz;
  Extent range_m;
  Extent depth_m;
  Extent depthLow_m;  // of the low channel
  Extent temperature_c;
  Extent pitch_deg;
  Extent roll_deg;
  Extent pdop;
  Extent latitude_deg;
  Extent longitude_deg;

  uint64_t timed = 0;  // pings with a time
  int64_t begin_ms = 0;
  int64_t end_ms = 0;      // the latest
  int64_t running_ms = 0;  // in all, steps back left out
  uint64_t setBack = 0;    // times that went backwards
  uint64_t gaps = 0;
  int64_t longestGap_ms = 0;
  uint64_t missing = 0;   // ping numbers that do not come; without echoes devices send none
  uint64_t restarts = 0;  // numbers that begin anew

  uint64_t positions = 0;
  uint64_t jumps = 0;
  double distance_m = 0;

  void Add(const RecordedPing& ping);

  // Pings a second of a channel, gaps left out; 0: not known.
  [[nodiscard]] double Rate() const;

  // Of several recordings; the times are those from the first to the last.
  void Add(const RecordingFigures& other);

 private:
  struct Channel {
    NumberCheck numbers;
    uint32_t number = 0;
    bool any = false;
    std::optional<int64_t> time_ms;
  };
  void NoteNumber(const RecordedPing& ping, Channel& channel);
  void NoteTime(int64_t time_ms, Channel& channel);
  void NotePlace(const RecordedPing& ping, std::optional<int64_t> time_ms);

  Channel channels_[2];
  uint64_t steps_ = 0;  // between two pings of a channel, gaps left out
  int64_t steps_ms_ = 0;
  PingClock clock_;
  std::optional<Place_deg> place_;
  std::optional<int64_t> place_ms_;
  Place_deg anchor_{};  // up to which the distance is counted
};

}  // namespace tw::echotool
