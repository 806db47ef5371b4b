// Which pings of a recording are meant: by time, number and place. Pure; one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "playback/ping_source.h"
#include "tools/echotool/ping_clock.h"

namespace tw::echotool {

// A moment: since 1970, UTC, or since the first time that the recording tells.
struct Moment {
  int64_t time_ms;
  bool fromStart;
};

struct NumberRange {
  uint32_t first;
  uint32_t last;
};

// Degrees; a west that is greater than the east: the area lies across the 180th meridian.
struct Area {
  double west, south, east, north;
};

// All that is given must fit.
struct Selection {
  std::optional<Moment> from = {};
  std::optional<Moment> to = {};  // the first that is left out, so that what goes on there does not overlap
  std::optional<NumberRange> pings = {};
  std::optional<Area> area = {};

  [[nodiscard]] bool Any() const { return from || to || pings || area; }
};

// Takes the option and the value behind it. Nothing when it is none of a selection; false with a sentence in
// `error` when the value makes no sense.
[[nodiscard]] std::optional<bool> TakeSelectionOption(const std::string& word,
                                                      std::span<const std::string>& rest,
                                                      Selection& selection, std::string& error);

// Judges the pings of a recording in their order. One that tells no time has that of the ping before it.
class Chooser {
 public:
  explicit Chooser(const Selection& selection) : selection_(selection) {}
  [[nodiscard]] bool Takes(const RecordedPing& ping);
  // False while all pings have been without a time, of which times cannot choose any.
  [[nodiscard]] bool KnowsTime() const { return start_ms_.has_value(); }

 private:
  [[nodiscard]] bool FitsTime() const;

  Selection selection_;
  PingClock clock_;
  std::optional<int64_t> start_ms_;
  int64_t time_ms_ = 0;
};

}  // namespace tw::echotool
