// The latest GPS time, position, quality and dilution figures. A plain record; all zeroes is valid. In the
// running program it is guarded by gpsLock.
#pragma once

#include <cstdint>

namespace tw {

struct GpsTime {
  int32_t year;   // since 1900
  int32_t month;  // 0 to 11
  int32_t day;
  int32_t hour;
  int32_t minute;
  int32_t second;
  int32_t hundredth;
};

struct GpsSatellite {
  int32_t id;
  int32_t elevation_deg;
  int32_t azimuth_deg;
  int32_t signal_db;
};

inline constexpr int32_t kMaxSatellites = 64;

// Bits of GpsFix::presence: which sentences have contributed.
inline constexpr uint32_t kHasGga = 1;
inline constexpr uint32_t kHasGsa = 2;
inline constexpr uint32_t kHasGsv = 4;
inline constexpr uint32_t kHasRmc = 8;
inline constexpr uint32_t kHasVtg = 16;

struct GpsFix {
  uint32_t presence;  // one bit per kind of data received
  GpsTime utc;
  int32_t quality;  // GGA: 0 none, 1 GPS, 2 differential …
  int32_t fixType;  // GSA: 1 none, 2 2D, 3 3D
  double pdop;
  double hdop;
  double vdop;
  double latitude;   // ddmm.mmmm, south negative
  double longitude;  // dddmm.mmmm, west negative
  double elevation_m;
  double speed_kmh;
  double direction_deg;
  double declination_deg;
  int32_t modeCode;  // RMC: A 0, D 1, E 2, M 3, anything else 4
  int32_t satellitesInUse;
  int32_t satellitesInView;
  GpsSatellite satellites[kMaxSatellites];
  double geoidHeight_m;      // second height of the last GGA
  double differentialAge_s;  // of the last GGA
  int32_t differentialStation;
};

}  // namespace tw
