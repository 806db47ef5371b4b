#include "device/heard.h"

#include <gtest/gtest.h>

#include <string>

namespace tw {
namespace {

Heard VerdictOn(const std::string& bytes) {
  HeardBytes heard;
  for (const char byte : bytes) heard.Take(static_cast<uint8_t>(byte));
  return heard.Verdict();
}

TEST(HeardBytes, WhatALineSoundsLike) {
  const std::string sentence = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
  const std::string noise = {'\x80', '\0', '\xF8', 'x', '\xFE', '\xE0', '\0', 'a', '\x98', '\x06'};
  const struct {
    const char* what;
    std::string bytes;
    Heard verdict;
  } rows[] = {{"silence", "", Heard::nothing},
              {"a loop", " \r \r\r", Heard::echo},
              {"half a frame of another speed", {'\0'}, Heard::noise},
              {"another speed", noise, Heard::noise},
              {"letters by accident", "abcdefg", Heard::noise},
              {"one letter more", "abcdefgh", Heard::text},
              {"nine legible ones of ten", "abcdefgh\n\xFF", Heard::text},
              {"less", "abcdefgh\xFF", Heard::noise},
              {"a depth sounder", "$SDDBT,32.8,f,10.0,M,5.5,F*36\r\n", Heard::text},
              {"a prompt", "?\r\n>", Heard::prompt},
              {"a receiver", sentence, Heard::receiver},
              {"in the middle of noise", noise + "$GP" + sentence + noise, Heard::receiver},
              {"with a prompt", "\r\n>" + sentence + "\r\n>", Heard::receiver},
              {"cut", sentence.substr(0, sentence.size() - 1), Heard::text},
              {"its checksum wrong", sentence.substr(0, sentence.size() - 1) + "6", Heard::text},
              {"no digits", sentence.substr(0, sentence.size() - 2) + "+7", Heard::text},
              {"no end", "$GPGGA," + std::string(1'000, ','), Heard::text},
              {"no fields", "$*00$GPGGA*56", Heard::text}};
  for (const auto& row : rows) EXPECT_EQ(VerdictOn(row.bytes), row.verdict) << row.what;
}

}  // namespace
}  // namespace tw
