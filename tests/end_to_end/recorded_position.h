// The position that stands in a record file behind a ping, against what the virtual receiver sent.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "simulator/virtual_gps.h"

namespace tw::test {

// Takes a sentence with this address and a valid checksum off the front; nothing when there is none.
inline std::string_view TakeSentence(std::string_view& rest, std::string_view address) {
  const size_t end = rest.find("\r\n");
  if (!rest.starts_with(address) || end == rest.npos || end < 10) return {};
  const std::string_view sentence = rest.substr(0, end);
  unsigned sum = 0;
  for (const char c : sentence.substr(1, sentence.size() - 4)) sum ^= static_cast<unsigned char>(c);
  char text[4];
  std::snprintf(text, sizeof text, "*%02x", sum);
  if (!sentence.ends_with(text)) return {};
  rest.remove_prefix(end + 2);
  return sentence;
}

// True when the receiver has been there.
inline bool HasBeenAt(const sim::VirtualGps& gps, double latitude_deg, double longitude_deg, double off_deg) {
  for (const sim::SentEpoch& epoch : gps.Epochs().Entries()) {
    if (std::abs(epoch.latitude_deg - latitude_deg) <= off_deg &&
        std::abs(epoch.longitude_deg - longitude_deg) <= off_deg) {
      return true;
    }
  }
  return false;
}

// "ddmm.mmmm,N" of a sentence, the field with the number being the first of the two; its hemispheres are
// north and east here.
inline double Degrees(std::string_view sentence, int field) {
  for (; field > 0; --field) sentence.remove_prefix(std::min(sentence.find(',') + 1, sentence.size()));
  const double value = std::strtod(sentence.data(), nullptr);
  return std::floor(value / 100) + std::fmod(value, 100) / 60;
}

// Takes GGA and RMC off the front. Both tell the same position, one where the receiver has been; before its
// first fix that is 0. Counts those with a position.
inline void TakePosition(std::string_view& rest, const sim::VirtualGps& gps, size_t& positions) {
  const std::string_view gga = TakeSentence(rest, "$GPGGA,");
  const std::string_view rmc = TakeSentence(rest, "$GPRMC,");
  ASSERT_FALSE(gga.empty() || rmc.empty()) << rest.substr(0, 200);
  const double latitude_deg = Degrees(gga, 2);
  const double longitude_deg = Degrees(gga, 4);
  EXPECT_EQ(Degrees(rmc, 3), latitude_deg) << rmc;
  EXPECT_EQ(Degrees(rmc, 5), longitude_deg) << rmc;
  if (latitude_deg == 0 && longitude_deg == 0) return;
  EXPECT_TRUE(HasBeenAt(gps, latitude_deg, longitude_deg, 3e-6)) << gga;
  ++positions;
}

}  // namespace tw::test
