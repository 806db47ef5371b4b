#include "tools/echotool/xyz_output.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/text_format.h"
#include "tools/echotool/iso_time.h"

namespace tw::echotool {
namespace {

std::string Decimal(double value, int decimals) {
  char text[64];
  return {text, FormatText(text, "%.*f", decimals, value)};
}

// What is not known is "-", so that every line has as many fields.
std::string Text(Column column, const Sounding& sounding) {
  switch (column) {
    case Column::longitude:
      return Decimal(sounding.place.longitude, 8);
    case Column::latitude:
      return Decimal(sounding.place.latitude, 8);
    case Column::depth:
      return Decimal(sounding.depth_m, 3);
    case Column::time:
      return sounding.time_ms ? IsoTime(*sounding.time_ms) : "-";
    case Column::ping:
      return std::to_string(sounding.ping);
    case Column::channel:
      return std::to_string(sounding.channel + 1);
    case Column::altitude:
      return Decimal(sounding.altitude_m, 3);
    case Column::temperature:
      return std::isfinite(sounding.temperature_c) ? Decimal(sounding.temperature_c, 2) : "-";
    case Column::quality:
      return std::to_string(sounding.quality);
  }
  return "";
}

}  // namespace

Sounding RunningMedian::Middle(size_t index) const {
  std::vector<double> depths;
  for (const Sounding& each : window_) depths.push_back(each.depth_m);
  const auto middle = depths.begin() + static_cast<std::ptrdiff_t>(depths.size() / 2);
  std::nth_element(depths.begin(), middle, depths.end());
  Sounding out = window_[index];
  out.depth_m = *middle;
  if (depths.size() % 2 == 0) out.depth_m = (out.depth_m + *std::max_element(depths.begin(), middle)) / 2;
  return out;
}

std::optional<Sounding> RunningMedian::Next(const Sounding& sounding) {
  window_.push_back(sounding);
  if (window_.size() > 2 * half_ + 1) window_.pop_front();
  if (++waiting_ <= half_) return std::nullopt;
  --waiting_;
  return Middle(window_.size() - 1 - half_);
}

std::optional<Sounding> RunningMedian::Rest() {
  if (waiting_ == 0) return std::nullopt;
  const size_t index = window_.size() - waiting_--;
  if (index <= half_) return Middle(index);
  window_.pop_front();
  return Middle(index - 1);
}

bool XyzWriter::TakeTide(Sounding& sounding) {
  if (options_.tide.empty()) return true;
  const auto height_m = sounding.time_ms ? tide_.At(*sounding.time_ms) : std::nullopt;
  if (!height_m) {
    error_ = sounding.time_ms ? IsoTime(*sounding.time_ms) + " is outside of " + options_.tide
                              : "tells no time, which " + options_.tide + " needs";
    return false;
  }
  sounding.depth_m -= *height_m;
  return true;
}

bool XyzWriter::Append(const RecordedPing& ping) {
  const auto place = PlaceOf(ping);
  const float altitude_m = AltitudeOf(ping, ping.channel);
  if (!error_.empty() || !place || !std::isfinite(altitude_m) || altitude_m <= 0.0f) return true;
  const double scaled_m = static_cast<double>(altitude_m) * scale_;
  Sounding sounding{*place,
                    clock_.TimeOf(ping),
                    scaled_m + options_.draught_m,
                    scaled_m,
                    static_cast<double>(ping.header.temperature_c),
                    ping.header.ping,
                    ping.channel,
                    ping.gpsQuality};
  if (!TakeTide(sounding)) return true;
  const auto next = medians_[ping.channel == 0 ? 0 : 1].Next(sounding);
  return !next || AppendLine(*next);
}

bool XyzWriter::AppendLine(const Sounding& sounding) {
  if (soundings_++ % options_.every != 0) return true;
  std::string line;
  for (const Column column : options_.columns) line += Text(column, sounding) + ' ';
  line.back() = '\n';
  return AppendText(output_, line);
}

bool XyzWriter::End() {
  for (RunningMedian& median : medians_)
    while (const auto rest = median.Rest())
      if (!AppendLine(*rest)) return false;
  return output_.Flush();
}

std::string XyzWriter::Emptiness() const {
  return !error_.empty() || soundings_ != 0 ? error_ : "holds no ping with a position and a depth";
}

}  // namespace tw::echotool
