#include "acquisition/told_values.h"

#include <cmath>
#include <limits>

namespace tw {
namespace {

constexpr float PingHeader::*kTold[] = {&PingHeader::altitude_m, &PingHeader::temperature_c,
                                        &PingHeader::pitch_deg, &PingHeader::roll_deg};
constexpr float kUntold = std::numeric_limits<float>::quiet_NaN();

}  // namespace

// No parser takes a value that is not a number from a stream, so one that stays was not told.
bool ParseTelling(const StreamForm& form, std::string_view block, const LiveContext& context, LivePing& ping,
                  ToldValues& told) {
  PingHeader& header = ping.header;
  const PingHeader before = header;
  for (float PingHeader::*const value : kTold) header.*value = kUntold;
  const bool parsed = form.parse(block, context, ping);
  told = {header.altitude_m, header.temperature_c, header.pitch_deg, header.roll_deg};
  for (float PingHeader::*const value : kTold) {
    if (std::isnan(header.*value)) header.*value = before.*value;
  }
  return parsed;
}

PingFacts FactsOf(const PingHeader& header, const ToldValues& told, uint32_t now_ms) {
  PingFacts facts{};
  facts.clock_ms = now_ms;
  facts.altitude_m = told.altitude_m;
  facts.range_m = header.range_m;
  facts.temperature_c = told.temperature_c;
  facts.pitch_deg = told.pitch_deg;
  facts.roll_deg = told.roll_deg;
  return facts;
}

}  // namespace tw
