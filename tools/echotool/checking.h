// What a script that takes in recordings wants to know of each: whether something is wrong with it. Pure; one
// thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "playback/ping_source.h"
#include "tools/echotool/ping_clock.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {

// How often something was found, and at which ping for the first time.
struct Finding {
  uint64_t times = 0;
  uint32_t ping = 0;
  double amount = 0;  // of the first time, in its own unit
  void Note(uint32_t number, double howMuch);
};

// Ping numbers that are missing. Those of a dual device's channel may be every second one. A number that is
// not greater than the one before it begins a new count, as after a restart of the device and where numbers
// begin again; nothing is missing there.
class NumberCheck {
 public:
  void Add(uint32_t number);
  // The next number is as good as the first.
  void BeginAnew() { latest_.reset(); }
  // The gaps between numbers, and how many are missing in all.
  [[nodiscard]] const Finding& Gaps() const { return gaps_[Step() - 1]; }
  [[nodiscard]] uint64_t Missing() const { return missing_[Step() - 1]; }

 private:
  [[nodiscard]] size_t Step() const;

  std::optional<uint32_t> latest_;
  bool allEven_ = true;          // all differences so far
  uint64_t seconds_ = 0;         // differences of 2
  std::array<Finding, 2> gaps_;  // with a step of 1 and of 2
  std::array<uint64_t, 2> missing_{};
};

// A recording's pings in their order.
class Check {
 public:
  void Add(const RecordedPing& ping, bool isNumbered);

  // A line for each kind of fault, beginning with `name` and ending in a line feed; empty without any. The
  // recording has been read to its end.
  [[nodiscard]] std::string Text(const std::string& name, const PingSource& recording) const;

 private:
  struct Channel {
    NumberCheck numbers;
    std::optional<int64_t> time_ms;
  };

  void AddPosition(const RecordedPing& ping, std::optional<int64_t> time_ms);

  PingClock clock_;
  std::array<Channel, 2> channels_;
  std::optional<Place_deg> place_;
  std::optional<int64_t> place_ms_;
  Finding back_;   // seconds
  Finding jumps_;  // metres
};

}  // namespace tw::echotool
