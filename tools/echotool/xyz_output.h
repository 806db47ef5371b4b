// Soundings as lines of numbers between blanks, as programs take them that draw charts: a line each ping that
// has a position and a depth, in the columns asked for. Pure but for the output; one thread.
//
//   129.05000000 35.10000000 12.345
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "tools/echotool/ping_clock.h"
#include "tools/echotool/ping_values.h"
#include "tools/echotool/tide.h"
#include "tools/echotool/track_output.h"
#include "tools/echotool/xyz_options.h"

namespace tw::echotool {

struct Sounding {
  Place_deg place;
  std::optional<int64_t> time_ms;
  double depth_m;
  double altitude_m;
  double temperature_c;
  uint32_t ping;
  int32_t channel;
  int32_t quality;
};

// The median of an odd number of depths around each sounding, of fewer at both ends.
class RunningMedian {
 public:
  explicit RunningMedian(uint32_t count) : half_((count - 1) / 2) {}

  // Takes the next one and gives the one in the middle, once there is one.
  [[nodiscard]] std::optional<Sounding> Next(const Sounding& sounding);

  // At the end, until there is none any more.
  [[nodiscard]] std::optional<Sounding> Rest();

 private:
  [[nodiscard]] Sounding Middle(size_t index) const;

  size_t half_;
  size_t waiting_ = 0;
  std::deque<Sounding> window_;
};

class XyzWriter final : public PingWriter {
 public:
  // `scale` brings the recorded altitudes to the speed of sound asked for.
  XyzWriter(OutputFile& output, const XyzOptions& options, double scale, Tide tide)
      : output_(output), options_(options), scale_(scale), tide_(std::move(tide)) {}
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;
  [[nodiscard]] std::string Emptiness() const override;

 private:
  [[nodiscard]] bool AppendLine(const Sounding& sounding);
  [[nodiscard]] bool TakeTide(Sounding& sounding);

  OutputFile& output_;
  const XyzOptions options_;
  const double scale_;
  const Tide tide_;
  PingClock clock_;
  std::array<RunningMedian, 2> medians_{RunningMedian(options_.median), RunningMedian(options_.median)};
  uint64_t soundings_ = 0;
  std::string error_;
};

}  // namespace tw::echotool
