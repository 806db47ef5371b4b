// Binary frames written by hand in hexadecimal from the tables of their fields.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <tuple>

#include "acquisition/ping_record.h"

namespace tw::test {

// Pairs of digits; anything else between them is skipped.
inline std::string FromHex(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string bytes;
  int high = -1;
  for (const char c : text) {
    const size_t digit = kDigits.find(c);
    if (digit == kDigits.npos) continue;
    if (high >= 0) bytes += static_cast<char>(high * 16 + static_cast<int>(digit));
    high = high >= 0 ? -1 : static_cast<int>(digit);
  }
  return bytes;
}

// Puts a number of 32 bits, little-endian, to an offset.
inline std::string With(std::string bytes, size_t offset, uint32_t value) {
  for (size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

inline std::string With(std::string bytes, size_t offset, float value) {
  uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return With(std::move(bytes), offset, bits);
}

// A device's block: 1,700,000,000 s 250 ms, ping 17, 4.25 m, 11.5 degrees Celsius, pitch 1.25, roll -0.5,
// four companded samples (12, 65, 255 and 4,095) at 25,000 Hz, transmitted at 200,000 Hz.
inline const std::string kGoldenDeviceBlock = FromHex(
    "54 49 44 45 57 52 49 54 45 43"  // "TIDEWRITEC"
    "42 00 00 00"                    // 66 bytes
    "00 F1 53 65  FA 00 00 00"       // time
    "11 00 00 00"                    // ping
    "00 00 88 40  00 00 38 41"       // altitude, temperature
    "00 00 A0 3F  00 00 00 BF"       // pitch, roll
    "01 00 00 00  04 00 00 00"       // format, samples
    "07 00 00 00"                    // the device's own
    "40 0D 03 00  A8 61 00 00"       // frequencies
    "0C 40 7F FF");

// The same with two samples of 16 bits, 1 and 4,011.
inline const std::string kGoldenWordBlock =
    With(With(kGoldenDeviceBlock.substr(0, 62), 42, 0u), 46, 2u) + FromHex("01 00 AB 0F");

// What the word block becomes: a frame with its eight samples on the grid.
inline const std::string kGoldenFrame = FromHex(
    "54 52 35 37"                            // "TR57"
    "58 00 00 00"                            // header of 88 bytes
    "00 F1 53 65  FA 00 00 00"               // device time
    "01 F1 53 65"                            // time of work
    "11 00 00 00"                            // ping
    "A0 86 01 00  00 00 00 00"               // 100,000 Hz; reserved
    "08 00 00 00"                            // samples
    "00 00 48 41"                            // range
    "40 0D 03 00  00 00 00 00"               // 200,000 Hz; reserved
    "00 00 88 40  00 00 38 41"               // altitude, temperature
    "00 00 A0 3F  00 00 00 BF"               // pitch, roll
    "00 00 40 3F  00 00 00 BE  00 00 15 42"  // latitude, longitude, altitude
    "FF F0 53 65  00 00 20 40  01 00 00 00"  // time of fix, PDOP, valid
    "01 00 01 00 01 00 01 00 AB 0F AB 0F AB 0F AB 0F");

inline constexpr PingHeader kGoldenPing = {.deviceSeconds = 1'700'000'000,
                                           .deviceMilliseconds = 250,
                                           .timeOfWork_s = 1'700'000'001,
                                           .ping = 17,
                                           .samplingFrequency_hz = 100'000,
                                           .sampleCount = 8,
                                           .range_m = 12.5f,
                                           .txFrequency_hz = 200'000,
                                           .altitude_m = 4.25f,
                                           .temperature_c = 11.5f,
                                           .pitch_deg = 1.25f,
                                           .roll_deg = -0.5f,
                                           .gpsLatitude_rad = 0.75f,
                                           .gpsLongitude_rad = -0.125f,
                                           .gpsAltitude_m = 37.25f,
                                           .gpsTime_s = 1'699'999'999,
                                           .gpsPdop = 2.5f,
                                           .gpsValid = 1};

// All values of a ping, for comparison at once.
inline auto ValuesOf(const PingHeader& ping) {
  const auto& [seconds, milliseconds, work, number, sampling, count, range, tx, altitude, temperature, pitch,
               roll, latitude, longitude, height, gpsTime, pdop, valid] = ping;
  return std::tuple(seconds, milliseconds, work, number, sampling, count, range, tx, altitude, temperature,
                    pitch, roll, latitude, longitude, height, gpsTime, pdop, valid);
}

}  // namespace tw::test
