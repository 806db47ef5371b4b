// A parser with its fix, and what it reports.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "gps/nmea_parser.h"

namespace tw {

// "$", the body, "*", its checksum, CR LF.
inline std::string Sentence(std::string_view body) {
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  char end[8];
  std::snprintf(end, sizeof end, "*%02X\r\n", sum);
  return "$" + std::string(body) + end;
}

class ParserTest : public testing::Test {
 protected:
  ParserTest() { Make(4096); }

  void Make(size_t capacity) {
    parser_ = {};
    parser_.context = this;
    parser_.error = [](void* test, std::string_view text) {
      static_cast<ParserTest*>(test)->errors_.emplace_back(text);
    };
    parser_.trace = [](void* test, std::string_view text) {
      static_cast<ParserTest*>(test)->traces_.emplace_back(text);
    };
    ASSERT_TRUE(MakeParser(parser_, capacity));
  }

  int Push(std::string_view bytes) {
    return ParserPush(parser_, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  }

  // Pushes, applies; returns how many sentences were applied.
  int Take(std::string_view bytes) {
    const int parsed = Push(bytes);
    const int applied = ApplyPackets(parser_, fix_);
    EXPECT_EQ(parsed, applied);
    return applied;
  }

  NmeaParser parser_{};
  GpsFix fix_{};
  std::vector<std::string> errors_;
  std::vector<std::string> traces_;
};

}  // namespace tw
