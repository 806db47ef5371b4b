// A ping with everything, and a fix that has it all.
#pragma once

#include "app/state/ping_facts.h"

namespace tw {

[[nodiscard]] inline PingFacts OutputPing(uint32_t clock_ms = 0, float altitude_m = 12.6f) {
  PingFacts ping{};
  ping.clock_ms = clock_ms;
  ping.altitude_m = altitude_m;
  ping.range_m = 50.0f;
  ping.temperature_c = 18.2f;
  ping.pitch_deg = 2.1f;
  ping.roll_deg = -1.2f;
  GpsFix& fix = ping.fix;
  fix.presence = kHasGga | kHasRmc;
  fix.utc = {125, 5, 17, 23, 59, 4, 25};
  fix.quality = 2;
  fix.hdop = 0.9;
  fix.latitude = 4807.038;
  fix.longitude = 1131.0;
  fix.elevation_m = 545.4;
  fix.geoidHeight_m = 46.9;
  fix.speed_kmh = 41.5;
  fix.direction_deg = 84.4;
  fix.declination_deg = -3.1;
  fix.satellitesInUse = 8;
  fix.differentialAge_s = 3.5;
  fix.differentialStation = 120;
  return ping;
}

}  // namespace tw
