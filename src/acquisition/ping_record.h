// One ping: the "TR57" echo frame, unit of the rings, of binary record files, of playback and conversion.
// All integers little-endian, floats IEEE-754 single precision, offsets from the first byte of the magic.
//
// In a file the samples follow the header; in memory (a ring slot, a reader's buffer) they start 640 bytes
// behind its end. A reader takes the header's length from the frame, never from this program's own 88.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw {

namespace frame {
inline constexpr char kMagic[] = "TR57";
inline constexpr char kDualMagic[] = "DUAL";
inline constexpr size_t kMagicSize = 4;

inline constexpr size_t kHeaderLength = 4;         // uint32, bytes up to the first sample in a file
inline constexpr size_t kDeviceSeconds = 8;        // uint32, zero unless built from a device block
inline constexpr size_t kDeviceMilliseconds = 12;  // uint32, likewise
inline constexpr size_t kTimeOfWork = 16;          // uint32, seconds since 1970, UTC
inline constexpr size_t kPing = 20;                // uint32
inline constexpr size_t kSamplingFrequency = 24;   // uint32, Hz
inline constexpr size_t kSampleCount = 32;         // uint32, per channel
inline constexpr size_t kRange = 36;               // float, m
inline constexpr size_t kTxFrequency = 40;         // int32, Hz
inline constexpr size_t kAltitude = 48;            // float, m
inline constexpr size_t kTemperature = 52;         // float, degrees Celsius
inline constexpr size_t kPitch = 56;               // float, degrees; kNoAttitude or more: none
inline constexpr size_t kRoll = 60;                // float, degrees
inline constexpr size_t kGpsLatitude = 64;         // float, radians
inline constexpr size_t kGpsLongitude = 68;        // float, radians
inline constexpr size_t kGpsAltitude = 72;         // float, m
inline constexpr size_t kGpsTime = 76;             // uint32, seconds since 1970, UTC
inline constexpr size_t kGpsPdop = 80;             // float
inline constexpr size_t kGpsValid = 84;            // int32, 1 or 0
inline constexpr size_t kWrittenHeaderLength = 88;
inline constexpr size_t kSampleGap = 640;  // in memory, between header and samples
static_assert(kGpsValid + 4 == kWrittenHeaderLength);
}  // namespace frame

inline constexpr float kNoAttitude = 450.0f;

// The header's values as the program holds them on the way into a slot or a file.
struct PingHeader {
  uint32_t deviceSeconds;
  uint32_t deviceMilliseconds;
  uint32_t timeOfWork_s;
  uint32_t ping;
  uint32_t samplingFrequency_hz;
  uint32_t sampleCount;
  float range_m;
  int32_t txFrequency_hz;
  float altitude_m;
  float temperature_c;
  float pitch_deg;
  float roll_deg;
  float gpsLatitude_rad;
  float gpsLongitude_rad;
  float gpsAltitude_m;
  uint32_t gpsTime_s;
  float gpsPdop;
  int32_t gpsValid;
};

// Writes the 88 bytes of a "TR57" header, reserved words zero.
void StorePingHeader(uint8_t* bytes, const PingHeader& header);

// Reads the values of a header (either magic, at least 88 readable bytes).
[[nodiscard]] PingHeader LoadPingHeader(const uint8_t* bytes);

}  // namespace tw
